#include "zelk/frame_decoder.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

#include "base/compiler.hpp"
#include "base/hash_table.hpp"
#include "base/list.hpp"
#include "codec/frame_plan.hpp"

namespace {

using zelk::FramePlan;
using zelk::QuickSignal;
using zelk::SlowSignal;
namespace codec = zelk::codec;

constexpr std::size_t kWordBits = 64;
constexpr std::size_t kWordBytes = 8;

bool is_set(const std::uint64_t* mask, std::size_t index) {
  return (mask[index / kWordBits] >> (index % kWordBits) & 1) != 0;
}

void set(std::uint64_t* mask, std::size_t index) {
  mask[index / kWordBits] |= std::uint64_t{1} << (index % kWordBits);
}

/// The first eight bytes of a frame, zeros behind a shorter one, as a number in both byte orders.
struct FrameWords {
  FrameWords(const unsigned char* data, std::size_t length) : FrameWords(load(data, length)) {}
  explicit FrameWords(std::uint64_t word) : words{word, zelk::reversed_bytes(word)} {}

  static std::uint64_t load(const unsigned char* data, std::size_t length) {
    if (length < kWordBytes) {
      return length > 0 ? codec::load_bytes(data, static_cast<std::uint32_t>(length)) : 0;
    }
    return first_eight(data);
  }
  static std::uint64_t first_eight(const unsigned char* data) {
    std::uint64_t word = 0;
    std::memcpy(&word, data, kWordBytes);
    return word;
  }

  std::uint64_t words[2];
};

std::int64_t raw_value(const QuickSignal& signal, const FrameWords& frame) {
  const std::uint64_t bits = frame.words[signal.word] >> signal.shift & signal.mask;
  return static_cast<std::int64_t>((bits ^ signal.sign) - signal.sign);
}

std::int64_t raw_value(const SlowSignal& slow, const unsigned char* data) {
  const std::uint64_t bits = codec::extract_whole(data, slow.at, slow.length_bits);
  return codec::is_ieee(slow.signal) ? static_cast<std::int64_t>(bits)
                                     : codec::sign_handled64(bits, slow.signal);
}

double physical_value(const SlowSignal& slow, const unsigned char* data) {
  const std::int64_t raw = raw_value(slow, data);
  const sigblk& signal = slow.signal;
  double physical = 0;
  if (codec::is_ieee(signal)) {
    codec::to_physical(codec::ieee_value(static_cast<std::uint64_t>(raw), signal), signal,
                       physical);
  } else {
    codec::to_physical(raw, signal, physical);
  }
  return physical;
}

void set_value(const QuickSignal& signal, const FrameWords& frame, double& value) {
  value = static_cast<double>(raw_value(signal, frame)) * signal.factor + signal.offset;
}

void set_value(const QuickSignal& signal, const FrameWords& frame, std::int64_t& value) {
  value = raw_value(signal, frame);
}

void set_value(const SlowSignal& signal, const unsigned char* data, double& value) {
  value = physical_value(signal, data);
}

void set_value(const SlowSignal& signal, const unsigned char* data, std::int64_t& value) {
  value = raw_value(signal, data);
}

/// Whether the multiplexor's value, read as `ZelkManager::CheckSignalModeValue` reads it, is one of
/// those that select the signal.
bool is_selected(const FramePlan& plan, const zelk::DependentSignal& signal,
                 const zelk::Multiplexor& multiplexor, const unsigned char* data,
                 std::size_t length) {
  // As a multiplexor an IEEE signal has its own length, which may reach further.
  if (multiplexor.mask.min_data_length > length) return false;
  std::optional<std::uint32_t> value;
  if (codec::read_masked(data, multiplexor.mask, multiplexor.signal, value) != ZelkSigvalueOk) {
    return false;
  }
  const auto* const first = plan.ranges.data() + signal.first_range;
  return std::any_of(first, first + signal.range_count,
                     [value = *value](const zelk::ValueRange& range) {
                       return range.low <= value && value <= range.high;
                     });
}

void find_present(const FramePlan& plan, const unsigned char* data, std::size_t length,
                  std::uint64_t* present) {
  std::fill_n(present, plan.presence_words, 0);
  for (const std::uint32_t index : plan.unconditional) {
    if (plan.bytes_needed[index] <= length) set(present, index);
  }
  for (const zelk::DependentSignal& signal : plan.dependent) {
    const zelk::Multiplexor& multiplexor = plan.multiplexors[signal.multiplexor];
    if (plan.bytes_needed[signal.index] <= length && is_set(present, multiplexor.index) &&
        is_selected(plan, signal, multiplexor, data, length)) {
      set(present, signal.index);
    }
  }
}

/// Decodes the signals that the frame holds, when that may not be all.
template <typename Value>
ZELK_NEVER_INLINE void decode_present(const FramePlan& plan, const unsigned char* data,
                                      std::size_t length, Value* values, std::uint64_t* present) {
  find_present(plan, data, length, present);
  std::fill_n(values, plan.records.size(), Value{});
  const FrameWords frame(data, length);
  for (const QuickSignal& signal : plan.quick()) {
    if (is_set(present, signal.index)) set_value(signal, frame, values[signal.index]);
  }
  for (const SlowSignal& signal : plan.slow) {
    if (is_set(present, signal.index)) set_value(signal, data, values[signal.index]);
  }
}

template <typename Value>
ZELK_NEVER_INLINE void decode_any(const FramePlan& plan, const unsigned char* data,
                                  std::size_t length, Value* values, std::uint64_t* present) {
  if (length < plan.bytes_for_all) return decode_present(plan, data, length, values, present);
  if (plan.presence_words == 0) return;
  std::fill_n(present, plan.presence_words - 1, ~std::uint64_t{0});
  present[plan.presence_words - 1] = plan.last_word;
  const FrameWords frame(data, length);
  for (const QuickSignal& signal : plan.quick()) set_value(signal, frame, values[signal.index]);
  for (const SlowSignal& signal : plan.slow) set_value(signal, data, values[signal.index]);
}

/// The most frequent case stays free of all that the others need: here a few instructions more are
/// a tenth of the time.
template <typename Value>
void decode(const FramePlan& plan, const unsigned char* data, std::size_t length, Value* values,
            std::uint64_t* present) {
  if (length < plan.plain_bytes) return decode_any(plan, data, length, values, present);
  *present = plan.last_word;
  const FrameWords frame(FrameWords::first_eight(data));
  for (const QuickSignal& signal : plan.quick()) set_value(signal, frame, *values++);
}

}  // namespace

// --- Decoding ---

ZelkFrameDecoder::ZelkFrameDecoder(const msgblk& message) : plan_(FramePlan::of(message)) {}
ZelkFrameDecoder::ZelkFrameDecoder(ZelkFrameDecoder&&) noexcept = default;
ZelkFrameDecoder& ZelkFrameDecoder::operator=(ZelkFrameDecoder&&) noexcept = default;
ZelkFrameDecoder::~ZelkFrameDecoder() = default;

const msgblk& ZelkFrameDecoder::Message() const { return plan_->message; }
std::size_t ZelkFrameDecoder::SignalCount() const { return plan_->records.size(); }
const sigblk& ZelkFrameDecoder::Signal(std::size_t index) const { return *plan_->records[index]; }

void ZelkFrameDecoder::Decode(const unsigned char* data, std::size_t length, double* values,
                              std::uint64_t* present) const {
  decode(*plan_, data, length, values, present);
}

void ZelkFrameDecoder::DecodeRaw(const unsigned char* data, std::size_t length,
                                 std::int64_t* values, std::uint64_t* present) const {
  decode(*plan_, data, length, values, present);
}

// --- Encoding ---

namespace {

/// The nearest raw value that a signal's bits can hold, and whether it is the wanted one.
struct LimitedRaw {
  std::uint64_t raw;
  bool holds;
};

/// Raw values up to this one are exact as doubles, and so is the number above it.
constexpr std::uint64_t kExactMask = (std::uint64_t{1} << 52) - 1;

/// @param rounded  a rounded quotient, still to be cut to a whole number
/// @param mask     of the signal's bits, up to `kExactMask`
/// @param sign     the topmost of them for a signed signal, else 0
LimitedRaw limited_exact(double rounded, std::uint64_t mask, std::uint64_t sign) {
  const auto low = -static_cast<double>(static_cast<std::int64_t>(sign));
  const auto high = static_cast<double>(static_cast<std::int64_t>(mask - sign));
  const auto bits = [mask](double number) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(number)) & mask;
  };
  if (rounded > low - 1 && rounded < high + 1) [[likely]] {
    return {bits(rounded), true};
  }
  if (std::isnan(rounded)) return {0, false};
  return {bits(rounded < low ? low : high), false};
}

/// Likewise for up to 64 bits.
LimitedRaw limited(double rounded, std::uint64_t mask, bool is_signed) {
  if (is_signed) {
    const auto high = static_cast<std::int64_t>(mask >> 1);
    const std::int64_t wide = codec::to_int64(rounded);
    const std::int64_t raw = std::clamp(wide, -high - 1, high);
    return {static_cast<std::uint64_t>(raw) & mask,
            raw == wide && rounded < 0x1p63 && rounded >= -0x1p63};
  }
  const std::uint64_t wide = codec::to_uint64(rounded);
  const std::uint64_t raw = std::min(wide, mask);
  return {raw, raw == wide && rounded > -1 && rounded < 0x1p64};
}

/// The bits of an IEEE single; what is finite stays so.
LimitedRaw limited_single(double number) {
  constexpr float kMost = std::numeric_limits<float>::max();
  auto single = static_cast<float>(number);
  const bool holds = std::isinf(single) == std::isinf(number);
  if (!holds) single = std::copysign(kMost, single);
  return {std::bit_cast<std::uint32_t>(single), holds};
}

/// Puts a raw value into the little-endian word of a frame.
std::uint64_t placed(const QuickSignal& signal, std::uint64_t raw, std::uint64_t word) {
  const std::uint64_t mask = signal.mask << signal.shift;
  const std::uint64_t bits = raw << signal.shift;
  const bool is_reversed = signal.word != 0;
  return (word & ~(is_reversed ? zelk::reversed_bytes(mask) : mask)) |
         (is_reversed ? zelk::reversed_bytes(bits) : bits);
}

bool encode(const QuickSignal& quick, double physical, std::uint64_t& word) {
  const double rounded = codec::rounded_quotient(physical, quick.factor, quick.offset);
  const LimitedRaw value = quick.mask <= kExactMask ? limited_exact(rounded, quick.mask, quick.sign)
                                                    : limited(rounded, quick.mask, quick.sign != 0);
  word = placed(quick, value.raw, word);
  return value.holds;
}

bool encode(const QuickSignal& quick, double physical, unsigned char* data, std::size_t length) {
  std::uint64_t word = FrameWords::load(data, length);
  const bool holds = encode(quick, physical, word);
  std::memcpy(data, &word, std::min(length, kWordBytes));
  return holds;
}

bool encode(const SlowSignal& slow, double physical, unsigned char* data) {
  const sigblk& signal = slow.signal;
  LimitedRaw value = {0, true};
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE) {
    value.raw = std::bit_cast<std::uint64_t>((physical - signal.offset) / signal.factor);
  } else if (signal.value_type == ZELK_VALUE_IEEE_SINGLE) {
    value = limited_single((physical - signal.offset) / signal.factor);
  } else if (slow.length_bits > 0) {
    value = limited(codec::rounded_quotient(physical, signal.factor, signal.offset),
                    codec::low_bits(signal.length), codec::is_signed(signal));
  }
  codec::insert(&value.raw, sizeof value.raw, signal.start_bit, slow.length_bits, slow.at.motorola,
                data);
  return value.holds;
}

bool is_selected(const std::uint64_t* present, std::size_t index) {
  return !present || is_set(present, index);
}

/// The signals in their order, each put into the frame by itself.
bool encode_any(const FramePlan& plan, const double* values, const std::uint64_t* present,
                unsigned char* data, std::size_t length) {
  bool holds = true;
  auto quick = plan.quick().begin();
  auto slow = plan.slow.begin();
  for (std::uint32_t index = 0; index < plan.records.size(); ++index) {
    const bool is_quick = quick != plan.quick().end() && quick->index == index;
    if (is_selected(present, index)) {
      holds &= plan.bytes_needed[index] <= length &&
               (is_quick ? encode(*quick, values[index], data, length)
                         : encode(*slow, values[index], data));
    }
    quick += is_quick ? 1 : 0;
    slow += slow != plan.slow.end() && slow->index == index ? 1 : 0;
  }
  return holds;
}

}  // namespace

ZelkFrameEncoder::ZelkFrameEncoder(const msgblk& message) : plan_(FramePlan::of(message)) {}
ZelkFrameEncoder::ZelkFrameEncoder(ZelkFrameEncoder&&) noexcept = default;
ZelkFrameEncoder& ZelkFrameEncoder::operator=(ZelkFrameEncoder&&) noexcept = default;
ZelkFrameEncoder::~ZelkFrameEncoder() = default;

std::size_t ZelkFrameEncoder::SignalCount() const { return plan_->records.size(); }

bool ZelkFrameEncoder::Encode(const double* values, const std::uint64_t* present,
                              unsigned char* data, std::size_t length) const {
  const FramePlan& plan = *plan_;
  if (length < plan.plain_bytes) return encode_any(plan, values, present, data, length);
  bool holds = true;
  std::uint64_t word = FrameWords::first_eight(data);
  for (const QuickSignal& signal : plan.quick()) {
    if (is_selected(present, signal.index)) holds &= encode(signal, values[signal.index], word);
  }
  std::memcpy(data, &word, kWordBytes);
  return holds;
}

// --- Decoders by identifier ---

/// Places among the decoders by identifier. They take half the memory of pointers, so that the
/// slots of a large database stay in the caches.
struct ZelkFrameDecoderTable::Entries {
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  explicit Entries(const msgblk* messages) : places(zelk::each(messages).size()) {
    for (const msgblk& message : zelk::each(messages)) {
      places.enter(message.id, static_cast<std::uint32_t>(decoders.size()));
      decoders.emplace_back(message);
    }
  }

  std::vector<ZelkFrameDecoder> decoders;
  zelk::HashTable<std::uint32_t, std::uint32_t, kNone> places;
};

ZelkFrameDecoderTable::ZelkFrameDecoderTable(const msgblk* messages)
    : entries_(std::make_unique<const Entries>(messages)) {}
ZelkFrameDecoderTable::ZelkFrameDecoderTable(ZelkFrameDecoderTable&&) noexcept = default;
ZelkFrameDecoderTable& ZelkFrameDecoderTable::operator=(ZelkFrameDecoderTable&&) noexcept = default;
ZelkFrameDecoderTable::~ZelkFrameDecoderTable() = default;

const ZelkFrameDecoder* ZelkFrameDecoderTable::Find(std::uint32_t id) const {
  const std::uint32_t place = entries_->places.find(id);
  return place == Entries::kNone ? nullptr : &entries_->decoders[place];
}

const ZelkFrameDecoder* ZelkFrameDecoderTable::Find(const msgblk& message) const {
  const ZelkFrameDecoder* const first = Find(message.id);
  if (first && &first->Message() == &message) return first;
  const auto& decoders = entries_->decoders;
  const auto found = std::find_if(decoders.begin(), decoders.end(), [&](const auto& decoder) {
    return &decoder.Message() == &message;
  });
  return found == decoders.end() ? nullptr : &*found;
}

#include "zelk/frame_decoder.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "access/frame_plan.hpp"

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
  FrameWords(const unsigned char* data, std::size_t length) {
    if (length >= kWordBytes) {
      std::memcpy(words, data, kWordBytes);
    } else if (length > 0) {
      words[0] = codec::load_bytes(data, static_cast<std::uint32_t>(length));
    }
    words[1] = __builtin_bswap64(words[0]);
  }

  std::uint64_t words[2] = {};
};

std::int64_t raw_value(const QuickSignal& signal, const FrameWords& frame) {
  const std::uint64_t bits = frame.words[signal.word] >> signal.shift & signal.mask;
  return static_cast<std::int64_t>((bits ^ signal.sign) - signal.sign);
}

std::int64_t raw_value(const FramePlan& plan, const SlowSignal& slow, const unsigned char* data) {
  const std::uint64_t bits = codec::extract_whole(data, slow.at, slow.length_bits);
  const sigblk& signal = plan.signals[slow.index];
  return codec::is_ieee(signal) ? static_cast<std::int64_t>(bits)
                                : codec::sign_handled64(bits, signal);
}

double physical_value(const FramePlan& plan, const SlowSignal& slow, const unsigned char* data) {
  const std::int64_t raw = raw_value(plan, slow, data);
  const sigblk& signal = plan.signals[slow.index];
  double physical = 0;
  if (codec::is_ieee(signal)) {
    codec::to_physical(codec::ieee_value(static_cast<std::uint64_t>(raw), signal), signal,
                       physical);
  } else {
    codec::to_physical(raw, signal, physical);
  }
  return physical;
}

/// Whether the multiplexor's value, read as `ZelkManager::CheckSignalModeValue` reads it, is one of
/// those that select the signal.
bool is_selected(const FramePlan& plan, const zelk::DependentSignal& signal,
                 const unsigned char* data, std::size_t length) {
  // As a multiplexor an IEEE signal has its own length, which may reach further.
  if (plan.masks[signal.multiplexor].min_data_length > length) return false;
  std::uint32_t value = 0;
  if (codec::read_masked(data, plan.masks[signal.multiplexor], plan.signals[signal.multiplexor],
                         value) != ZelkSigvalueOk) {
    return false;
  }
  const auto* const first = plan.ranges.data() + signal.first_range;
  return std::any_of(first, first + signal.range_count, [value](const zelk::ValueRange& range) {
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
    if (plan.bytes_needed[signal.index] <= length && is_set(present, signal.multiplexor) &&
        is_selected(plan, signal, data, length)) {
      set(present, signal.index);
    }
  }
}

void set_all(const FramePlan& plan, std::uint64_t* present) {
  if (plan.presence_words == 0) return;
  for (std::size_t i = 1; i < plan.presence_words; ++i) *present++ = ~std::uint64_t{0};
  *present = plan.last_word;
}

/// Calls `decode_quick` and `decode_slow` for the signals that the frame holds.
template <typename Value, typename DecodeQuick, typename DecodeSlow>
void decode(const FramePlan& plan, const unsigned char* data, std::size_t length, Value* values,
            std::uint64_t* present, DecodeQuick decode_quick, DecodeSlow decode_slow) {
  const FrameWords frame(data, length);
  if (length >= plan.bytes_for_all) {
    set_all(plan, present);
    for (const QuickSignal& signal : plan.quick) values[signal.index] = decode_quick(signal, frame);
    for (const SlowSignal& signal : plan.slow) values[signal.index] = decode_slow(signal);
    return;
  }
  find_present(plan, data, length, present);
  std::fill_n(values, plan.records.size(), Value{});
  for (const QuickSignal& signal : plan.quick) {
    if (is_set(present, signal.index)) values[signal.index] = decode_quick(signal, frame);
  }
  for (const SlowSignal& signal : plan.slow) {
    if (is_set(present, signal.index)) values[signal.index] = decode_slow(signal);
  }
}

}  // namespace

// --- Decoding ---

ZelkFrameDecoder::ZelkFrameDecoder(const msgblk& message)
    : plan_(std::make_unique<const FramePlan>(message)) {}
ZelkFrameDecoder::ZelkFrameDecoder(ZelkFrameDecoder&&) noexcept = default;
ZelkFrameDecoder& ZelkFrameDecoder::operator=(ZelkFrameDecoder&&) noexcept = default;
ZelkFrameDecoder::~ZelkFrameDecoder() = default;

const msgblk& ZelkFrameDecoder::Message() const { return plan_->message; }
std::size_t ZelkFrameDecoder::SignalCount() const { return plan_->records.size(); }
const sigblk& ZelkFrameDecoder::Signal(std::size_t index) const { return *plan_->records[index]; }

void ZelkFrameDecoder::Decode(const unsigned char* data, std::size_t length, double* values,
                              std::uint64_t* present) const {
  const FramePlan& plan = *plan_;
  decode(
      plan, data, length, values, present,
      [](const QuickSignal& signal, const FrameWords& frame) {
        return static_cast<double>(raw_value(signal, frame)) * signal.factor + signal.offset;
      },
      [&](const SlowSignal& signal) { return physical_value(plan, signal, data); });
}

void ZelkFrameDecoder::DecodeRaw(const unsigned char* data, std::size_t length,
                                 std::int64_t* values, std::uint64_t* present) const {
  const FramePlan& plan = *plan_;
  decode(
      plan, data, length, values, present,
      [](const QuickSignal& signal, const FrameWords& frame) { return raw_value(signal, frame); },
      [&](const SlowSignal& signal) { return raw_value(plan, signal, data); });
}

// --- Encoding ---

namespace {

/// Whether a rounded quotient holds its value when it is cut to a whole number within
/// [`low`, `high`]; puts the nearest of these into `raw`, 0 for not-a-number.
bool cut_to(double rounded, double low, double high, std::int64_t& raw) {
  const bool holds = rounded > low - 1 && rounded < high + 1;
  const double limited = rounded < high ? std::max(rounded, low) : high;
  raw = rounded == rounded ? static_cast<std::int64_t>(limited) : 0;
  return holds;
}

/// Puts a raw value into the little-endian word of a frame.
void place(const QuickSignal& signal, std::uint64_t raw, std::uint64_t& word) {
  const std::uint64_t mask = signal.mask << signal.shift;
  const std::uint64_t bits = (raw & signal.mask) << signal.shift;
  const bool is_reversed = signal.word != 0;
  word &= ~(is_reversed ? __builtin_bswap64(mask) : mask);
  word |= is_reversed ? __builtin_bswap64(bits) : bits;
}

/// For raw values that are exact as doubles.
bool encode_quick(const QuickSignal& quick, const sigblk& signal, double physical,
                  std::uint64_t& word) {
  const auto high = static_cast<double>(quick.mask >> (quick.sign != 0 ? 1 : 0));
  const auto low = -static_cast<double>(quick.sign);
  std::int64_t raw = 0;
  const bool holds = cut_to(codec::rounded_quotient(physical, signal), low, high, raw);
  place(quick, static_cast<std::uint64_t>(raw), word);
  return holds;
}

/// Raw value of up to 64 bits, limited to them.
bool limited_raw(const sigblk& signal, double physical, std::uint64_t& raw) {
  const double rounded = codec::rounded_quotient(physical, signal);
  const std::uint64_t all = codec::low_bits(signal.length);
  if (codec::is_signed(signal)) {
    const auto high = static_cast<std::int64_t>(all >> 1);
    const std::int64_t wide = codec::to_int64(rounded);
    const std::int64_t limited = std::clamp(wide, -high - 1, high);
    raw = static_cast<std::uint64_t>(limited) & all;
    return limited == wide && rounded < 0x1p63 && rounded >= -0x1p63;
  }
  const std::uint64_t wide = codec::to_uint64(rounded);
  raw = std::min(wide, all);
  return raw == wide && rounded > -1 && rounded < 0x1p64;
}

bool encode_wide(const QuickSignal& quick, const sigblk& signal, double physical,
                 std::uint64_t& word) {
  std::uint64_t raw = 0;
  const bool holds = limited_raw(signal, physical, raw);
  place(quick, raw, word);
  return holds;
}

bool encode_slow(const FramePlan& plan, const SlowSignal& slow, double physical,
                 unsigned char* data) {
  const sigblk& signal = plan.signals[slow.index];
  std::uint64_t bits = 0;
  bool holds = true;
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE) {
    bits = std::bit_cast<std::uint64_t>((physical - signal.offset) / signal.factor);
  } else if (signal.value_type == ZELK_VALUE_IEEE_SINGLE) {
    bits = std::bit_cast<std::uint32_t>(
        static_cast<float>((physical - signal.offset) / signal.factor));
  } else if (slow.length_bits > 0) {
    holds = limited_raw(signal, physical, bits);
  }
  codec::insert(&bits, sizeof bits, signal.start_bit, slow.length_bits, slow.at.motorola, data);
  return holds;
}

/// Raw values up to this length are exact as doubles, and so is the number above the largest.
constexpr std::uint64_t kExactMask = (std::uint64_t{1} << 52) - 1;

}  // namespace

ZelkFrameEncoder::ZelkFrameEncoder(const msgblk& message)
    : plan_(std::make_unique<const FramePlan>(message)) {}
ZelkFrameEncoder::ZelkFrameEncoder(ZelkFrameEncoder&&) noexcept = default;
ZelkFrameEncoder& ZelkFrameEncoder::operator=(ZelkFrameEncoder&&) noexcept = default;
ZelkFrameEncoder::~ZelkFrameEncoder() = default;

std::size_t ZelkFrameEncoder::SignalCount() const { return plan_->records.size(); }

bool ZelkFrameEncoder::Encode(const double* values, const std::uint64_t* present,
                              unsigned char* data, std::size_t length) const {
  const FramePlan& plan = *plan_;
  bool holds = true;
  const auto is_written = [&](std::uint32_t index) {
    if (present && !is_set(present, index)) return false;
    holds &= plan.bytes_needed[index] <= length;
    return plan.bytes_needed[index] <= length;
  };
  std::uint64_t word = FrameWords(data, length).words[0];
  const auto store = [&] {
    if (length > 0) std::memcpy(data, &word, std::min(length, kWordBytes));
  };
  auto slow = plan.slow.begin();
  const auto write_slow_before = [&](std::uint32_t index) {
    if (slow == plan.slow.end() || slow->index >= index) return;
    store();
    for (; slow != plan.slow.end() && slow->index < index; ++slow) {
      if (is_written(slow->index)) holds &= encode_slow(plan, *slow, values[slow->index], data);
    }
    word = FrameWords(data, length).words[0];
  };
  for (const QuickSignal& signal : plan.quick) {
    write_slow_before(signal.index);
    if (!is_written(signal.index)) continue;
    holds &= signal.mask <= kExactMask
                 ? encode_quick(signal, plan.signals[signal.index], values[signal.index], word)
                 : encode_wide(signal, plan.signals[signal.index], values[signal.index], word);
  }
  store();
  write_slow_before(UINT32_MAX);
  for (const std::uint32_t index : plan.never_fitting) holds &= present && !is_set(present, index);
  return holds;
}

// --- Decoders by identifier ---

/// An open hash table, at most half full. The multiplier is drawn anew for each table, so that no
/// database can be made to collide.
struct ZelkFrameDecoderTable::Entries {
  struct Slot {
    std::uint32_t id = 0;
    std::uint32_t position = kEmpty;  ///< among the decoders
  };
  static constexpr std::uint32_t kEmpty = 0xFFFFFFFF;

  explicit Entries(const msgblk* messages) {
    for (const msgblk* message = messages; message; message = message->next) {
      decoders.emplace_back(*message);
    }
    slots.resize(std::bit_ceil(2 * decoders.size() + 1));
    shift = 64 - std::countr_zero(slots.size());
    std::random_device random;
    multiplier = (std::uint64_t{random()} << 32 | random()) | 1;
    for (std::uint32_t i = 0; i < decoders.size(); ++i) enter(decoders[i].Message().id, i);
  }

  /// The slot of an identifier, or the empty one where it would be.
  std::size_t slot_of(std::uint32_t id) const {
    const std::size_t last = slots.size() - 1;
    std::size_t slot = shift < 64 ? id * multiplier >> shift : 0;
    while (slots[slot].position != kEmpty && slots[slot].id != id) slot = (slot + 1) & last;
    return slot;
  }

  void enter(std::uint32_t id, std::uint32_t position) {
    Slot& slot = slots[slot_of(id)];
    if (slot.position == kEmpty) slot = {id, position};
  }

  std::vector<ZelkFrameDecoder> decoders;
  std::vector<Slot> slots;
  std::uint64_t multiplier = 1;
  int shift = 0;
};

ZelkFrameDecoderTable::ZelkFrameDecoderTable(const msgblk* messages)
    : entries_(std::make_unique<const Entries>(messages)) {}
ZelkFrameDecoderTable::ZelkFrameDecoderTable(ZelkFrameDecoderTable&&) noexcept = default;
ZelkFrameDecoderTable& ZelkFrameDecoderTable::operator=(ZelkFrameDecoderTable&&) noexcept = default;
ZelkFrameDecoderTable::~ZelkFrameDecoderTable() = default;

const ZelkFrameDecoder* ZelkFrameDecoderTable::Find(std::uint32_t id) const {
  const Entries::Slot& slot = entries_->slots[entries_->slot_of(id)];
  return slot.position == Entries::kEmpty ? nullptr : &entries_->decoders[slot.position];
}

const ZelkFrameDecoder* ZelkFrameDecoderTable::Find(const msgblk& message) const {
  const auto& decoders = entries_->decoders;
  const auto found = std::find_if(decoders.begin(), decoders.end(), [&](const auto& decoder) {
    return &decoder.Message() == &message;
  });
  return found == decoders.end() ? nullptr : &*found;
}

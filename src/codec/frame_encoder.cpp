#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "base/byte_order.hpp"
#include "codec/conversion.hpp"
#include "codec/frame_plan.hpp"
#include "codec/frame_words.hpp"
#include "zelk/frame_decoder.hpp"

namespace zelk {
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

/// The bits of an IEEE single; finite numbers stay finite.
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
  return (word & ~(is_reversed ? reversed_bytes(mask) : mask)) |
         (is_reversed ? reversed_bytes(bits) : bits);
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
  store_little_endian(data, word, std::min(length, kWordBytes));
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
                    low_bits(signal.length), is_signed(signal));
  }
  codec::insert(codec::words_of(value.raw), signal.start_bit, slow.length_bits, slow.at.motorola,
                data);
  return value.holds;
}

bool is_selected(const std::uint64_t* present, std::size_t index) {
  return !present || is_set(present, index);
}

/// Puts the signals into the frame one by one, in their order.
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
}  // namespace zelk

ZelkFrameEncoder::ZelkFrameEncoder(const msgblk& message) : plan_(zelk::FramePlan::of(message)) {}
ZelkFrameEncoder::ZelkFrameEncoder(ZelkFrameEncoder&&) noexcept = default;
ZelkFrameEncoder& ZelkFrameEncoder::operator=(ZelkFrameEncoder&&) noexcept = default;
ZelkFrameEncoder::~ZelkFrameEncoder() = default;

std::size_t ZelkFrameEncoder::SignalCount() const { return plan_->records.size(); }

bool ZelkFrameEncoder::Encode(const double* values, const std::uint64_t* present,
                              unsigned char* data, std::size_t length) const {
  const zelk::FramePlan& plan = *plan_;
  if (length < plan.plain_bytes) return zelk::encode_any(plan, values, present, data, length);
  bool holds = true;
  std::uint64_t word = zelk::FrameWords::first_eight(data);
  for (const zelk::QuickSignal& signal : plan.quick()) {
    if (zelk::is_selected(present, signal.index))
      holds &= zelk::encode(signal, values[signal.index], word);
  }
  zelk::store_little_endian(data, word);
  return holds;
}

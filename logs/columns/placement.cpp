#include "logs/columns/placement.hpp"

#include "base/signal_bits.hpp"
#include "logs/columns/bits.hpp"

namespace zelk::logs {

namespace {

constexpr std::uint32_t kWindowBytes = 8;

/// Signals that lie within one of the eight-byte words of a frame share its window.
std::optional<std::uint32_t> window_byte(std::uint32_t first_byte, std::uint32_t end_byte) {
  const std::uint32_t aligned = first_byte / kWindowBytes * kWindowBytes;
  if (end_byte - aligned <= kWindowBytes) return aligned;
  if (end_byte - first_byte <= kWindowBytes) return first_byte;
  return std::nullopt;
}

}  // namespace

std::uint16_t length_in_frame(const sigblk& signal) {
  if (signal.value_type == ZELK_VALUE_IEEE_SINGLE) return 32;
  return signal.value_type == ZELK_VALUE_IEEE_DOUBLE ? 64 : signal.length;
}

std::optional<Placement> placement_of(const sigblk& signal) {
  const std::uint32_t length = length_in_frame(signal);
  if (length == 0 || length > kWordBits) return std::nullopt;
  const bool is_high_first = is_motorola(signal);
  // In the order of the bytes: of the lowest bit for Intel, of the highest one for Motorola.
  const std::uint32_t first = is_high_first ? mirrored_bit(signal.start_bit) : signal.start_bit;
  if (is_high_first && first + length - 1 > UINT16_MAX) return std::nullopt;
  const std::uint32_t end = (first + length + 7) / 8;
  const auto byte = window_byte(first / 8, end);
  if (!byte) return std::nullopt;
  BitField field;
  field.mask = low_bits(length);
  field.sign = is_signed(signal) && !is_ieee(signal) ? std::uint64_t{1} << (length - 1) : 0;
  const std::uint32_t in_window = first - 8 * *byte;
  field.shift = is_high_first ? 64 - in_window - length : in_window;
  return Placement{{*byte, is_high_first}, field, end};
}

}  // namespace zelk::logs

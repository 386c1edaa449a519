/// \file
/// Flags and value types of signals and signal types, and the numbering of bits.

#ifndef ZELK_BASE_SIGNAL_BITS_HPP
#define ZELK_BASE_SIGNAL_BITS_HPP

#include <cstdint>

#include "zelk/records.h"

namespace zelk {

// Of a `sigblk`, a `sigtype`, or whatever else has members of these names.

template <typename Record>
constexpr bool is_motorola(const Record& record) {
  return (record.flags & ZELK_SIGNAL_MOTOROLA) != 0;
}

template <typename Record>
constexpr bool is_signed(const Record& record) {
  return (record.flags & ZELK_SIGNAL_SIGNED) != 0;
}

template <typename Record>
constexpr bool is_ieee(const Record& record) {
  return record.value_type == ZELK_VALUE_IEEE_SINGLE || record.value_type == ZELK_VALUE_IEEE_DOUBLE;
}

/// @param flag  one of `ZELK_SIGNAL_*`
template <typename Record>
constexpr void set_flag(Record& record, int flag, bool is_set = true) {
  record.flags = static_cast<std::uint16_t>(is_set ? record.flags | flag : record.flags & ~flag);
}

/// Changes between the two numberings of bits:
///
///     byte              0                  1
///     as in a database  7 6 5 4 3 2 1 0   15 14 13 12 11 10 9 8
///     as transmitted    0 1 2 3 4 5 6 7    8  9 10 11 12 13 14 15
///
/// Intel signals run upwards from their start bit in the first numbering, Motorola signals in the
/// second one.
constexpr std::uint32_t mirrored_bit(std::uint32_t bit) { return (bit & ~7u) + 7 - (bit & 7u); }

/// Number of the data byte behind the last one that a signal reaches into; the arguments are its
/// members.
template <typename Record>
constexpr std::uint32_t end_byte(const Record& signal) {
  const std::uint32_t start = signal.start_bit;
  const std::uint32_t first = is_motorola(signal) ? mirrored_bit(start) : start;
  return (first + signal.length + 7) / 8;
}

/// A number with as many bits set, from the lowest one on; all for 64 and more.
constexpr std::uint64_t low_bits(unsigned count) {
  return count < 64 ? (std::uint64_t{1} << count) - 1 : ~std::uint64_t{0};
}

}  // namespace zelk

#endif

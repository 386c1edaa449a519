/// \file
/// Numbers whose bytes stand in memory with the lowest one first, on machines of either byte order.

#ifndef ZELK_BASE_BYTE_ORDER_HPP
#define ZELK_BASE_BYTE_ORDER_HPP

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/compiler.hpp"

namespace zelk {

/// Changes between a number and the one whose bytes, in the order of this machine, are the number's
/// with the lowest one first.
template <typename Unsigned>
constexpr Unsigned little_endian(Unsigned number) {
  if constexpr (std::endian::native == std::endian::little) {
    return number;
  } else {
    return reversed_bytes(number);
  }
}

template <typename Unsigned>
ZELK_ALWAYS_INLINE Unsigned load_little_endian(const void* from) {
  Unsigned number = 0;
  std::memcpy(&number, from, sizeof number);
  return little_endian(number);
}

/// Writes the lowest `size` bytes of the number, eight at most.
ZELK_ALWAYS_INLINE void store_little_endian(void* to, std::uint64_t number,
                                            std::size_t size = sizeof(std::uint64_t)) {
  number = little_endian(number);
  std::memcpy(to, &number, size);
}

}  // namespace zelk

#endif

/// \file
/// Identifiers of frames: their ranges, and how they are written.

#ifndef ZELK_BASE_FRAME_ID_HPP
#define ZELK_BASE_FRAME_ID_HPP

#include <cstdint>

#include "zelk/records.h"

namespace zelk {

inline constexpr std::uint32_t kLargestStandardId = 0x7FF;       ///< of 11 bits
inline constexpr std::uint32_t kLargestExtendedId = 0x1FFFFFFF;  ///< of 29 bits

/// An identifier without its format bit.
constexpr std::uint32_t bare_id(std::uint32_t id) { return id & ~ZELK_ID_EXTENDED; }

/// Hexadecimal digits that an identifier is written with: 8 for an extended one, else 3.
constexpr int id_digits(std::uint32_t id) { return id & ZELK_ID_EXTENDED ? 8 : 3; }

}  // namespace zelk

#endif

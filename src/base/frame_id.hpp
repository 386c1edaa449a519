/// \file
/// The ranges of frame identifiers.

#ifndef ZELK_BASE_FRAME_ID_HPP
#define ZELK_BASE_FRAME_ID_HPP

#include <cstdint>

namespace zelk {

inline constexpr std::uint32_t kLargestStandardId = 0x7FF;       ///< of 11 bits
inline constexpr std::uint32_t kLargestExtendedId = 0x1FFFFFFF;  ///< of 29 bits

}  // namespace zelk

#endif

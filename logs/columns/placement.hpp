/// \file
/// Where a signal's bits lie in frames, when one load of eight bytes covers them.

#ifndef ZELK_LOGS_COLUMNS_PLACEMENT_HPP
#define ZELK_LOGS_COLUMNS_PLACEMENT_HPP

#include <cstdint>
#include <optional>

#include "logs/columns/kernels.hpp"

namespace zelk::logs {

/// Eight bytes of frames, taken as a number.
struct Window {
  std::uint32_t first_byte = 0;
  bool is_motorola = false;  ///< the first byte is the highest one

  bool operator==(const Window&) const = default;
};

struct Placement {
  Window window;
  BitField field;
  std::uint32_t end_byte;  ///< a frame holds the signal when it has that many bytes
};

/// Bits that a signal has in a frame.
std::uint16_t length_in_frame(const sigblk& signal);

/// None for signals of no bits, of more than 64, in nine bytes, or whose position is beyond 16
/// bits: what `ZelkFrameDecoder` makes of these, it says itself.
std::optional<Placement> placement_of(const sigblk& signal);

}  // namespace zelk::logs

#endif

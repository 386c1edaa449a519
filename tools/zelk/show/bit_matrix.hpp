/// \file
/// The drawing of where signals lie in a frame.

#ifndef ZELK_TOOL_SHOW_BIT_MATRIX_HPP
#define ZELK_TOOL_SHOW_BIT_MATRIX_HPP

#include <string>
#include <unordered_map>

#include "check/picture/frame_bits.hpp"
#include "term/output.hpp"

namespace zelk::tool {

/// The short words that stand for signals in a drawing.
using SignalKeys = std::unordered_map<const sigblk*, std::string>;

/// Draws bytes as rows and bits 7 to 0 as columns. Every cell shows the key of the signal whose bit
/// it is, "[" in front of the most significant and "]" behind the least significant bit, "." for a
/// bit that nothing uses and "#" for one that several signals use; a line below the drawing says
/// which ones. Rows behind the data length are marked. A drawing that leaves rows out says so.
///
/// @param keys       of all signals of the frame
/// @param key_width  length of the longest key, at least 1
void draw_bit_matrix(Output& out, const check::FrameBits& frame, const SignalKeys& keys,
                     std::size_t key_width);

}  // namespace zelk::tool

#endif

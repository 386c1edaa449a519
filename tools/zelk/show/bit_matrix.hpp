/// \file
/// The drawing of where signals lie in a frame.

#ifndef ZELK_TOOL_SHOW_BIT_MATRIX_HPP
#define ZELK_TOOL_SHOW_BIT_MATRIX_HPP

#include <cstdint>
#include <string>
#include <vector>

#include "term/output.hpp"
#include "zelk/records.h"

namespace zelk::tool {

/// Place of one bit in the data: byte from 0, and bit 7 (most significant) to 0 inside the byte.
struct BitPlace {
  std::uint32_t byte;
  std::uint32_t bit;
};

/// Place of the signal's bit `index`, counted from its least significant one; `index` is below its
/// length.
BitPlace bit_place(const sigblk& signal, std::uint32_t index);

/// A signal and the short word that stands for it in a drawing.
struct KeyedSignal {
  const sigblk* signal;
  std::string key;
};

/// Draws bytes as rows and bits 7 to 0 as columns. Every cell shows the key of the signal whose bit
/// it is, "[" in front of the most significant and "]" behind the least significant bit, "." for a
/// bit that nothing uses and "#" for one that several signals use; a line below the drawing says
/// which ones. Rows behind `dlc` bytes are drawn only when a signal lies in them, and are marked.
/// Of frames longer than 64 bytes only the rows with signals are drawn. A drawing ends after 128
/// rows, and says so.
///
/// @param dlc        data length in bytes
/// @param signals    to be drawn; signals without bits leave no trace
/// @param key_width  length of the longest key, at least 1
void draw_bit_matrix(Output& out, std::uint32_t dlc, const std::vector<KeyedSignal>& signals,
                     std::size_t key_width);

}  // namespace zelk::tool

#endif

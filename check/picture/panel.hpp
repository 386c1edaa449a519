/// \file
/// The drawing of one layout of a frame.

#ifndef ZELK_CHECK_PICTURE_PANEL_HPP
#define ZELK_CHECK_PICTURE_PANEL_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "check/picture/frame_bits.hpp"
#include "check/picture/layouts.hpp"
#include "check/picture/style.hpp"
#include "check/picture/svg.hpp"

namespace zelk::check {

/// Draws bytes as rows and bits 7 to 0 as columns:
///
///              7     6     5     4     3     2     1     0
///     byte 0  |7    |6    |5    |4    |3    |2    |1    |0    |   numbers of the bits in the data
///             |           Speed             |     | Gear      |
///             |MSB                       LSB|     |MSB     LSB|
///
/// In each row, the bits of a signal are one box with its name. In boxes of signals of several
/// bytes an arrow points to the less significant byte: down for Motorola, up for Intel. Bits that
/// signals share are hatched; lines below say which signals they are, and which lie behind the data
/// length.
class Panel {
 public:
  /// All are borrowed.
  Panel(const msgblk& message, const Layout& layout, const SignalMarks& marks, int cell_width)
      : message_(message), layout_(layout), marks_(marks), cell_width_(cell_width) {}

  static int width(int cell_width) { return kLabelWidth + 8 * cell_width; }

  /// Draws it with this upper left corner.
  ///
  /// @return the y behind it
  int draw(Svg& svg, int x, int y) const;

 private:
  static constexpr int kLabelWidth = 52;

  struct Run;

  int draw_rows(Svg& svg, const FrameBits& frame, int x, int y) const;
  /// @param x  of the left edge of bit 7
  std::vector<Run> runs_of(std::uint32_t byte, const std::array<FrameBit, 8>& row, int x,
                           int y) const;
  void draw_signal(Svg& svg, const Run& run) const;
  void draw_overlap(Svg& svg, const Run& run) const;
  void draw_numbers(Svg& svg, const Run& run, const Font& font) const;
  void draw_ends(Svg& svg, const Run& run) const;
  int draw_notes(Svg& svg, const FrameBits& frame, int x, int y) const;

  const msgblk& message_;
  const Layout& layout_;
  const SignalMarks& marks_;
  int cell_width_;
};

}  // namespace zelk::check

#endif

/// \file
/// Curves as characters.

#ifndef ZELK_TOOL_PLOT_RASTER_HPP
#define ZELK_TOOL_PLOT_RASTER_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "plot/figure.hpp"
#include "plot/ticks.hpp"
#include "plot/traces.hpp"

namespace zelk::tool {

/// A rectangle of characters. In Unicode a character is a pattern of Braille,
/// which has two dots side by side and four one below the other:
///
///   bit  0 3
///        1 4
///        2 5
///        6 7
///
/// In ASCII it is the mark of a curve, and '#' where several meet.
class Raster {
 public:
  Raster(std::size_t columns, std::size_t rows, bool has_unicode);

  /// @param index  among the curves, for `curve_at`
  /// @param mark   in ASCII
  void draw(const Curve& curve, const Span& times, const Span& values, std::size_t index,
            char mark);

  /// The character at a place, in UTF-8; a blank where nothing is drawn.
  std::string text_at(std::size_t column, std::size_t row) const;
  /// Index of the last curve that was drawn at a place where there is one.
  std::size_t curve_at(std::size_t column, std::size_t row) const;
  /// Row of a curve's last value that is no gap; `rows` when there is none.
  std::size_t last_row_of(const Curve& curve, const Span& values) const;

 private:
  struct Cell {
    std::uint8_t dots = 0;
    char mark = ' ';
    std::size_t curve = 0;
  };

  PlotArea area() const;
  void line(const Place& from, const Place& to, std::size_t index, char mark);
  void dot(const Place& place, std::size_t index, char mark);

  std::size_t columns_;
  std::size_t rows_;
  std::size_t across_;  // dots of a character
  std::size_t down_;
  std::vector<Cell> cells_;  // row by row
};

}  // namespace zelk::tool

#endif

/// \file
/// A line of a terminal in colours.

#ifndef ZELK_TOOL_PLOT_STYLED_LINE_HPP
#define ZELK_TOOL_PLOT_STYLED_LINE_HPP

#include <cstddef>
#include <string>
#include <string_view>

namespace zelk::tool {

/// Grows from the left. Style 0 is plain; the following ones are colours, again
/// and again the same six, which can be read on dark and on light ground.
class StyledLine {
 public:
  explicit StyledLine(bool has_colors) : has_colors_(has_colors) {}

  StyledLine& append(std::string_view text, std::size_t style = 0);
  StyledLine& pad(std::size_t columns) { return append(std::string(columns, ' ')); }

  /// Columns up to here.
  std::size_t width() const { return width_; }
  /// The line, plain at its end and without blanks there.
  std::string text() const;

 private:
  bool has_colors_;
  std::string text_;
  std::size_t width_ = 0;
  std::size_t style_ = 0;  // at the end
};

}  // namespace zelk::tool

#endif

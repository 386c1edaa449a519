/// \file
/// The table of a message's signals below its picture.

#ifndef ZELK_CHECK_PICTURE_LEGEND_HPP
#define ZELK_CHECK_PICTURE_LEGEND_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/encoding.hpp"
#include "check/picture/style.hpp"
#include "check/picture/svg.hpp"

namespace zelk::check {

/// A row for each signal: number and colour, name, start bit, length, byte order, sign, factor,
/// offset, range, unit and receivers; in messages with multiplexed signals also when it is there.
/// Longer texts take several lines, or are cut and have their whole text as title.
class Legend {
 public:
  /// @param marks     of all signals of `message`; borrowed
  /// @param encoding  of the message's texts
  Legend(const msgblk& message, const SignalMarks& marks, Encoding encoding);

  int width() const;

  /// Draws it with this upper left corner.
  ///
  /// @return the y behind it
  int draw(Svg& svg, int x, int y) const;

 private:
  struct Column {
    std::string_view heading;
    bool is_number;
    std::vector<std::string> texts;  ///< of the rows
    int width;
  };
  struct Row {
    const SignalMark* mark;
    std::string comment;
  };

  void add(std::string_view heading, int most, bool is_number, std::vector<std::string> texts);
  void draw_heading(Svg& svg, int x, int y) const;
  int draw_row(Svg& svg, std::size_t index, int x, int y) const;
  void draw_mark(Svg& svg, const SignalMark& mark, int x, int y) const;

  std::vector<Row> rows_;
  std::vector<Column> columns_;
};

}  // namespace zelk::check

#endif

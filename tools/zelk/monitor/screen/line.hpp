/// \file
/// Lines of the screen: pieces of text, each with a role that the terminal gives its look.

#ifndef ZELK_TOOL_MONITOR_SCREEN_LINE_HPP
#define ZELK_TOOL_MONITOR_SCREEN_LINE_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "monitor/screen/text.hpp"

namespace zelk::tool {

/// Why a piece of text looks different. What matters is told in words or signs too: there are
/// terminals without colours, and eyes.
enum class Role : std::uint8_t {
  kPlain,
  kFaint,
  kBar,      ///< header and footer
  kHeading,  ///< of the columns
  kKey,
  kFresh,   ///< changed just now
  kFading,  ///< changed a moment ago
  kUnknown,
  kAlert,  ///< missing messages and errors
  kText,   ///< value descriptions
  kCurve,
};

struct ScreenPiece {
  Role role;
  std::string text;

  bool operator==(const ScreenPiece&) const = default;
};

struct ScreenLine {
  std::vector<ScreenPiece> pieces;
  Role background = Role::kPlain;  ///< behind the pieces, too
  bool is_selected = false;
};

/// Fills a line from left to right, and no further than its columns.
class LineWriter {
 public:
  LineWriter(ScreenLine& line, std::size_t columns, const CharacterSet& characters)
      : line_(line), columns_(columns), characters_(characters) {}

  std::size_t column() const { return column_; }
  std::size_t room() const { return columns_ - column_; }

  void add(std::string_view text, Role role);
  void add(std::string_view text) { add(text, line_.background); }
  /// A text cut down or filled up to `width` columns, at its left or right end.
  void add_left(std::string_view text, std::size_t width, Role role);
  void add_right(std::string_view text, std::size_t width, Role role);
  /// Blanks up to `column`, if that is further right.
  void skip_to(std::size_t column);

 private:
  void append(std::string_view text, Role role);

  ScreenLine& line_;
  std::size_t columns_;
  const CharacterSet& characters_;
  std::size_t column_ = 0;
};

}  // namespace zelk::tool

#endif

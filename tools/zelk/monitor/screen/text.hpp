/// \file
/// Texts of any origin in the columns of a terminal.

#ifndef ZELK_TOOL_MONITOR_SCREEN_TEXT_HPP
#define ZELK_TOOL_MONITOR_SCREEN_TEXT_HPP

#include <cstddef>
#include <string>
#include <string_view>

namespace zelk::tool {

/// What a terminal can show.
struct CharacterSet {
  bool is_utf8 = false;  ///< else ASCII alone
  /// Columns of a character beyond ASCII, 0 for one that joins the one in front of it; negative
  /// when it cannot be printed. Not asked without UTF-8.
  int (*width)(char32_t) = nullptr;

  /// One of two spellings of the program's own signs.
  const char* sign(const char* unicode, const char* ascii) const {
    return is_utf8 ? unicode : ascii;
  }
};

/// A text that can be printed as it is.
struct FittedText {
  std::string text;
  std::size_t columns = 0;
};

/// The beginning of `text` that fits into `columns`, with an ellipsis in the last one when
/// something is cut. Nothing in it makes a terminal do anything but print:
///
/// - control characters become "\n", "\x1B", ..., and characters that cannot be printed, are
///   invisible or turn the direction of writing "\u202E"
/// - a byte that is no UTF-8 becomes U+FFFD
/// - a combining character without one to combine with becomes "\u0301"; of many in one place, the
///   first ones count
/// - where the terminal has ASCII alone, any other character becomes "?"
FittedText fitted(std::string_view text, std::size_t columns, const CharacterSet& characters);

}  // namespace zelk::tool

#endif

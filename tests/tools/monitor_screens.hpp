/// \file
/// Screens of `zelk monitor` without a terminal: what they show as text, whichever system it is.

#ifndef ZELK_TESTS_TOOLS_MONITOR_SCREENS_HPP
#define ZELK_TESTS_TOOLS_MONITOR_SCREENS_HPP

#include <string>
#include <vector>

#include "monitor/screen/view.hpp"

inline constexpr std::int64_t kMs = 1'000'000;

/// Some characters of each width.
inline int test_width(char32_t c) {
  if (c >= 0x300 && c <= 0x36F) return 0;
  if (c >= 0x2E80 && c <= 0xFF60) return 2;
  return c == 0xFFFE || c == 0x378 ? -1 : 1;
}

inline constexpr zelk::tool::CharacterSet kUtf8{true, test_width};
inline constexpr zelk::tool::CharacterSet kAscii{};

/// A line as text, without blanks at its end.
inline std::string text_of(const zelk::tool::ScreenLine& line) {
  std::string text;
  for (const zelk::tool::ScreenPiece& piece : line.pieces) text += piece.text;
  return text.erase(text.find_last_not_of(' ') + 1);
}

inline std::string text_of(const std::vector<zelk::tool::ScreenLine>& lines) {
  std::string text;
  for (const zelk::tool::ScreenLine& line : lines) text += text_of(line) + '\n';
  return text;
}

/// The texts that have a role, each with a bar behind it.
inline std::string with_role(const zelk::tool::ScreenLine& line, zelk::tool::Role role) {
  std::string text;
  for (const zelk::tool::ScreenPiece& piece : line.pieces)
    if (piece.role == role) text += piece.text + '|';
  return text;
}

#endif

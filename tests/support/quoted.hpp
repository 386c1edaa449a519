#ifndef ZELK_TESTS_SUPPORT_QUOTED_HPP
#define ZELK_TESTS_SUPPORT_QUOTED_HPP

#include <algorithm>
#include <string>

/// The text of a database in which apostrophes stand for quotes.
inline std::string quoted(std::string text) {
  std::ranges::replace(text, '\'', '"');
  return text;
}

#endif

/// \file
/// Classes of ASCII characters, whatever the process's locale says.

#ifndef ZELK_TEXT_CHARACTERS_HPP
#define ZELK_TEXT_CHARACTERS_HPP

namespace zelk {

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// A letter or "_": what a name may begin with.
constexpr bool is_letter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

constexpr bool is_name_character(char c) { return is_letter(c) || is_digit(c); }

constexpr char to_upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace zelk

#endif

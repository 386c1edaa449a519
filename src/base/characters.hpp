/// \file
/// Classes of ASCII characters, whatever the process's locale says.

#ifndef ZELK_BASE_CHARACTERS_HPP
#define ZELK_BASE_CHARACTERS_HPP

namespace zelk {

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// A letter or "_": what a name may begin with.
constexpr bool is_letter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

constexpr bool is_name_character(char c) { return is_letter(c) || is_digit(c); }

/// Whether a byte can be the second one of a double-byte character. Bytes below 0x40, among them
/// the double quote and the line feed, are characters of their own, whatever stands before them.
constexpr bool is_trail_byte(char c) { return static_cast<unsigned char>(c) >= 0x40; }

constexpr char to_upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr char to_lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace zelk

#endif

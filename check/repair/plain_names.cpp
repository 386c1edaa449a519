#include "check/repair/plain_names.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "base/characters.hpp"
#include "base/encoding.hpp"
#include "check/statements/token.hpp"

namespace zelk::check {

namespace {

constexpr std::size_t kLongest = 128;

/// The letters from U+00C0 on; empty for signs.
constexpr std::array<std::string_view, 64> kLatin = {
    "A", "A", "A", "A", "Ae", "A", "AE", "C", "E", "E", "E", "E", "I",  "I", "I",  "I",
    "D", "N", "O", "O", "O",  "O", "Oe", "",  "O", "U", "U", "U", "Ue", "Y", "Th", "ss",
    "a", "a", "a", "a", "ae", "a", "ae", "c", "e", "e", "e", "e", "i",  "i", "i",  "i",
    "d", "n", "o", "o", "o",  "o", "oe", "",  "o", "u", "u", "u", "ue", "y", "th", "y"};

/// What stands for a code point outside ASCII.
std::string_view plain(std::uint32_t code_point) {
  if (code_point >= 0xC0 && code_point <= 0xFF) return kLatin[code_point - 0xC0];
  switch (code_point) {
    case 0xB0:
      return "deg";
    case 0xB2:
      return "2";
    case 0xB3:
      return "3";
    case 0xB5:
    case 0x3BC:
      return "u";
    case 0x2126:
    case 0x3A9:
      return "Ohm";
    default:
      return "";
  }
}

std::string_view plain(char character) {
  switch (character) {
    case '+':
      return "plus";
    case '%':
      return "pct";
    case '&':
      return "and";
    default:
      return "";
  }
}

}  // namespace

std::string plain_name(std::string_view text) {
  const std::string utf8 = to_utf8(text, encoding_of(text));
  std::string name;
  bool has_gap = false;  // characters that no letter stands for
  for (std::string_view rest = utf8; !rest.empty();) {
    const auto [code_point, size] = first_code_point(rest);
    rest.remove_prefix(size);
    const char c = static_cast<char>(code_point < 0x80 ? code_point : '\0');
    const std::string_view one(&c, 1);
    const std::string_view letters = code_point >= 0x80     ? plain(code_point)
                                     : is_name_character(c) ? one
                                                            : plain(c);
    if (letters.empty()) {
      has_gap = true;
      continue;
    }
    if (has_gap && !name.empty() && name.back() != '_') name += '_';
    has_gap = false;
    name += letters;
  }
  if (name.empty()) name = "_";
  if (is_digit(name[0])) name.insert(0, 1, '_');
  if (find_word(name) != Word::kNone) name += '_';
  const std::size_t most = text.size() <= kKeptName ? kKeptName : kLongest;
  return name.substr(0, most);
}

std::string numbered_name(std::string_view name, std::size_t number) {
  const std::string suffix = '_' + std::to_string(number);
  const std::size_t most = name.size() <= kKeptName ? kKeptName : kLongest;
  return std::string(name.substr(0, std::min(name.size(), most - suffix.size()))) + suffix;
}

}  // namespace zelk::check

#include "check/lint/words.hpp"

#include <array>
#include <charconv>

#include "zelk/records.h"

namespace zelk::check {

std::string hexadecimal(std::uint32_t id) {
  std::array<char, 8> digits{};
  char* const begin = digits.data();
  char* const end = std::to_chars(begin, begin + digits.size(), id & ~ZELK_ID_EXTENDED, 16).ptr;
  std::string text(begin, end);
  for (char& c : text) c = c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c;
  return "0x" + text;
}

}  // namespace zelk::check

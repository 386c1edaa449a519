#include "base/wildcards.hpp"

#include <cstddef>
#include <string>

namespace zelk {

namespace {

/// Bytes of the first character of a text in UTF-8, which is not empty.
std::size_t character_size(std::string_view text) {
  std::size_t size = 1;
  while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) ++size;
  return size;
}

}  // namespace

// Only the last "*" is ever gone back to: what an earlier one could take more of, it can too.
bool matches_wildcards(std::string_view pattern, std::string_view text) {
  constexpr std::size_t kNone = std::string_view::npos;
  std::size_t p = 0;
  std::size_t star = kNone;   // the last "*" in the pattern
  std::size_t behind_it = 0;  // where the text goes on behind what it took
  for (std::size_t t = 0; t < text.size();) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      behind_it = t;
    } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
      t += pattern[p++] == '?' ? character_size(text.substr(t)) : 1;
    } else if (star != kNone) {
      p = star + 1;
      t = ++behind_it;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == kNone;
}

bool matches_object(std::string_view pattern, std::string_view name, std::string_view owner) {
  if (matches_wildcards(pattern, name)) return true;
  return !owner.empty() && matches_wildcards(pattern, (std::string(owner) += '.') += name);
}

}  // namespace zelk

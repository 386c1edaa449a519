#include "term/text.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace zelk::tool {

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::vector<std::string> escaped_lines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, length);
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.push_back(escaped(line));
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return lines;
}

std::string lowered(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), lower);
  return result;
}

std::string counted(std::size_t count, std::string_view noun, std::string_view plural) {
  if (count == 1) return fmt::format("1 {}", noun);
  return plural.empty() ? fmt::format("{} {}s", count, noun) : fmt::format("{} {}", count, plural);
}

}  // namespace zelk::tool

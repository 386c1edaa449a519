#include "term/text.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "base/encoding.hpp"
#include "base/quoting.hpp"

namespace zelk::tool {

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Whether a byte of UTF-8 is not the first one of its character.
bool continues(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

/// The first `count` characters of a text, at most all.
std::string_view first_characters(std::string_view text, std::size_t count) {
  std::size_t end = 0;
  for (std::size_t i = 0; i < count && end < text.size(); ++i) {
    ++end;
    while (end < text.size() && continues(text[end])) ++end;
  }
  return text.substr(0, end);
}

std::string in_ascii(std::string_view text) {
  std::string result;
  for (const char c : text)
    if (!continues(c)) result += static_cast<unsigned char>(c) < 0x80 ? c : '?';
  return result;
}

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

std::size_t width_of(std::string_view text) {
  if (!zelk::is_utf8(text)) return text.size();
  return text.size() - static_cast<std::size_t>(std::ranges::count_if(text, continues));
}

std::string cut_to(std::string_view text, std::size_t width, bool ascii) {
  constexpr std::string_view kDots = "...";
  // What follows does not matter, however long it is.
  std::string line = escaped(utf8(first_characters(text, width + 1)));
  if (ascii) line = in_ascii(line);
  if (width_of(line) <= width) return line;
  const std::size_t kept = width > 2 * kDots.size() ? width - kDots.size() : width;
  line = first_characters(line, kept);
  return kept < width ? line.append(kDots) : line;
}

}  // namespace zelk::tool

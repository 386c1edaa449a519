#include "term/text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <utility>

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

std::size_t edit_distance(std::string_view a, std::string_view b, std::size_t limit) {
  const std::size_t excess = a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
  if (excess > limit) return limit + 1;

  // row[j] is the distance between the part of `a` read so far and the first j characters of `b`;
  // `last` and `before` are the rows of one and two characters less.
  std::vector<std::size_t> row(b.size() + 1);
  std::vector<std::size_t> last;
  std::vector<std::size_t> before;
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    before = std::exchange(last, row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const char of_a = lower(a[i - 1]);
      const char of_b = lower(b[j - 1]);
      row[j] = std::min({last[j - 1] + (of_a == of_b ? 0 : 1), row[j - 1] + 1, last[j] + 1});
      const bool is_swapped = i > 1 && j > 1 && of_a == lower(b[j - 2]) && lower(a[i - 2]) == of_b;
      if (is_swapped) row[j] = std::min(row[j], before[j - 2] + 1);
    }
    if (*std::ranges::min_element(row) > limit && *std::ranges::min_element(last) > limit)
      return limit + 1;
  }
  return std::min(row.back(), limit + 1);
}

}  // namespace zelk::tool

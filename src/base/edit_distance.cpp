#include "base/edit_distance.hpp"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace zelk {

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

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

}  // namespace zelk

#include "check/statements/order.hpp"

#include <algorithm>
#include <cstdint>

namespace zelk::check {

std::vector<bool> longest_in_order(std::span<const int> values) {
  constexpr std::uint32_t kNone = 0xFFFFFFFF;
  // By the piles of patience: the index of the least value that ends a sequence of each length.
  std::vector<std::uint32_t> piles;
  std::vector<std::uint32_t> previous(values.size(), kNone);
  const auto value = [values](std::uint32_t index) { return values[index]; };
  for (std::uint32_t i = 0; i < values.size(); ++i) {
    if (values[i] == 0) continue;
    auto pile = piles.end();
    if (!piles.empty() && values[piles.back()] > values[i])
      pile = std::ranges::upper_bound(piles, values[i], {}, value);
    if (pile != piles.begin()) previous[i] = pile[-1];
    if (pile == piles.end()) {
      piles.push_back(i);
    } else {
      *pile = i;
    }
  }
  std::vector<bool> is_in_order(values.size());
  for (std::uint32_t i = piles.empty() ? kNone : piles.back(); i != kNone; i = previous[i])
    is_in_order[i] = true;
  return is_in_order;
}

}  // namespace zelk::check

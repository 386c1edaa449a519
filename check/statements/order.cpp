#include "check/statements/order.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace zelk::check {

std::vector<bool> longest_in_order(std::span<const int> places) {
  constexpr std::uint32_t kNone = 0xFFFFFFFF;
  struct Chain {
    std::uint32_t length = 0;
    std::uint32_t last = kNone;
  };
  std::array<Chain, 25> best;  // the longest chain that ends with a statement of each place
  std::vector<std::uint32_t> before(places.size(), kNone);
  for (std::uint32_t i = 0; i < places.size(); ++i) {
    if (places[i] == 0) continue;
    const auto* const longest =
        std::max_element(best.begin(), best.begin() + places[i] + 1,
                         [](const Chain& a, const Chain& b) { return a.length < b.length; });
    before[i] = longest->last;
    best[static_cast<std::size_t>(places[i])] = {longest->length + 1, i};
  }
  std::vector<bool> is_in_order(places.size());
  for (std::uint32_t i = std::ranges::max_element(best, {}, &Chain::length)->last; i != kNone;
       i = before[i])
    is_in_order[i] = true;
  return is_in_order;
}

}  // namespace zelk::check

#include "check/patch/sequences.hpp"

#include <algorithm>

#include "check/statements/order.hpp"

namespace zelk::check {

namespace {

struct Element {
  std::uint64_t value;
  std::uint32_t index;
};

std::vector<Element> sorted(std::span<const std::uint64_t> values,
                            const std::vector<bool>& has_partner) {
  std::vector<Element> elements;
  for (std::uint32_t i = 0; i < values.size(); ++i)
    if (values[i] != 0 && !has_partner[i]) elements.push_back({values[i], i});
  std::ranges::stable_sort(elements, {}, &Element::value);
  return elements;
}

/// Pairs what is equal at both ends: after a small edit nearly everything, and nothing is left to
/// be sorted.
void pair_ends(std::span<const std::uint64_t> before, std::span<const std::uint64_t> after,
               Partners& partners, std::vector<bool>& is_taken, std::vector<bool>& is_paired) {
  const auto pair = [&](std::size_t left, std::size_t right) {
    if (before[left] != after[right]) return false;
    if (is_paired[right] || is_taken[left]) return partners[right] == left;
    if (before[left] == 0) return true;
    partners[right] = static_cast<std::uint32_t>(left);
    is_taken[left] = is_paired[right] = true;
    return true;
  };
  const std::size_t size = std::min(before.size(), after.size());
  std::size_t begin = 0;
  while (begin < size && pair(begin, begin)) ++begin;
  for (std::size_t end = 1; end <= size - begin; ++end)
    if (!pair(before.size() - end, after.size() - end)) return;
}

/// Lengths of the longest common sequences of all ends of two sequences.
class CommonLengths {
 public:
  CommonLengths(std::span<const std::uint64_t> before, std::span<const std::uint64_t> after)
      : width_(after.size() + 1), lengths_((before.size() + 1) * width_) {
    for (std::size_t i = before.size(); i-- > 0;) {
      for (std::size_t j = after.size(); j-- > 0;) {
        lengths_[i * width_ + j] =
            before[i] == after[j] ? at(i + 1, j + 1) + 1 : std::max(at(i + 1, j), at(i, j + 1));
      }
    }
  }
  std::uint32_t at(std::size_t i, std::size_t j) const { return lengths_[i * width_ + j]; }

 private:
  std::size_t width_;
  std::vector<std::uint32_t> lengths_;
};

std::size_t common_begin(std::span<const std::uint64_t> before,
                         std::span<const std::uint64_t> after) {
  return static_cast<std::size_t>(std::ranges::mismatch(before, after).in1 - before.begin());
}

std::size_t common_end(std::span<const std::uint64_t> before,
                       std::span<const std::uint64_t> after) {
  std::size_t size = 0;
  const std::size_t most = std::min(before.size(), after.size());
  while (size < most && before[before.size() - 1 - size] == after[after.size() - 1 - size]) ++size;
  return size;
}

/// @param whole  what differs at most; its ends differ
void divide(std::span<const std::uint64_t> before, std::span<const std::uint64_t> after,
            const Divergence& whole, std::vector<Divergence>& result) {
  const auto left = before.subspan(whole.begin, whole.end - whole.begin);
  const auto right = after.subspan(whole.new_begin, whole.new_end - whole.new_begin);
  const CommonLengths common(left, right);
  std::uint32_t i = 0;
  std::uint32_t j = 0;
  while (i < left.size() || j < right.size()) {
    Divergence divergence{i, i, j, j};
    while (i < left.size() && j < right.size() && left[i] != right[j])
      (common.at(i + 1, j) >= common.at(i, j + 1) ? i : j) += 1;
    const bool is_end = i == left.size() || j == right.size();
    divergence.end = whole.begin + (is_end ? static_cast<std::uint32_t>(left.size()) : i);
    divergence.new_end = whole.new_begin + (is_end ? static_cast<std::uint32_t>(right.size()) : j);
    divergence.begin += whole.begin;
    divergence.new_begin += whole.new_begin;
    result.push_back(divergence);
    if (is_end) return;
    while (i < left.size() && j < right.size() && left[i] == right[j]) ++i, ++j;
  }
}

}  // namespace

void pair_equal(std::span<const std::uint64_t> before, std::span<const std::uint64_t> after,
                Partners& partners) {
  std::vector<bool> is_taken(before.size());
  std::vector<bool> is_paired(after.size());
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (partners[i] == kNoPartner) continue;
    is_paired[i] = true;
    is_taken[partners[i]] = true;
  }
  pair_ends(before, after, partners, is_taken, is_paired);
  const std::vector<Element> left = sorted(before, is_taken);
  const std::vector<Element> right = sorted(after, is_paired);
  for (auto l = left.begin(), r = right.begin(); l != left.end() && r != right.end();) {
    if (l->value == r->value) {
      partners[(r++)->index] = (l++)->index;
    } else {
      l->value < r->value ? static_cast<void>(++l) : static_cast<void>(++r);
    }
  }
}

void keep_order(Partners& partners) {
  std::vector<int> places;  // from 1
  places.reserve(partners.size());
  for (const std::uint32_t partner : partners) places.push_back(static_cast<int>(partner + 1));
  const std::vector<bool> is_in_order = longest_in_order(places);
  for (std::size_t i = 0; i < partners.size(); ++i)
    if (!is_in_order[i]) partners[i] = kNoPartner;
}

void pair_gaps(Partners& partners, std::size_t before_size) {
  std::uint32_t free = 0;  // the first element of the earlier sequence behind the last pair
  for (std::size_t i = 0; i < partners.size();) {
    std::size_t end = i;
    while (end < partners.size() && partners[end] == kNoPartner) ++end;
    const std::size_t limit = end < partners.size() ? partners[end] : before_size;
    for (; i < end && free < limit; ++i) partners[i] = free++;
    if (end == partners.size()) return;
    free = partners[end] + 1;
    i = end + 1;
  }
}

std::vector<Divergence> divergences(std::span<const std::uint64_t> before,
                                    std::span<const std::uint64_t> after) {
  constexpr std::size_t kMostCompared = 1U << 20U;
  const std::size_t begin = common_begin(before, after);
  const std::size_t end = common_end(before.subspan(begin), after.subspan(begin));
  const Divergence whole{
      static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(before.size() - end),
      static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(after.size() - end)};
  const std::size_t left = whole.end - whole.begin;
  const std::size_t right = whole.new_end - whole.new_begin;
  if (left == 0 && right == 0) return {};
  std::vector<Divergence> result;
  if (left == 0 || right == 0 || left > kMostCompared / right) {
    result.push_back(whole);
  } else {
    divide(before, after, whole, result);
  }
  return result;
}

}  // namespace zelk::check

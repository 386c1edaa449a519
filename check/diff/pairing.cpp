#include "check/diff/pairing.hpp"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "base/seeded_hash.hpp"

namespace zelk::check {

namespace {

struct HashKey {
  SeededHash hash;

  /// The hash of one part is mixed into the next: parts that are equal do not cancel.
  std::size_t operator()(const ObjectKey& key) const {
    return hash(hash(hash(key.number) ^ hash(key.name)) ^ hash(key.partner));
  }
};

/// Hands out the positions of keys in a list, those of a key in list order.
class Positions {
 public:
  /// @param first  where the part of `keys` begins that counts
  Positions(const std::vector<ObjectKey>& keys, std::size_t first) : next_(keys.size(), kNone) {
    for (std::size_t i = keys.size(); i-- > first;) {
      const auto [entry, is_new] = heads_.try_emplace(keys[i], i);
      if (is_new) continue;
      next_[i] = entry->second;
      entry->second = i;
    }
  }

  std::optional<std::size_t> take(const ObjectKey& key) {
    const auto entry = heads_.find(key);
    if (entry == heads_.end() || entry->second == kNone) return std::nullopt;
    const std::size_t position = entry->second;
    entry->second = next_[position];
    return position;
  }

 private:
  static constexpr std::size_t kNone = SIZE_MAX;

  std::unordered_map<ObjectKey, std::size_t, HashKey> heads_;  // the first one left of each key
  std::vector<std::size_t> next_;                              // the next one of the same key
};

}  // namespace

std::vector<ObjectPair> pair_up(const std::vector<ObjectKey>& before,
                                const std::vector<ObjectKey>& after) {
  const auto start = std::ranges::mismatch(before, after).in1;
  const auto equal = static_cast<std::size_t>(start - before.begin());
  std::vector<ObjectPair> pairs;
  pairs.reserve(std::max(before.size(), after.size()));
  for (std::size_t i = 0; i < equal; ++i) pairs.push_back({i, i});
  if (equal == before.size() && equal == after.size()) return pairs;

  Positions positions(after, equal);
  std::vector<bool> is_paired(after.size());
  for (std::size_t i = equal; i < before.size(); ++i) {
    pairs.push_back({i, positions.take(before[i])});
    if (pairs.back().after) is_paired[*pairs.back().after] = true;
  }
  for (std::size_t i = equal; i < after.size(); ++i)
    if (!is_paired[i]) pairs.push_back({std::nullopt, i});
  return pairs;
}

}  // namespace zelk::check

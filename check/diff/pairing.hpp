/// \file
/// Which elements of two lists belong together.

#ifndef ZELK_CHECK_DIFF_PAIRING_HPP
#define ZELK_CHECK_DIFF_PAIRING_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelk::check {

/// What identifies an element in its list.
struct ObjectKey {
  std::uint64_t number = 0;
  std::string name;
  std::string partner;

  bool operator==(const ObjectKey&) const = default;
};

/// Positions in two lists of what is one and the same; an element that only one list has is alone.
struct ObjectPair {
  std::optional<std::size_t> before;
  std::optional<std::size_t> after;
};

/// Pairs the elements with equal keys, the n-th one of a key with the n-th, in linear time.
///
/// @return a pair for each element of `before`, in its order, then one for each element that only
/// `after` has, in its order
std::vector<ObjectPair> pair_up(const std::vector<ObjectKey>& before,
                                const std::vector<ObjectKey>& after);

}  // namespace zelk::check

#endif

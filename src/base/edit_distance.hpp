/// \file
/// How far two names are apart, for suggestions.

#ifndef ZELK_BASE_EDIT_DISTANCE_HPP
#define ZELK_BASE_EDIT_DISTANCE_HPP

#include <cstddef>
#include <string_view>

namespace zelk {

/// Number of inserted, deleted, replaced or swapped characters (ASCII case ignored) that leads from
/// `a` to `b`; `limit` + 1 for every larger number. Takes time of the product of their lengths, but
/// none when these differ by more than `limit`.
std::size_t edit_distance(std::string_view a, std::string_view b, std::size_t limit);

/// Up to which distance a name may have been meant by somebody who typed `typed`.
constexpr std::size_t suggestion_distance(std::string_view typed) {
  return typed.size() < 6 ? typed.size() / 3 : 2;
}

}  // namespace zelk

#endif

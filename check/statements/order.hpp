/// \file
/// Which statements are in order.

#ifndef ZELK_CHECK_STATEMENTS_ORDER_HPP
#define ZELK_CHECK_STATEMENTS_ORDER_HPP

#include <span>
#include <vector>

namespace zelk::check {

/// The most statements that are in order already: the longest sequence whose places never descend.
/// So one misplaced block is out of order, and not all that stands around it.
///
/// @param places  from 1 to 24, in the order of the statements; 0 belongs to no sequence
/// @return for each place whether it belongs to the sequence; time is linear
std::vector<bool> longest_in_order(std::span<const int> places);

}  // namespace zelk::check

#endif

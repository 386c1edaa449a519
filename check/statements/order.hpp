/// \file
/// What is in order in a sequence.

#ifndef ZELK_CHECK_STATEMENTS_ORDER_HPP
#define ZELK_CHECK_STATEMENTS_ORDER_HPP

#include <span>
#include <vector>

namespace zelk::check {

/// The most elements that are in order already: the longest part whose values never descend. So
/// one misplaced block is out of order, and not all that stands around it.
///
/// @param values  positive; 0 belongs to no such part
/// @return for each element whether it belongs to the part; time is linear where few are out of
/// order, and else that of sorting
std::vector<bool> longest_in_order(std::span<const int> values);

}  // namespace zelk::check

#endif

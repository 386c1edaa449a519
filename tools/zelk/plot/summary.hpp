/// \file
/// A curve or a lane in a few numbers.

#ifndef ZELK_TOOL_PLOT_SUMMARY_HPP
#define ZELK_TOOL_PLOT_SUMMARY_HPP

#include <cstddef>
#include <vector>

#include "plot/figure.hpp"

namespace zelk::tool {

/// Of the finite values of a curve; all three are NaN when there is none.
struct Summary {
  double least;
  double most;
  double mean;  ///< over time: a value counts for as long as it lasts
};

Summary summary_of(const Curve& curve);

/// The part of its time, from 0 to 1, that a lane has a text.
struct TextShare {
  std::size_t text;  ///< as in `Stretch`
  double share;
};

/// Of the texts that occur, the longest-lasting first.
std::vector<TextShare> shares_of(const Lane& lane);

}  // namespace zelk::tool

#endif

/// \file
/// Round numbers and times along an axis.

#ifndef ZELK_TOOL_PLOT_TICKS_HPP
#define ZELK_TOOL_PLOT_TICKS_HPP

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "plot/figure.hpp"

namespace zelk::tool {

struct Tick {
  double at;  ///< in the numbers of the axis
  std::string label;
};

/// The range of an axis.
struct Span {
  double low;
  double high;

  /// Where a number stands in the range: 0 is `low`, 1 is `high`. Exact also where their difference
  /// is more than a double can be.
  double part(double number) const { return (number / 2 - low / 2) / (high / 2 - low / 2); }
};

/// The values of a curve, without its gaps; none when it has no number.
std::optional<Span> value_range(const Curve& curve);
/// All values of the curves, with some room around; `low` is below `high`.
Span value_span(const Axis& axis);
/// The times of the figure, likewise, without room.
Span time_span(const Figure& figure);

/// Multiples of 1, 2 or 5 times a power of ten, at most about `most` of them.
///
/// @pre `low` is below `high`, both are finite
std::vector<Tick> number_ticks(const Span& span, std::size_t most);

/// Likewise for the axis of time: seconds, or times of the day and dates where it is dated.
std::vector<Tick> time_ticks(const Figure& figure, std::size_t most);

/// What the labels of the time axis count: "s", or the dates that they leave out:
/// "2023-11-14, UTC".
std::string time_caption(const Figure& figure);

/// A time in full: "12.5 s" or "2023-11-14T22:13:20.250Z".
std::string time_text(const Figure& figure, double seconds);

}  // namespace zelk::tool

#endif

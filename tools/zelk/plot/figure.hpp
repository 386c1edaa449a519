/// \file
/// What a plot shows, whatever it is drawn on.

#ifndef ZELK_TOOL_PLOT_FIGURE_HPP
#define ZELK_TOOL_PLOT_FIGURE_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zelk::tool {

/// Values over time. Both lists have the same length; times do not fall.
struct Curve {
  std::string name;           ///< "EngineSpeed"; "EngineStatus.EngineSpeed" where two have one name
  std::string message;        ///< "EngineStatus"
  std::vector<double> times;  ///< seconds since `Figure::origin`
  std::vector<double> values;   ///< NaN: from here to the next point the signal is absent
  std::size_t point_count = 0;  ///< before curves of too many points were thinned out
};

/// Curves of one unit, on one axis.
struct Axis {
  std::string unit;  ///< may be empty
  std::vector<Curve> curves;
};

/// A time in which a signal has one value.
struct Stretch {
  /// In place of a text: several values, too short to be drawn one by one.
  static constexpr std::size_t kSeveral = static_cast<std::size_t>(-1);

  double begin;      ///< seconds since `Figure::origin`
  double end;        ///< not below `begin`
  std::size_t text;  ///< index in `Lane::texts`, or `kSeveral`
};

/// An enumeration or a switch, as labelled stretches. Where there is none, it is absent.
struct Lane {
  std::string name;  ///< as in `Curve`
  std::string message;
  std::vector<std::string> texts;  ///< value descriptions, in the order of their values; values
                                   ///< without one as numbers
  std::vector<Stretch> stretches;  ///< in their order, not overlapping
  std::size_t point_count = 0;     ///< frames that they are made of
};

/// A plot. All texts are in UTF-8.
struct Figure {
  std::string title;
  std::int64_t origin = 0;  ///< nanoseconds since 1970-01-01 00:00 UTC, or what the log counts from
  bool is_dated = false;    ///< `origin` is a point in time
  double begin = 0;         ///< of the time axis, seconds since `origin`
  double end = 0;
  std::vector<Axis> axes;
  std::vector<Lane> lanes;
};

}  // namespace zelk::tool

#endif

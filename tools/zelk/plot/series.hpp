/// \file
/// One signal of the logs, and what becomes of it in the figure.

#ifndef ZELK_TOOL_PLOT_SERIES_HPP
#define ZELK_TOOL_PLOT_SERIES_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "plot/figure.hpp"
#include "plot/lane_values.hpp"
#include "plot/points.hpp"

namespace zelk::tool {

/// What one interface of one log has of a signal.
struct Source {
  std::size_t log = 0;  ///< index among the logs
  std::string channel{};
  std::variant<CurvePoints, LaneRuns> content;

  std::size_t count() const;
  std::int64_t first_time() const;
  std::int64_t latest_time() const;
  bool ran_backwards() const;
};

struct Series {
  std::string name{};       ///< of the signal, in UTF-8
  std::string full_name{};  ///< that tells it from all others
  std::string message{};
  std::string unit{};
  std::size_t order = 0;               ///< among all, by what the user named
  std::optional<LaneValues> values{};  ///< of a lane
  std::optional<double> nominal_ms{};  ///< the cycle time that the curve is to be compared with
  bool has_gaps = true;
  std::vector<Source> sources{};

  /// Adds an empty source.
  ///
  /// @param limit  most points that are kept
  Source& add_source(std::size_t log, std::string channel, std::size_t limit);
};

/// Makes a figure of all series that have values; their sources are empty then.
///
/// @param logs      their names
/// @param relative  each log counts from its own first frame
Figure make_figure(std::vector<Series>& all, const std::vector<std::string>& logs, bool relative);

}  // namespace zelk::tool

#endif

/// \file
/// The curve of one signal over the last seconds.

#ifndef ZELK_TOOL_MONITOR_SCREEN_CURVE_HPP
#define ZELK_TOOL_MONITOR_SCREEN_CURVE_HPP

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "monitor/screen/text.hpp"

namespace zelk::tool {

/// Values of a signal with their times, no more than a screen can show.
class SignalCurve {
 public:
  struct Sample {
    std::int64_t time;
    double value;
  };

  /// Takes a value; one that is not finite is left out. A time before the last one begins the curve
  /// anew.
  void add(std::int64_t time, double value);

  double seconds() const { return seconds_; }
  /// Shows more or less of the time, by steps.
  void zoom(bool is_out);

  /// Least and greatest value that is shown; none without values.
  struct Range {
    double least, greatest;
  };
  std::optional<Range> range(std::int64_t now) const;

  /// The curve up to `now`, as lines of `columns` characters: dots of Braille, or ASCII. A value
  /// holds until the next one comes.
  std::vector<std::string> draw(std::size_t columns, std::size_t lines, std::int64_t now,
                                const CharacterSet& characters) const;

 private:
  std::deque<Sample> samples_;
  double seconds_ = 30;
};

}  // namespace zelk::tool

#endif

/// \file
/// The curve of one signal over the last seconds.

#ifndef ZELK_TOOL_MONITOR_SCREEN_CURVE_HPP
#define ZELK_TOOL_MONITOR_SCREEN_CURVE_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "monitor/screen/text.hpp"
#include "monitor/value_track.hpp"

namespace zelk::tool {

/// Draws the track of a signal.
class SignalCurve {
 public:
  /// As `ValueTrack::add`.
  void add(std::int64_t time, double value) { track_.add(time, value); }
  void add(const ValueStretch& values) { track_.add(values); }

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
  /// What of a stretch lies in the time that is shown; none when it ends before that.
  std::optional<Range> shown(std::size_t stretch, std::int64_t now) const;

  ValueTrack track_;
  double seconds_ = 30;
};

}  // namespace zelk::tool

#endif

/// \file
/// The values of one signal over the last minutes.

#ifndef ZELK_TOOL_MONITOR_VALUE_TRACK_HPP
#define ZELK_TOOL_MONITOR_VALUE_TRACK_HPP

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>

namespace zelk::tool {

/// Values that came so close to each other that a screen cannot show them apart.
struct ValueStretch {
  std::int64_t time;  ///< of the first one, in nanoseconds
  double least, greatest;
  double last;  ///< holds until the next stretch
};

/// What every frame had of a signal: of many in a moment the least, the greatest and the last one,
/// so that no peak is lost and memory does not grow with the frames.
class ValueTrack {
 public:
  static constexpr std::int64_t kMostTime = 300'000'000'000;  ///< nanoseconds that are kept
  static constexpr std::int64_t kMoment = 5'000'000;

  void add(std::int64_t time, double value) { add({time, value, value, value}); }
  /// Values that are not finite are left out; a time before the last one begins the track anew.
  void add(const ValueStretch& values) {
    if (!std::isfinite(values.least) || !std::isfinite(values.greatest)) return;
    if (!stretches_.empty() && values.time < stretches_.back().time) stretches_.clear();
    if (stretches_.empty() || is_before(stretches_.back().time, values.time, kMoment)) {
      stretches_.push_back(values);
      drop_old();
      return;
    }
    ValueStretch& last = stretches_.back();
    last.least = std::min(last.least, values.least);
    last.greatest = std::max(last.greatest, values.greatest);
    last.last = values.last;
  }
  void clear() { stretches_.clear(); }

  const std::deque<ValueStretch>& stretches() const { return stretches_; }

 private:
  /// Whether so much time or more lies between them; of any two times in their order.
  static bool is_before(std::int64_t earlier, std::int64_t later, std::int64_t time) {
    return static_cast<std::uint64_t>(later) - static_cast<std::uint64_t>(earlier) >=
           static_cast<std::uint64_t>(time);
  }
  /// The last value in front of what is kept holds at its beginning.
  void drop_old() {
    while (stretches_.size() > 2 &&
           is_before(stretches_[1].time, stretches_.back().time, kMostTime))
      stretches_.pop_front();
  }

  std::deque<ValueStretch> stretches_;
};

}  // namespace zelk::tool

#endif

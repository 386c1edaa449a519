/// \file
/// The part of a log that the user wants, by time, and times that count from its first frame.

#ifndef ZELK_TOOL_LOG_TIME_WINDOW_HPP
#define ZELK_TOOL_LOG_TIME_WINDOW_HPP

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

#include "zelk/logs/frame.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::tool {

/// A point in time as the command line has it.
struct TimePoint {
  std::int64_t time;   ///< in nanoseconds
  bool is_from_first;  ///< since the first frame; else as the log counts, mostly since 1970
};

/// "1436509052.25", "2015-07-10T06:17:32Z", or "+12.5" for seconds since the first frame.
///
/// @return none for other texts
std::optional<TimePoint> parse_time_point(std::string_view text);

struct TimeOptions {
  std::optional<TimePoint> start{};
  std::optional<TimePoint> stop{};
  bool relative = false;  ///< times are printed as seconds since the first frame
  ZelkLogTimes kind = ZelkLogTimes::kDetect;  ///< what the times of a log of candump are
};

/// Chooses frames by their times. Any number of threads may ask once it has begun.
class TimeWindow {
 public:
  explicit TimeWindow(const TimeOptions& options) : options_(options) {}

  /// Whether times matter: when not, all frames are taken as they are.
  bool is_needed() const { return options_.relative || cuts(); }
  /// Whether some frames may be left out.
  bool cuts() const { return options_.start || options_.stop; }
  bool is_relative() const { return options_.relative; }

  bool has_begun() const { return has_begun_; }
  /// Takes the time of the first frame.
  ///
  /// @param log  names the log in the error
  /// @throws RequestError when the frame has no time, or no time is in the window
  void begin(std::int64_t time, std::string_view log);

  /// Whether a frame is in the window: not in front of its start, and in front of its stop.
  ///
  /// @pre `has_begun()` or not `is_needed()`
  /// @throws RequestError when the frame needs a time and has none
  bool takes(std::int64_t time, std::string_view log) const {
    if (!is_needed()) return true;
    if (time == kZelkNoTime) fail_without_time(log);
    return time >= start_ && time < stop_;
  }

  /// The time that is printed for a frame.
  std::int64_t shown(std::int64_t time) const;

 private:
  [[noreturn]] static void fail_without_time(std::string_view log);
  std::int64_t in_log(const TimePoint& point) const;

  TimeOptions options_;
  bool has_begun_ = false;
  std::int64_t first_ = 0;
  std::int64_t start_ = std::numeric_limits<std::int64_t>::min();
  std::int64_t stop_ = std::numeric_limits<std::int64_t>::max();
};

}  // namespace zelk::tool

#endif

#include "log/time_window.hpp"

#include <fmt/format.h>

#include "input/lookup.hpp"
#include "term/text.hpp"
#include "zelk/logs/times.hpp"

namespace zelk::tool {

namespace {

/// The nearest time to `a` + `b`; both have a negative.
std::int64_t sum_of(std::int64_t a, std::int64_t b) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  if (b > 0 && a > kMost - b) return kMost;
  if (b < 0 && a < -kMost - b) return -kMost;
  return a + b;
}

}  // namespace

std::optional<TimePoint> parse_time_point(std::string_view text) {
  const bool is_from_first = text.starts_with('+');
  if (is_from_first) text.remove_prefix(1);
  if (is_from_first && text.find_first_not_of("0123456789.") != std::string_view::npos)
    return std::nullopt;
  const std::optional<std::int64_t> time = ZelkParseTime(text);
  return time ? std::optional(TimePoint{*time, is_from_first}) : std::nullopt;
}

void TimeWindow::begin(std::int64_t time, std::string_view log) {
  if (time == kZelkNoTime) fail_without_time(log);
  first_ = time;
  has_begun_ = true;
  if (options_.start) start_ = in_log(*options_.start);
  if (options_.stop) stop_ = in_log(*options_.stop);
  if (start_ >= stop_) throw RequestError("--stop is not behind --start: no frame is between them");
}

std::int64_t TimeWindow::shown(std::int64_t time) const {
  return options_.relative ? sum_of(time, -first_) : time;
}

void TimeWindow::fail_without_time(std::string_view log) {
  throw RequestError(fmt::format(
      "{}: a frame has no time, which --start, --stop and --relative need", escaped(log)));
}

std::int64_t TimeWindow::in_log(const TimePoint& point) const {
  return point.is_from_first ? sum_of(first_, point.time) : point.time;
}

}  // namespace zelk::tool

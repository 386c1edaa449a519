#include "zelk/logs/time_window.hpp"

#include <string>
#include <vector>

#include "base/escaping.hpp"
#include "logs/frames/filler.hpp"
#include "zelk/logs/reader.hpp"
#include "zelk/logs/times.hpp"

namespace {

/// The nearest time to `a` + `b`; both have a negative.
std::int64_t sum_of(std::int64_t a, std::int64_t b) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  if (b > 0 && a > kMost - b) return kMost;
  if (b < 0 && a < -kMost - b) return -kMost;
  return a + b;
}

}  // namespace

std::optional<ZelkTimePoint> ZelkParseTimePoint(std::string_view text) {
  const bool is_from_first = text.starts_with('+');
  if (is_from_first) text.remove_prefix(1);
  if (is_from_first && text.find_first_not_of("0123456789.") != std::string_view::npos)
    return std::nullopt;
  const std::optional<std::int64_t> time = ZelkParseTime(text);
  return time ? std::optional(ZelkTimePoint{*time, is_from_first}) : std::nullopt;
}

void ZelkTimeWindow::Begin(std::int64_t time, std::string_view log) {
  if (time == kZelkNoTime) FailWithoutTime(log);
  first_ = time;
  has_begun_ = true;
  if (options_.start) start_ = InLog(*options_.start);
  if (options_.stop) stop_ = InLog(*options_.stop);
  if (start_ >= stop_) {
    throw ZelkLogError(zelk::escaped(log) +
                       ": the stop is not behind the start: no frame is between them");
  }
}

std::int64_t ZelkTimeWindow::Shown(std::int64_t time) const {
  return options_.relative ? sum_of(time, -first_) : time;
}

std::size_t ZelkTimeWindow::Cut(ZelkFrameBlock& frames, std::string_view log) const {
  if (!IsNeeded()) return 0;
  std::vector<std::uint32_t> kept;
  kept.reserve(frames.Size());
  for (std::size_t i = 0; i < frames.Size(); ++i)
    if (Takes(frames.Times()[i], log)) kept.push_back(static_cast<std::uint32_t>(i));
  const std::size_t removed = frames.Size() - kept.size();
  ZelkFrameFiller filler(frames);
  if (removed > 0) filler.keep(kept);
  for (std::size_t i = 0; options_.relative && i < frames.Size(); ++i)
    filler.set_time(i, Shown(frames.Times()[i]));
  return removed;
}

void ZelkTimeWindow::FailWithoutTime(std::string_view log) {
  throw ZelkLogError(zelk::escaped(log) +
                     ": a frame has no time, which start, stop and relative times need");
}

std::int64_t ZelkTimeWindow::InLog(const ZelkTimePoint& point) const {
  return point.is_from_first ? sum_of(first_, point.time) : point.time;
}

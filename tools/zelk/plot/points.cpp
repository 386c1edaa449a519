#include "plot/points.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zelk::tool {

namespace {

constexpr std::int64_t kMostTime = std::numeric_limits<std::int64_t>::max();

/// `to - from`, as large as it can be; 0 when that is negative.
std::int64_t time_between(std::int64_t from, std::int64_t to) {
  if (to <= from) return 0;
  const std::uint64_t between = static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
  return static_cast<std::int64_t>(std::min(between, static_cast<std::uint64_t>(kMostTime)));
}

std::int64_t product(std::int64_t time, std::int64_t factor) {
  return time > kMostTime / factor ? kMostTime : time * factor;
}

}  // namespace

void Extremes::add(const Point& point) {
  if (count_++ == 0) first_ = low_ = high_ = point;
  if (point.value < low_.value || std::isnan(low_.value)) {
    low_ = point;
    low_is_first_ = false;
  }
  if (point.value > high_.value || std::isnan(high_.value)) {
    high_ = point;
    low_is_first_ = true;
  }
  last_ = point;
}

void Extremes::append_to(std::vector<Point>& points) const {
  const auto& [before, behind] = low_is_first_ ? std::pair(low_, high_) : std::pair(high_, low_);
  points.insert(points.end(), {first_, before, behind, last_});
}

void CurvePoints::add(std::int64_t time, double value) {
  if (count_++ > 0) {
    intervals_.add(time_between(last_, time));
    ran_backwards_ |= time < last_;
  }
  last_ = time;
  first_ = std::min(first_, time);
  latest_ = std::max(latest_, time);
  keep({time, std::isfinite(value) ? value : std::nan("")});
}

void CurvePoints::keep(const Point& point) {
  if (step_ == 1) {
    points_.push_back(point);
  } else {
    pending_.add(point);
    if (pending_.count() < step_) return;
    pending_.append_to(points_);
    pending_ = {};
  }
  if (points_.size() >= limit_) halve();
}

/// Two groups of four become one.
void CurvePoints::halve() {
  constexpr std::size_t kGroup = 8;
  std::vector<Point> kept;
  kept.reserve(limit_);
  for (std::size_t i = 0; i < points_.size(); i += kGroup) {
    Extremes extremes;
    const std::size_t end = std::min(i + kGroup, points_.size());
    for (std::size_t k = i; k < end; ++k) extremes.add(points_[k]);
    extremes.append_to(kept);
  }
  points_ = std::move(kept);
  step_ = step_ == 1 ? kGroup : step_ * 2;
}

void CurvePoints::append(CurvePoints& other) {
  if (!other.pending_.empty()) other.pending_.append_to(other.points_);
  if (!pending_.empty()) pending_.append_to(points_);
  pending_ = {};
  ran_backwards_ |= other.ran_backwards_ || other.first_ < last_;
  points_.insert(points_.end(), other.points_.begin(), other.points_.end());
  count_ += other.count_;
  first_ = std::min(first_, other.first_);
  latest_ = std::max(latest_, other.latest_);
  last_ = other.last_;
  intervals_ += other.intervals_;
  step_ = std::max(step_, other.step_);
  while (points_.size() > limit_) halve();
  other = CurvePoints(other.limit_, other.has_gaps_);
}

std::vector<Point> CurvePoints::finish() {
  if (!pending_.empty()) pending_.append_to(points_);
  pending_ = {};
  const auto earlier = [](const Point& a, const Point& b) { return a.time < b.time; };
  if (ran_backwards_) std::ranges::stable_sort(points_, earlier);
  const auto is_same = [](const Point& a, const Point& b) {
    return a.time == b.time && (a.value == b.value || (std::isnan(a.value) && std::isnan(b.value)));
  };
  points_.erase(std::unique(points_.begin(), points_.end(), is_same), points_.end());
  return has_gaps_ ? with_gaps() : std::move(points_);
}

/// Between points that were thinned out there may be as many intervals as points were taken
/// together.
std::vector<Point> CurvePoints::with_gaps() const {
  const auto cycles = static_cast<std::int64_t>(step_ == 1 ? 0 : step_) + Intervals::kGapCycles;
  const std::int64_t gap = product(std::max<std::int64_t>(intervals_.usual(), 1), cycles);
  std::vector<Point> result;
  result.reserve(points_.size());
  for (const Point& point : points_) {
    if (!result.empty() && time_between(result.back().time, point.time) > gap)
      result.push_back({result.back().time, std::nan("")});
    result.push_back(point);
  }
  return result;
}

void LaneRuns::add(std::int64_t time, std::size_t value) {
  const bool is_first = count_++ == 0;
  first_ = std::min(first_, time);
  latest_ = std::max(latest_, time);
  if (is_first) return runs_.push_back({time, time, value});
  Run& last = runs_.back();
  const bool is_backwards = time < last.end;
  const std::int64_t interval = time_between(last.end, time);
  const bool is_new = is_backwards || last.value != value || intervals_.may_be_gap(interval);
  intervals_.add(interval);
  ran_backwards_ |= is_backwards;
  if (is_new) {
    runs_.push_back({time, time, value});
  } else {
    last.end = time;
  }
  if (runs_.size() >= limit_) thin_out();
}

/// Cells become larger until they have room enough: in the end there is one.
void LaneRuns::thin_out() {
  const auto span = static_cast<std::uint64_t>(latest_) - static_cast<std::uint64_t>(first_);
  if (cell_ == 0) cell_ = span / (limit_ / 8) + 1;
  const auto cell_of = [this](std::int64_t time) {
    return (static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(first_)) / cell_;
  };
  while (runs_.size() > limit_ / 2) {
    std::vector<Run> kept;
    for (const Run& run : runs_) {
      const bool is_same_cell = !kept.empty() && cell_of(kept.back().begin) == cell_of(run.end) &&
                                cell_of(run.begin) == cell_of(run.end);
      if (!is_same_cell) {
        kept.push_back(run);
        continue;
      }
      Run& last = kept.back();
      if (last.value != run.value) last.value = Run::kSeveral;
      last.end = std::max(last.end, run.end);
    }
    runs_ = std::move(kept);
    cell_ = cell_ > std::numeric_limits<std::uint64_t>::max() / 2 ? cell_ : cell_ * 2;
  }
}

void LaneRuns::append(LaneRuns& other) {
  ran_backwards_ |= other.ran_backwards_ || (count_ > 0 && other.first_ < latest_);
  runs_.insert(runs_.end(), other.runs_.begin(), other.runs_.end());
  count_ += other.count_;
  first_ = std::min(first_, other.first_);
  latest_ = std::max(latest_, other.latest_);
  intervals_ += other.intervals_;
  if (runs_.size() >= limit_) thin_out();
  other = LaneRuns(other.limit_);
}

std::vector<Run> LaneRuns::finish() {
  const auto earlier = [](const Run& a, const Run& b) { return a.begin < b.begin; };
  if (ran_backwards_) std::ranges::stable_sort(runs_, earlier);
  const std::int64_t usual = intervals_.usual();
  const std::int64_t gap = product(std::max<std::int64_t>(usual, 1), Intervals::kGapCycles);
  std::vector<Run> result;
  for (const Run& run : runs_) {
    if (!result.empty()) {
      Run& last = result.back();
      const std::int64_t between = time_between(last.end, run.begin);
      if (between <= gap && last.value == run.value) {
        last.end = std::max(last.end, run.end);
        continue;
      }
      last.end = between <= gap ? run.begin : last.end + usual;
    }
    result.push_back(run);
  }
  return result;
}

}  // namespace zelk::tool

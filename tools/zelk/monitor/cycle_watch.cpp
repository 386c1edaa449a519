#include "monitor/cycle_watch.hpp"

#include <algorithm>
#include <cmath>

namespace zelk::tool {

namespace {

/// Times may lie further apart than 64 bits with a sign tell; the sum of all that are kept fits
/// into them.
std::int64_t interval_of(std::int64_t from, std::int64_t to) {
  constexpr std::uint64_t kMost = std::uint64_t{1} << 56;  // over two years
  const std::uint64_t interval = static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
  return static_cast<std::int64_t>(std::min(interval, kMost));
}

}  // namespace

void CycleWatch::add(std::int64_t time) {
  if (time == kZelkNoTime) return;
  const bool is_later = last_ != kZelkNoTime && time >= last_;
  const std::int64_t interval = is_later ? interval_of(last_, time) : 0;
  last_ = time;
  if (!is_later) return;
  // Whether the others are even is asked for long intervals only.
  const bool is_long = is_over(interval, static_cast<std::int64_t>(mean()));
  const std::int64_t shown = is_long ? shown_cycle() : 0;
  gaps_ += is_over(interval, stated_ > 0 ? stated_ : shown);
  const bool is_pause = is_over(interval, shown);
  if (is_pause && was_pause_) count_ = 0;  // no pause: the message comes more slowly now
  if (!is_pause || was_pause_) keep(interval);
  was_pause_ = is_pause && !was_pause_;
}

void CycleWatch::keep(std::int64_t interval) {
  if (count_ == 0) sum_ = 0;
  if (count_ == kMostKept) sum_ -= intervals_[next_];
  intervals_[next_] = interval;
  sum_ += interval;
  next_ = (next_ + 1) % kMostKept;
  count_ = std::min(count_ + 1, kMostKept);
}

bool CycleWatch::is_missing(std::int64_t now, std::int64_t since) const {
  const std::int64_t last = last_ > now || last_ == kZelkNoTime ? since : last_;
  if (last == kZelkNoTime || now <= last) return false;
  const std::int64_t late = interval_of(last, now);
  return is_over(late, stated_ > 0 ? stated_ : shown_cycle());
}

double CycleWatch::mean() const {
  return count_ == 0 ? 0 : static_cast<double>(sum_) / static_cast<double>(count_);
}

double CycleWatch::deviation() const {
  if (count_ == 0) return 0;
  const double middle = mean();
  double squares = 0;
  for (std::size_t i = 1; i <= count_; ++i) {
    const auto interval = static_cast<double>(intervals_[(next_ + kMostKept - i) % kMostKept]);
    squares += (interval - middle) * (interval - middle);
  }
  return std::sqrt(squares / static_cast<double>(count_));
}

std::int64_t CycleWatch::shown_cycle() const {
  if (count_ < kFewestRegular || deviation() > kRegular * mean()) return 0;
  return static_cast<std::int64_t>(mean());
}

}  // namespace zelk::tool

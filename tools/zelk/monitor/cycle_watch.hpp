/// \file
/// How regularly a message comes.

#ifndef ZELK_TOOL_MONITOR_CYCLE_WATCH_HPP
#define ZELK_TOOL_MONITOR_CYCLE_WATCH_HPP

#include <array>
#include <cstddef>
#include <cstdint>

#include "zelk/logs/frame.hpp"

namespace zelk::tool {

/// Keeps the last times between frames of a message. All times are in nanoseconds.
///
/// A message whose cycle time nobody states has one when its times between frames are even: at
/// least 8 of them, with a standard deviation of no more than a fifth of their mean.
class CycleWatch {
 public:
  /// Cycles after which a message is missing: the one that it takes, and three that it is late.
  static constexpr std::int64_t kCyclesToMissing = 4;

  /// @param stated  the cycle time by which the message is missed; 0: the one that it shows
  explicit CycleWatch(std::int64_t stated = 0) : stated_(stated) {}

  /// A frame came. One that is earlier than the frame before begins a new series: the clock was
  /// set, or the log begins anew.
  void add(std::int64_t time);

  /// Whether the message is more than three cycles late.
  ///
  /// @param since  when the clock was started, or set back last: a frame that seems to be still to
  /// come, came before that
  bool is_missing(std::int64_t now, std::int64_t since) const;
  /// How often it was when its next frame came.
  std::uint64_t gaps() const { return gaps_; }

  /// Of the last 64 times between frames; 0 for none. A pause of a regular message is none of them.
  double mean() const;
  /// Their standard deviation.
  double deviation() const;

 private:
  static constexpr std::size_t kMostKept = 64;
  static constexpr std::size_t kFewestRegular = 8;
  static constexpr double kRegular = 0.2;

  void keep(std::int64_t interval);
  /// Whether the interval is long for the cycle time that is stated, or for the one that shows.
  static bool is_over(std::int64_t interval, std::int64_t cycle) {
    return cycle > 0 && interval > cycle * kCyclesToMissing;
  }
  /// The cycle time that shows; 0: it is not regular.
  std::int64_t shown_cycle() const;

  std::int64_t stated_;
  std::int64_t last_ = kZelkNoTime;
  std::array<std::int64_t, kMostKept>
      intervals_{};  ///< the last `count_` before `next_`, in a ring
  std::size_t next_ = 0;
  std::size_t count_ = 0;
  std::int64_t sum_ = 0;  ///< of the intervals
  bool was_pause_ = false;
  std::uint64_t gaps_ = 0;
};

}  // namespace zelk::tool

#endif

/// \file
/// The values of one signal as they come, in bounded memory.

#ifndef ZELK_TOOL_PLOT_POINTS_HPP
#define ZELK_TOOL_PLOT_POINTS_HPP

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "plot/intervals.hpp"

namespace zelk::tool {

struct Point {
  std::int64_t time;  ///< in nanoseconds, as the log has it
  double value;       ///< NaN: none
};

/// Four of the points that follow one another: the first, the lowest, the highest and the last one.
class Extremes {
 public:
  void add(const Point& point);
  bool empty() const { return count_ == 0; }
  std::size_t count() const { return count_; }
  /// Appends the four, in their order; one that has several of these parts, as often.
  void append_to(std::vector<Point>& points) const;

 private:
  std::size_t count_ = 0;
  Point first_{};
  Point low_{};
  Point high_{};
  Point last_{};
  bool low_is_first_ = true;  // of `low_` and `high_`
};

/// The values of a curve.
///
/// When they are too many, only the extremes of each few of them stay: of 8 at first, and of twice
/// as many each time that the limit is met again.
class CurvePoints {
 public:
  /// @param limit     most points that are kept; a multiple of 8
  /// @param has_gaps  whether the curve is absent where no point is for long
  explicit CurvePoints(std::size_t limit, bool has_gaps = true)
      : limit_(limit), has_gaps_(has_gaps) {}

  void add(std::int64_t time, double value);
  /// Appends the points of another one, which is empty then.
  void append(CurvePoints& other);

  std::size_t count() const { return count_; }
  std::int64_t first_time() const { return first_; }
  std::int64_t latest_time() const { return latest_; }
  bool ran_backwards() const { return ran_backwards_; }
  const Intervals& intervals() const { return intervals_; }

  /// The points in the order of their times, with one without a value at the begin of each gap.
  /// Nothing can be added any more.
  std::vector<Point> finish();

 private:
  void keep(const Point& point);
  void halve();
  std::vector<Point> with_gaps() const;

  std::size_t limit_;
  bool has_gaps_;
  std::size_t step_ = 1;  // points that four are kept of; 1: all are kept
  std::vector<Point> points_;
  Extremes pending_;
  std::size_t count_ = 0;
  std::int64_t first_ = std::numeric_limits<std::int64_t>::max();
  std::int64_t latest_ = std::numeric_limits<std::int64_t>::min();
  std::int64_t last_ = 0;
  bool ran_backwards_ = false;
  Intervals intervals_;
};

/// A time in which a signal keeps its value.
struct Run {
  /// In place of a value: several values, too short to be told one by one.
  static constexpr std::size_t kSeveral = static_cast<std::size_t>(-1);

  std::int64_t begin;
  std::int64_t end;   ///< time of its last frame or, once finished, where it ends
  std::size_t value;  ///< a number for it, or `kSeveral`
};

/// The values of a lane. When they are too many, neighbours that are short become one run of
/// several values.
class LaneRuns {
 public:
  explicit LaneRuns(std::size_t limit) : limit_(limit) {}

  void add(std::int64_t time, std::size_t value);
  void append(LaneRuns& other);

  std::size_t count() const { return count_; }
  std::int64_t first_time() const { return first_; }
  std::int64_t latest_time() const { return latest_; }
  bool ran_backwards() const { return ran_backwards_; }

  /// The runs in the order of their times; those that no gap parts touch each other. Nothing can be
  /// added any more.
  std::vector<Run> finish();

 private:
  void thin_out();

  std::size_t limit_;
  std::uint64_t cell_ = 0;  // nanoseconds in which runs are taken together; 0: not yet
  std::vector<Run> runs_;
  std::size_t count_ = 0;
  std::int64_t first_ = std::numeric_limits<std::int64_t>::max();
  std::int64_t latest_ = std::numeric_limits<std::int64_t>::min();
  bool ran_backwards_ = false;
  Intervals intervals_;
};

}  // namespace zelk::tool

#endif

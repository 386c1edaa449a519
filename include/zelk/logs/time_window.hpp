/// \file
/// The part of a log that is wanted, by time, and times that count from its first frame.

#ifndef ZELK_LOGS_TIME_WINDOW_HPP
#define ZELK_LOGS_TIME_WINDOW_HPP

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

#include "zelk/export.h"
#include "zelk/logs/frame.hpp"

/// A point in time.
struct ZelkTimePoint {
  std::int64_t time = 0;       ///< in nanoseconds
  bool is_from_first = false;  ///< since the first frame; else as the log counts, mostly since 1970
};

/// "1436509052.25", "2015-07-10T06:17:32Z" as `ZelkParseTime` takes them, or "+12.5" for seconds
/// since the first frame.
///
/// @return none for other texts
ZELK_LOGS_API std::optional<ZelkTimePoint> ZelkParseTimePoint(std::string_view text);

struct ZelkTimeOptions {
  std::optional<ZelkTimePoint> start{};  ///< the first time that is wanted
  std::optional<ZelkTimePoint> stop{};   ///< behind the last one
  bool relative = false;                 ///< times become those since the first frame
};

/// Chooses frames by their times. Any number of threads may ask it once it has begun.
class ZELK_LOGS_API ZelkTimeWindow {
 public:
  explicit ZelkTimeWindow(const ZelkTimeOptions& options = {}) : options_(options) {}

  /// Whether times matter: when not, all frames are taken as they are.
  bool IsNeeded() const { return options_.relative || Cuts(); }
  /// Whether some frames may be left out.
  bool Cuts() const { return options_.start || options_.stop; }

  bool HasBegun() const { return has_begun_; }
  /// Takes the time of the first frame.
  ///
  /// @param log  names the log in the error
  /// @throws ZelkLogError when the frame has no time, or no time is in the window
  void Begin(std::int64_t time, std::string_view log);

  /// Whether a frame is in the window: not in front of its start, and in front of its stop.
  ///
  /// @pre `HasBegun()` or not `IsNeeded()`
  /// @throws ZelkLogError when the frame needs a time and has none
  bool Takes(std::int64_t time, std::string_view log) const {
    if (!IsNeeded()) return true;
    if (time == kZelkNoTime) FailWithoutTime(log);
    return time >= start_ && time < stop_;
  }

  /// The time that is given out for a frame.
  std::int64_t Shown(std::int64_t time) const;

  /// Removes the frames outside of the window from a block, and makes times relative where they
  /// are to be.
  ///
  /// @pre as `Takes`
  /// @return number of the frames that were removed
  /// @throws ZelkLogError as `Takes`, std::bad_alloc; with the block unchanged
  std::size_t Cut(ZelkFrameBlock& frames, std::string_view log) const;

 private:
  [[noreturn]] static void FailWithoutTime(std::string_view log);
  std::int64_t InLog(const ZelkTimePoint& point) const;

  ZelkTimeOptions options_;
  bool has_begun_ = false;
  std::int64_t first_ = 0;
  std::int64_t start_ = std::numeric_limits<std::int64_t>::min();
  std::int64_t stop_ = std::numeric_limits<std::int64_t>::max();
};

#endif

/// \file
/// Several logs as one, ordered by time.

#ifndef ZELK_TOOL_LOG_LOG_MERGE_HPP
#define ZELK_TOOL_LOG_LOG_MERGE_HPP

#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <queue>
#include <string>
#include <utility>
#include <vector>

#include "log/log_reports.hpp"
#include "term/progress.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::tool {

struct MergeOptions {
  bool strict = false;  ///< malformed lines are an error
  ZelkLogTimes times = ZelkLogTimes::kDetect;
  /// The caller's and those that read ahead; 0: one more for each log.
  unsigned threads = 0;
  bool has_lines = false;  ///< results appear on the terminal meanwhile
};

/// A log that is read block by block.
class MergedLog {
 public:
  /// Time of a frame, and place of its log: the frame with the smallest one is the next.
  using Rank = std::pair<std::int64_t, std::size_t>;

  /// @param path  none for standard input
  /// @param place  among the logs, from 0
  /// @param reads_ahead  whether a thread of its own reads the next block of a regular file. A pipe
  /// is read when its next frame is wanted: to wait for it must not hold up the other logs.
  /// @throws ZelkLogError when it cannot be opened
  MergedLog(const std::optional<std::string>& path, std::size_t place, bool reads_ahead,
            const MergeOptions& options);

  const ZelkLogReader& reader() const { return reader_; }
  const ZelkFrameBlock& frames() const { return block_.frames; }
  const LogReport& report() const { return report_; }

  /// Whether there is no frame left without reading.
  bool is_block_taken() const { return next_ == frames().Size(); }
  /// Reads until there is a frame that was not taken.
  ///
  /// @param progress  makes room for reports
  /// @return false at the end of the log
  bool load(ProgressBar& progress);
  /// Rank of the next frame.
  ///
  /// @pre `load()` was true, and no frame was taken since
  Rank rank() const { return {frames().Times()[next_], place_}; }
  /// Takes the next frame, and those behind it that are in front of `limit`.
  ///
  /// @param limit  none for all frames of the block
  /// @return where they begin and end in `frames()`
  std::pair<std::size_t, std::size_t> take(const std::optional<Rank>& limit);
  /// Whether the time of a frame was smaller than that of a frame in front of it.
  bool ran_backwards() const { return ran_backwards_; }

 private:
  bool read();
  void start_reading_ahead();

  ZelkLogReader reader_;
  std::size_t place_;
  bool reads_ahead_;
  LogReport report_;
  ZelkLogBlock block_;
  std::size_t next_ = 0;             // of the block's frames
  std::int64_t last_ = kZelkNoTime;  // the largest time of those taken
  bool ran_backwards_ = false;
  ZelkLogBlock next_block_;    // belongs to the thread of `ahead_` while that is valid
  std::future<bool> ahead_{};  // whether there is a next block; waits for its thread when destroyed
};

/// Logs merged by time: of equal times those of the earlier log come first, and each log keeps the
/// order of its frames: those whose times run backwards, and those without a time, come at once
/// behind the one in front of them. Two blocks of each log are in memory at most.
class LogMerge {
 public:
  /// Frames of one log that stand together.
  struct Run {
    const MergedLog* log;
    std::size_t begin;  ///< in `log->frames()`
    std::size_t end;
  };

  using Logs = std::vector<std::unique_ptr<MergedLog>>;

  /// @param paths  none for standard input
  /// @throws ZelkLogError when a log cannot be opened
  LogMerge(const std::vector<std::optional<std::string>>& paths, const MergeOptions& options);

  /// @param run  receives the next frames; they are valid until the next call
  /// @return false at the end of all logs, and after a stop was noted at the end of what was read
  /// without a gap
  /// @throws ZelkLogError when a log cannot be read, RequestError when it has malformed lines and
  /// must not
  bool next(Run& run);

  const Logs& logs() const { return logs_; }

 private:
  void enter(MergedLog& log);

  Logs logs_;
  ProgressBar progress_;
  std::size_t entered_ = 0;       // of them, at the start
  MergedLog* current_ = nullptr;  // the log of the last run
  bool is_stopped_ = false;
  std::priority_queue<MergedLog::Rank, std::vector<MergedLog::Rank>, std::greater<>> heads_;
};

}  // namespace zelk::tool

#endif

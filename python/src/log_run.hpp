/// \file
/// Logs on their way into tables, in the background.

#ifndef ZELK_PYTHON_LOG_RUN_HPP
#define ZELK_PYTHON_LOG_RUN_HPP

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "decoding.hpp"
#include "zelk/logs/pipeline.hpp"

namespace zelk::python {

struct LogRunOptions {
  ZelkLogOptions log{};
  ZelkPipelineOptions pipeline{};
  bool strict = false;       ///< a line that is no frame is a fault
  bool keeps_going = false;  ///< behind a fault the next log is read
};

/// A log that could not be read, or not to its end.
struct LogFault {
  std::size_t path;  ///< index
  std::exception_ptr cause;
};

/// Lines that are no frames: the first ones of each log.
struct MalformedLine {
  std::size_t path;
  ZelkMalformedLine line;
};

/// Reads logs one behind the other, in threads of its own, and hands out batches of rows as they
/// become full. The thread of Python only waits: signals and reports of progress find it awake.
///
/// No more than some batches wait to be taken: memory stays bounded, however long the logs are.
class LogRun {
 public:
  struct Batch {
    std::size_t table;
    SharedArray rows;
  };
  /// Bytes read of the log at `path`, and all that it has; none for a pipe.
  struct Progress {
    std::size_t path = 0;
    std::uint64_t read = 0;
    std::optional<std::uint64_t> size{};
  };
  /// What was met, once the run has ended.
  struct Report {
    ZelkLogCounts lines{};
    ZelkFrameCounts frames{};
    ZelkTransportCounts transport{};
    std::vector<MalformedLine> malformed{};
    std::vector<LogFault> faults{};
  };

  LogRun(std::shared_ptr<Decoding> decoding, std::vector<std::string> paths, LogRunOptions options);
  LogRun(const LogRun&) = delete;
  LogRun& operator=(const LogRun&) = delete;
  ~LogRun() { close(); }

  /// Ends the run where it is; holds the lock of the interpreter only at its begin and end.
  void close();

  /// Waits for the next batch; without the lock of the interpreter.
  ///
  /// @return none when the time is over, or the run
  std::optional<Batch> take(std::chrono::milliseconds patience);
  /// Whether all was taken.
  bool has_ended() const;
  Progress progress() const;
  /// @pre `has_ended()`
  const Report& report() const { return work_->report; }
  const Decoding& decoding() const { return *work_->decoding; }

  /// To be called in a child process that the system made as a copy of this one: it has the
  /// objects, but not the threads.
  static void note_fork() { ++forks_; }

 private:
  /// What the threads share.
  struct Work {
    class Worker;

    void run();
    void read(std::size_t path);
    void decode(std::size_t path, ZelkLogReader& reader);
    void report_block(std::size_t path, const std::string& name, const ZelkLogBlock& block);
    void take_batches(bool is_end);
    bool put(std::size_t table, SharedArray rows);
    void keep_fault(std::size_t path);
    void enter(const ZelkLogReader* log, std::size_t path);

    std::shared_ptr<Decoding> decoding;
    std::vector<std::string> paths;
    LogRunOptions options;
    std::atomic<bool> stop = false;
    Report report{};
    std::size_t malformed_kept = 0;  ///< of the log that is read

    mutable std::mutex mutex;  ///< guards the following
    std::condition_variable changed;
    std::deque<Batch> waiting;
    const ZelkLogReader* log = nullptr;  ///< that is read
    std::size_t log_path = 0;
    bool is_done = false;
  };

  void check_process() const;

  static inline std::atomic<unsigned> forks_ = 0;
  const unsigned born_ = forks_;
  std::shared_ptr<Work> work_;
  std::thread thread_;
};

}  // namespace zelk::python

#endif

/// \file
/// A running monitor: a thread reads frames into the state of the bus while another one shows it.

#ifndef ZELK_TOOL_MONITOR_SESSION_HPP
#define ZELK_TOOL_MONITOR_SESSION_HPP

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "monitor/bus_state.hpp"
#include "monitor/frame_source.hpp"
#include "monitor/recording.hpp"

namespace zelk::tool {

/// Reads a source until it ends, or until there is a `NotedStop`. No frame is left out: while the
/// state is looked at, the source waits.
class Session {
 public:
  /// Starts to read. A `NotedStop` should live around the object.
  ///
  /// @param state   must outlive the object, and is used through `look` alone until `finish`
  /// @param record  as for `record`; empty for nothing
  /// @throws RequestError as `record`
  Session(std::unique_ptr<FrameSource> source, BusState& state, const std::string& record = {});
  /// Ends the reading.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Calls `act(state)` while no frames come in, with the state's time brought up to now.
  template <typename Act>
  void look(const Act& act) {
    const std::lock_guard lock(mutex_);
    advance();
    act(state_);
  }

  const std::string& source_name() const { return source_->name(); }
  /// Whether there will be no more frames.
  bool has_ended() const { return has_ended_; }
  /// Waits for the end, or for a `NotedStop`.
  ///
  /// @return false when there was none in that time
  bool wait(std::chrono::nanoseconds time);

  /// What happened since the last call that the user should know: fit for the terminal.
  std::vector<std::string> take_notices();

  /// Begins to write all frames from now on to a file, wanted or not.
  ///
  /// @throws RequestError as `Recording`
  void record(const std::string& path);
  void stop_recording();
  struct RecordingState {
    std::string path;
    std::uint64_t frame_count;
  };
  /// None while nothing is recorded, which the end of a full disk is too: a notice says so.
  std::optional<RecordingState> recording() const;
  /// Whether a recording has ended by a fault.
  bool has_lost_frames() const { return has_lost_frames_; }

  /// Ends the reading, and waits for that. The state may be used by itself then.
  ///
  /// @throws what ended the reading early: ZelkLogError, RequestError
  void finish();
  /// Counts of the lines of a log, and its first malformed lines; once `finish` was called.
  const ZelkLogBlock& summary() const { return summary_; }

 private:
  using Clock = std::chrono::steady_clock;

  void run() noexcept;
  void take(const ZelkLogBlock& block);
  void write(const ZelkFrameBlock& frames, std::int64_t arrival);
  void note(std::string text);
  void advance();

  std::unique_ptr<FrameSource> source_;
  mutable std::mutex mutex_;  ///< guards the state and its clock
  BusState& state_;
  std::int64_t newest_ = kZelkNoTime;  ///< time of the last frame
  Clock::time_point arrived_;          ///< when it came

  mutable std::mutex recording_mutex_;
  std::unique_ptr<Recording> recording_;
  std::atomic<bool> has_lost_frames_ = false;

  std::mutex notices_mutex_;
  std::vector<std::string> notices_;

  std::mutex end_mutex_;
  std::condition_variable end_;
  std::atomic<bool> has_ended_ = false;
  std::exception_ptr failure_;
  ZelkLogBlock summary_;
  std::thread thread_;
};

}  // namespace zelk::tool

#endif

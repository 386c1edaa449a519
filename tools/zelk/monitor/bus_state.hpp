/// \file
/// What a bus looks like at one moment: the last frame of every message, and how regularly it
/// comes.

#ifndef ZELK_TOOL_MONITOR_BUS_STATE_HPP
#define ZELK_TOOL_MONITOR_BUS_STATE_HPP

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "log/log_databases.hpp"
#include "monitor/value_track.hpp"
#include "zelk/logs/frame.hpp"

namespace zelk::tool {

/// The last value of a signal.
struct SignalState {
  const sigblk* signal = nullptr;
  std::string name{};  ///< in UTF-8, as are all texts here
  std::string unit{};
  double value = 0;                       ///< physical
  std::string spelled{};                  ///< the value as `zelk decode` spells it
  std::string text{};                     ///< its value description; may be empty
  bool is_present = false;                ///< in the last frame of the row
  std::int64_t changed_at = kZelkNoTime;  ///< time of the last frame that changed it
};

/// A signal of a row, or none.
struct WatchedSignal {
  const struct RowState* row = nullptr;
  std::size_t signal = 0;

  bool operator==(const WatchedSignal& other) const {
    return row == other.row && signal == other.signal;
  }
};

/// A message, a page of a multiplexed one, or an identifier that no database knows: a row of the
/// table.
struct RowState {
  std::uint32_t id = 0;  ///< bit 31: an extended identifier
  std::string channel{};
  const msgblk* message = nullptr;  ///< null: unknown
  std::string name{};               ///< of the message; empty: unknown
  std::string page{};               ///< "Mode = 3", of a multiplexed message; "further" for all
                                    ///< pages behind the first 256
  std::vector<SignalState> signals{};

  std::vector<unsigned char> data{};       ///< of the last frame
  std::vector<std::int64_t> changed_at{};  ///< for each byte, as in `SignalState`
  std::uint16_t flags = 0;                 ///< `ZelkFrameFlags` of the last frame
  std::uint64_t count = 0;
  std::int64_t last_time = kZelkNoTime;  ///< nanoseconds, as in the frames

  std::uint64_t change_count = 0;  ///< frames whose data differs from the one before

  double cycle_ms = 0;          ///< mean of the last 64 times between frames; 0: fewer than two
  double deviation_ms = 0;      ///< their standard deviation
  double nominal_ms = 0;        ///< the cycle time that the database states; 0: none
  bool is_missing = false;      ///< cyclic, and more than three cycles late
  std::uint64_t gap_count = 0;  ///< how often it was when its next frame came
};

/// The state of a bus. Memory depends on the number of rows, not of frames.
///
/// A cyclic message is missing by the cycle time that its database states, unless its send type
/// says that it is not sent at all times, and else by the one that it shows when that is regular;
/// see `CycleWatch`. Of remote frames and error frames only the number is kept.
///
/// One thread at a time may use it.
class BusState {
 public:
  /// Rows of unknown identifiers, and of messages.
  static constexpr std::size_t kMostUnknown = 2048;
  static constexpr std::size_t kMostKnown = 65536;

  struct Options {
    bool match_groups = false;                        ///< as `ZelkColumnOptions::match_groups`
    NameFilter filter{};                              ///< messages and signals that are wanted
    std::vector<std::string> interfaces{};            ///< that are wanted; empty for all
    std::string cycle_attribute = "GenMsgCycleTime";  ///< of messages: their cycle time in ms
  };

  /// @param databases  must outlive the object
  BusState(const LogDatabases& databases, const Options& options);
  ~BusState();
  BusState(const BusState&) = delete;
  BusState& operator=(const BusState&) = delete;

  /// Takes frames, in the order in which they came. Times that run backwards by more than a second
  /// are those of a clock that was set, or of a log that begins anew.
  ///
  /// @param arrival  time of frames that have none
  void add(const ZelkFrameBlock& frames, std::int64_t arrival = kZelkNoTime);
  /// The time goes on without frames: messages may be missing now.
  ///
  /// @param now  on the same clock as the times of the frames
  void advance(std::int64_t now);

  /// All rows, with their texts and figures brought up to date. First come the cyclic messages of
  /// the databases that are expected on the bus, with a count of 0 until their first frame; then
  /// the others in the order in which they came. Rows stay where they are; references are valid as
  /// long as the object.
  const std::deque<RowState>& rows();
  /// Keeps the values that a signal has in all frames from now on, in place of those of another.
  void watch(const WatchedSignal& signal);
  /// The values that came since the last call.
  ValueTrack take_watched();
  /// The time of the last frame or `advance`.
  std::int64_t now() const;
  /// Those of `Options::interfaces` from which no frame came.
  std::vector<std::string> silent_interfaces() const;
  /// All frames, wanted or not.
  std::uint64_t frame_count() const;
  std::uint64_t error_frame_count() const;
  std::uint64_t remote_frame_count() const;
  /// Frames that would have needed more rows than there may be.
  std::uint64_t unlisted_frame_count() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace zelk::tool

#endif

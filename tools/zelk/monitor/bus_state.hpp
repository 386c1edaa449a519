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
#include "zelk/logs/frame.hpp"

namespace zelk::tool {

/// The last value of a signal.
struct SignalState {
  const sigblk* signal;
  std::string name;  ///< in UTF-8, as are all texts here
  std::string unit;
  double value = 0;                       ///< physical
  std::string spelled;                    ///< the value as `zelk decode` spells it
  std::string text;                       ///< its value description; may be empty
  bool is_present = false;                ///< in the last frame of the row
  std::int64_t changed_at = kZelkNoTime;  ///< time of the last frame that changed it
};

/// A message, a page of a multiplexed one, or an identifier that no database knows: a row of the
/// table.
struct RowState {
  std::uint32_t id = 0;  ///< bit 31: an extended identifier
  std::string channel;
  const msgblk* message = nullptr;  ///< null: unknown
  std::string name;                 ///< of the message; empty: unknown
  std::string page;                 ///< "Mode = 3", of a multiplexed message
  std::vector<SignalState> signals;

  std::vector<unsigned char> data;       ///< of the last frame
  std::vector<std::int64_t> changed_at;  ///< for each byte, as in `SignalState`
  std::uint16_t flags = 0;               ///< `ZelkFrameFlags` of the last frame
  std::uint64_t count = 0;
  std::int64_t last_time = kZelkNoTime;  ///< nanoseconds, as in the frames

  double cycle_ms = 0;      ///< mean time between frames; 0: fewer than two
  double deviation_ms = 0;  ///< standard deviation of the times between frames
  double nominal_ms = 0;    ///< the cycle time that the database states; 0: none
  bool is_missing = false;  ///< cyclic, and more than three cycles late, or never seen
};

/// The state of a bus. Memory depends on the number of rows, not of frames.
///
/// One thread at a time may use it.
class BusState {
 public:
  struct Options {
    bool match_groups = false;  ///< as `ZelkColumnOptions::match_groups`
    NameFilter filter{};        ///< messages and signals that are wanted
  };

  /// @param databases  must outlive the object
  BusState(const LogDatabases& databases, const Options& options);
  ~BusState();
  BusState(const BusState&) = delete;
  BusState& operator=(const BusState&) = delete;

  /// Takes frames, in the order of their times.
  void add(const ZelkFrameBlock& frames);
  /// The time goes on without frames: messages may be missing now.
  ///
  /// @param now  on the same clock as the times of the frames
  void advance(std::int64_t now);

  /// In the order in which they came, cyclic messages of the databases that never came at the end.
  /// Rows stay where they are; references are valid as long as the object.
  const std::deque<RowState>& rows() const;
  /// The time of the last frame or `advance`.
  std::int64_t now() const;
  std::uint64_t frame_count() const;
  std::uint64_t error_frame_count() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace zelk::tool

#endif

/// \file
/// What a message of a database needs for the state of its rows, prepared once.

#ifndef ZELK_TOOL_MONITOR_MESSAGE_PLAN_HPP
#define ZELK_TOOL_MONITOR_MESSAGE_PLAN_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/encoded_database.hpp"
#include "base/name_filter.hpp"
#include "base/signal_spelling.hpp"
#include "check/lint/known_attributes.hpp"
#include "zelk/frame_decoder.hpp"

namespace zelk::tool {

/// The cycle times of a database's messages.
class CycleTimes {
 public:
  /// @param attribute  of messages, that states their cycle time in milliseconds
  CycleTimes(const ZelkDatabase& database, const std::string& attribute);

  /// In nanoseconds; 0: none, or none that can be.
  std::int64_t stated(const msgblk& message) const;
  /// Whether the message is sent in this cycle at all times: no send type says otherwise.
  bool is_permanent(const msgblk& message) const;

 private:
  check::KnownAttribute cycle_time_;
  check::KnownAttribute send_type_;
};

struct SignalPlan {
  std::size_t index;  ///< among the signals of the decoder
  std::string name;
  std::string unit;
  SignalNumbers numbers;
  SpelledDescriptions descriptions;
};

struct MessagePlan {
  MessagePlan(const msgblk& message, Encoding encoding, const NameFilter& filter,
              const CycleTimes& cycles);

  ZelkFrameDecoder decoder;
  std::string name;
  std::vector<SignalPlan> signals;        ///< those that are wanted, in the order of the message
  std::vector<std::size_t> multiplexors;  ///< indices in the decoder
  std::vector<std::string> multiplexor_names;
  std::int64_t stated_cycle;    ///< nanoseconds; 0: none
  std::int64_t expected_cycle;  ///< likewise, by which the message is missed
  bool is_shown;                ///< whether the message and any of its signals are wanted
};

}  // namespace zelk::tool

#endif

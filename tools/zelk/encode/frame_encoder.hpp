/// \file
/// A frame put together from values of signals.

#ifndef ZELK_TOOL_ENCODE_FRAME_ENCODER_HPP
#define ZELK_TOOL_ENCODE_FRAME_ENCODER_HPP

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "encode/parse_value.hpp"
#include "log/candump_log.hpp"
#include "zelk/frame_decoder.hpp"

namespace zelk::tool {

/// Sets signals of one message in a frame.
class FrameEncoder {
 public:
  /// @param message   must outlive the object
  /// @param frame     what the signals are put into; its length stays
  /// @param is_given  whether the multiplexors in `frame` mean something; else they are but zeros
  FrameEncoder(const msgblk& message, const LogFrame& frame, bool is_given);

  /// Takes the value of a signal by its name.
  /// @throws RequestError as `parse_signal_value`, and when there is no such signal, or it has been
  /// given or does not fit into the frame
  void set(std::string_view name, std::string_view value, const ValueOptions& options);

  /// Sets all that was given, and the multiplexors that select it. A multiplexor that was not given
  /// keeps its value when that selects the signals, and else gets the only one that does.
  ///
  /// @throws RequestError when no value of a multiplexor selects all of its signals that were
  /// given, or several do; and when the frame would not hold what was given
  LogFrame finish();

 private:
  /// Multiplexor values, both ends included.
  struct Range {
    std::uint32_t low;
    std::uint32_t high;
  };
  using Ranges = std::vector<Range>;

  const sigblk* deepest_unsettled_multiplexor() const;
  void settle(const sigblk& multiplexor);
  Ranges selecting_values(const sigblk& multiplexor, std::string& names) const;
  bool keeps_selecting(const sigblk& multiplexor, const Ranges& ranges);
  void check_fits(const sigblk& signal) const;
  void put(LogFrame& frame, const sigblk& signal, std::int64_t raw) const;
  void check(const LogFrame& frame) const;
  /// Index of a signal among those of the message.
  std::size_t index_of(const sigblk& signal) const;

  const msgblk& message_;
  LogFrame frame_;
  bool is_frame_given_;
  ZelkFrameDecoder decoder_;
  std::vector<std::int64_t> before_;  // raw values in the frame as it came
  std::vector<std::uint64_t> before_present_;
  std::map<std::size_t, std::int64_t> given_;  // raw values by index, multiplexors found included
  std::vector<const sigblk*> settled_;
};

}  // namespace zelk::tool

#endif

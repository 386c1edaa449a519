/// \file
/// The signals of rows, decoded and spelled.

#ifndef ZELK_TOOL_MONITOR_ROW_DECODER_HPP
#define ZELK_TOOL_MONITOR_ROW_DECODER_HPP

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "monitor/bus_state.hpp"
#include "monitor/message_plan.hpp"

namespace zelk::tool {

/// What a row remembers of each of its signals.
struct SignalTrack {
  const SignalPlan* plan;
  std::int64_t raw = 0;
};
using RowValues = std::vector<SignalTrack>;

/// Decodes the frames of one row after the other; what was decoded last is kept.
class RowDecoder {
 public:
  /// What tells the page of a frame from the others of its message: whether each multiplexor is
  /// present, and its value. Never empty; valid until the next call.
  const std::vector<std::int64_t>& page_key(const MessagePlan& plan,
                                            std::span<const unsigned char> data);
  /// The name of the page that `page_key` was just asked for: "Mode = 3, SubMode = 1".
  std::string page_name(const MessagePlan& plan) const;

  /// The wanted signals of a page, also those that a short frame does not reach.
  ///
  /// @param data     of a frame of the page; empty: the signals of all pages
  /// @param signals  receives them
  RowValues make_signals(const MessagePlan& plan, std::span<const unsigned char> data,
                         std::vector<SignalState>& signals);

  /// Takes the values from the data of a row.
  void update(const MessagePlan& plan, RowState& row, RowValues& values, std::int64_t time);
  /// The physical value of one that is present.
  double physical(const MessagePlan& plan, const RowState& row, const SignalTrack& signal);
  /// Spells them.
  void spell(const MessagePlan& plan, RowState& row, const RowValues& values);

 private:
  void decode(const MessagePlan& plan, std::span<const unsigned char> data);
  void decode_physical(const MessagePlan& plan, std::span<const unsigned char> data);
  bool is_present(std::size_t index) const { return present_[index / 64] >> (index % 64) & 1; }

  std::vector<std::int64_t> raw_;
  std::vector<double> physical_;
  std::vector<std::uint64_t> present_;
  std::vector<std::int64_t> key_;
};

}  // namespace zelk::tool

#endif

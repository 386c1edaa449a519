/// \file
/// Actions of the statements about messages and their signals.

#ifndef ZELK_READER_MESSAGE_ACTIONS_HPP
#define ZELK_READER_MESSAGE_ACTIONS_HPP

#include <string>
#include <unordered_map>
#include <vector>

#include "reader/read_context.hpp"
#include "reader/segments.hpp"

namespace zelk {

/// What stands on an "SG_" line besides the segments and the receivers.
struct SignalLine {
  TokenText name;
  TokenText indicator;  ///< multiplexer indicator, empty for none
  std::uint32_t start_bit;
  bool is_signed;
  RealPair factor_offset;
  RealPair range;
  TokenText unit;
};

class MessageActions {
 public:
  explicit MessageActions(ReadContext& context) : context_(context) {}

  // "BO_" with its "SG_" lines. The receivers of a signal are in the context's names, its segments
  // in `segments`.
  void begin_message(std::uint32_t id, TokenText name, std::uint32_t size, TokenText transmitter);
  void signal(const SignalLine& line);
  void end_message();

  void transmitters(std::uint32_t id);
  void signal_group(std::uint32_t id, TokenText name, std::uint32_t repetitions);
  void signal_value_type(std::uint32_t id, TokenText name, std::uint32_t value_type);
  void multiplexor_range(std::uint32_t low, std::uint32_t high);
  void multiplexor_ranges(std::uint32_t id, TokenText signal, TokenText multiplexor);

  /// The check of the whole file: error 31 for multiplexors that depend on each other in a circle.
  void check_multiplexing() const;

  Segments segments;

 private:
  void apply_indicator(sigblk& signal, TokenText indicator);
  void apply_layout(sigblk& signal, std::uint32_t start_bit);
  void assign_multiplexor();

  ReadContext& context_;
  Owned<msgblk> message_;  ///< the message being read
  std::string transmitter_;
  PendingList<sigblk> signals_;
  std::vector<sigblk*> multiplexed_;  ///< of `signals_`, those selected by a multiplexor
  char multiplexor_letter_ = 0;       ///< of all indicators of the message; 0 while there was none
  PendingList<muxor_val_range> ranges_;
  std::unordered_map<const msgblk*, std::size_t> multiplexor_counts_;
};

}  // namespace zelk

#endif

/// \file
/// Actions of the statements in front of the messages: version, bit timing, nodes, value tables.

#ifndef ZELK_READER_FRAME_ACTIONS_HPP
#define ZELK_READER_FRAME_ACTIONS_HPP

#include "reader/read_context.hpp"

namespace zelk {

class FrameActions {
 public:
  explicit FrameActions(ReadContext& context) : context_(context) {}

  void version(TokenText text);
  void bit_timing(std::uint32_t baudrate, std::uint32_t btr1, std::uint32_t btr2);
  void end_bit_timings();
  void node(TokenText name);
  void value_table(TokenText name);
  /// Adds a description to the statement under way; the value is cut toward zero and taken modulo
  /// 2^32.
  void value_description(double value, TokenText text);

 private:
  ReadContext& context_;
  PendingList<btlblk> bit_timings_;
};

}  // namespace zelk

#endif

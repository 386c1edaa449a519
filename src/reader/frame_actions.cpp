#include "reader/frame_actions.hpp"

#include <cmath>

#include "model/symbols.hpp"

namespace zelk {
namespace {

constexpr std::uint32_t kRegisterMax = 255;

std::int32_t to_raw_value(double value) {
  constexpr double kTwoTo32 = 4294967296.0;
  if (std::abs(value) >= kTwoTo32) value = std::fmod(value, kTwoTo32);
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::int64_t>(value)));
}

}  // namespace

void FrameActions::version(TokenText text) {
  assign_text(context_.model.version, copy_text(text.view()));
  context_.extended_multiplexing = false;
  context_.end_statement();
}

void FrameActions::bit_timing(std::uint32_t baudrate, std::uint32_t btr1, std::uint32_t btr2) {
  if (btr1 > kRegisterMax || btr2 > kRegisterMax) {
    context_.note(ZELK_ERR_FORMAT, "a bit-timing register keeps its low 8 bits");
  }
  btlblk* record = zelk_create_btlblk();
  bit_timings_.push_back(record);
  record->baudrate = static_cast<std::uint16_t>(baudrate);
  record->btr1 = static_cast<std::uint8_t>(btr1);
  record->btr2 = static_cast<std::uint8_t>(btr2);
}

/// The entries of the section go in front of those that the list held, in their own order.
void FrameActions::end_bit_timings() {
  context_.model.bit_timings = bit_timings_.take_in_front_of(context_.model.bit_timings);
}

void FrameActions::node(TokenText name) {
  context_.linked_node(name.view());
  context_.end_statement();
}

void FrameActions::value_table(TokenText name) {
  Owned<valtable> table(zelk_create_valtable());
  copy_inline(table->name, name.view());
  table->values = context_.descriptions.take();
  context_.index.add(table.get());
  context_.tables.append(table.release());
  context_.end_statement();
}

void FrameActions::value_description(double value, TokenText text) {
  val* description = zelk_create_value();
  context_.descriptions.push_back(description);
  description->value = to_raw_value(value);
  description->text = copy_text(text.view()).release();
}

}  // namespace zelk

#include "reader/message_actions.hpp"

#include <algorithm>
#include <charconv>
#include <utility>

#include "base/characters.hpp"
#include "base/multiplexing.hpp"
#include "base/signal_bits.hpp"
#include "model/symbols.hpp"

namespace zelk {
namespace {

constexpr std::size_t kCycleTextMax = 1024;

}  // namespace

// --- Messages and their signals ---

void MessageActions::begin_message(std::uint32_t id, TokenText name, std::uint32_t size,
                                   TokenText transmitter) {
  message_.reset(zelk_create_msgblk());
  message_->name = copy_text(name.view()).release();
  message_->id = id;
  message_->dlc = static_cast<std::uint16_t>(size);
  transmitter_ = transmitter.view();
  context_.end_statement();
}

void MessageActions::signal(const SignalLine& line) {
  Owned<sigblk> signal(zelk_create_sigblk());
  signal->name = copy_text(line.name.view()).release();
  if (line.indicator.size > 0) apply_indicator(*signal, line.indicator);
  apply_layout(*signal, line.start_bit);
  if (line.is_signed) set_flag(*signal, ZELK_SIGNAL_SIGNED);
  signal->factor = line.factor_offset.first == 0.0 ? 1.0 : line.factor_offset.first;
  signal->offset = line.factor_offset.second;
  signal->minimum = line.range.first;
  signal->maximum = line.range.second;
  if (signal->minimum > signal->maximum) std::swap(signal->minimum, signal->maximum);
  copy_inline(signal->unit, line.unit.view());
  PendingList<rxblk> receivers;
  context_.link_names(receivers, zelk_create_rx);
  signal->receivers = receivers.take();
  signal->receiver_count = count_16(signal->receivers);
  if (signal->mux_ranges) multiplexed_.push_back(signal.get());
  signals_.push_back(signal.release());
  context_.end_statement();
}

/// "M" marks a multiplexor, "m3" a signal present for its value 3, "m3M" both; M may be any letter,
/// but one per message.
void MessageActions::apply_indicator(sigblk& signal, TokenText indicator) {
  std::string text(indicator.view());
  std::transform(text.begin(), text.end(), text.begin(), to_upper);
  if (text[0] == '_') context_.fail(ZELK_ERR_MODE, signal.name);
  if (multiplexor_letter_ == 0) multiplexor_letter_ = text[0];
  if (text[0] != multiplexor_letter_) context_.fail(ZELK_ERR_MODE, signal.name);
  if (text.back() == multiplexor_letter_) {
    set_flag(signal, ZELK_SIGNAL_MULTIPLEXOR);
    text.pop_back();
  }
  if (text.size() < 2) return;
  std::uint32_t value = 0;
  const auto result = std::from_chars(text.data() + 1, text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range) context_.fail(ZELK_ERR_MODE, signal.name);
  signal.mux_ranges = zelk_create_muxor_value_range();
  signal.mux_ranges->low = value;
  signal.mux_ranges->high = value;
}

void MessageActions::apply_layout(sigblk& signal, std::uint32_t start_bit) {
  const auto layout = segments.layout(start_bit);
  segments.clear();
  if (!layout) context_.fail(ZELK_ERR_SEGMENTATION, signal.name);
  signal.start_bit = layout->start_bit;
  signal.length = layout->length_bits;
  if (layout->is_motorola) set_flag(signal, ZELK_SIGNAL_MOTOROLA);
}

void MessageActions::end_message() {
  message_->signals = signals_.take();
  if (symblk* node = context_.linked_node(transmitter_)) {
    message_->tx_nodes = zelk_create_tx(node);
    message_->transmitter = node;
  }
  assign_multiplexor();
  message_->signal_count = count_16(message_->signals);
  for (sigblk& signal : each(message_->signals)) signal.message = message_.get();
  multiplexor_letter_ = 0;
  context_.index.add(message_.get());
  context_.messages.append(message_.release());
  context_.end_statement();
}

/// With several multiplexors the "SG_MUL_VAL_" statements say which one selects a signal.
void MessageActions::assign_multiplexor() {
  const std::size_t count = count_multiplexors(*message_);
  if (count > 1) context_.extended_multiplexing = true;
  if (count == 1) {
    sigblk* const multiplexor = find_first(message_->signals, is_multiplexor);
    for (sigblk* signal : multiplexed_) signal->mux_signal = multiplexor;
  }
  multiplexed_.clear();
}

// --- Further statements about messages and signals ---

void MessageActions::transmitters(std::uint32_t id) {
  msgblk* message = context_.index.message(id);
  // Hosts know this text, which was meant to show the identifier.
  if (!message) context_.fail(ZELK_ERR_UNKNOWN_SYMBOL, "Msg &lu");
  if (!context_.names.empty()) {
    PendingList<rxblk> links;
    context_.link_names(links, zelk_create_tx);
    release_list(std::exchange(message->tx_nodes, links.take()));
  }
  context_.end_statement();
}

void MessageActions::signal_group(std::uint32_t id, TokenText name, std::uint32_t repetitions) {
  msgblk& message = context_.message(id);
  Owned<siggroupblk> group(zelk_create_siggroup(&message));
  copy_inline(group->name, name.view());
  group->repetitions = static_cast<std::int32_t>(repetitions);
  PendingList<siglistblk> members;
  for (const TokenText& member : context_.names) {
    members.push_back(zelk_create_siglist(&context_.signal(message, member)));
  }
  group->signals = members.take();
  context_.object_lists.append(message.siggroups, std::move(group));
  context_.end_statement();
}

void MessageActions::signal_value_type(std::uint32_t id, TokenText name, std::uint32_t value_type) {
  context_.signal(id, name).value_type = value_type;
  context_.end_statement();
}

void MessageActions::multiplexor_range(std::uint32_t low, std::uint32_t high) {
  muxor_val_range* range = zelk_create_muxor_value_range();
  ranges_.push_back(range);
  range->low = low;
  range->high = high;
}

void MessageActions::multiplexor_ranges(std::uint32_t id, TokenText signal_name,
                                        TokenText multiplexor_name) {
  msgblk& message = context_.message(id);
  sigblk& signal = context_.signal(message, signal_name);
  sigblk& multiplexor = context_.signal(message, multiplexor_name);
  const auto [counted, is_new] = multiplexor_counts_.try_emplace(&message, 0);
  std::size_t& count = counted->second;
  if (is_new) count = count_multiplexors(message);
  if (!is_multiplexor(multiplexor)) ++count;
  set_flag(multiplexor, ZELK_SIGNAL_MULTIPLEXOR);
  signal.mux_signal = &multiplexor;
  if (!ranges_.empty()) release_list(std::exchange(signal.mux_ranges, ranges_.take()));
  if (count > 1) context_.extended_multiplexing = true;
  context_.end_statement();
}

void MessageActions::check_multiplexing() const {
  if (!context_.extended_multiplexing) return;
  CircleSearch search;
  for (const msgblk& message : each(context_.model.messages)) {
    for (const sigblk& signal : each(message.signals)) {
      if (!is_multiplexor(signal) || !search.circle_above(signal)) continue;
      std::string text(view(message.name));
      text.append("::").append(view(signal.name));
      context_.fail(ZELK_ERR_CYCLIC_MULTIPLEXOR, text.substr(0, kCycleTextMax));
    }
  }
}

}  // namespace zelk

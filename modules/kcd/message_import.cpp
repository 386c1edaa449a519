#include "kcd/message_import.hpp"

#include <algorithm>

#include "base/signal_bits.hpp"
#include "common/records.hpp"
#include "kcd/format.hpp"

namespace zelk::modules::kcd {

void MessageImport::fill(msgblk& message) {
  element_.take({.attributes = {"id", "name", "length", "format", "interval"},
                 .once = {"Notes", "Producer"},
                 .many = {"Multiplex", "Signal"},
                 .idle = {{"triggered", "false"}, {"remote", "false"}, {"count", "0"}}});
  assign_text(message.name, element_.object_name("name"));
  message.id = read_id();
  if (const auto notes = element_.child("Notes")) {
    notes->take({.has_text = true});
    const std::string comment = notes->content();
    if (!comment.empty()) assign_text(message.comment, comment);
  }
  fill_transmitters(message);
  element_.each(nullptr, [this](const Element& inner) {
    if (inner.tag() == "Multiplex") add_multiplexor(inner);
    if (inner.tag() == "Signal") add_signal(inner, read_signal(inner, nodes_));
  });
  message.dlc = read_dlc();
  fill_signals(message);
}

std::uint32_t MessageImport::read_id() const {
  const std::string_view format = element_.find("format").value_or("standard");
  if (format == "standard") {
    return static_cast<std::uint32_t>(element_.whole("id", 0, kMaxStandardId));
  }
  if (format != "extended") {
    element_.fail("format=\"" + std::string(format) + "\" is neither standard nor extended");
  }
  return ZELK_ID_EXTENDED | static_cast<std::uint32_t>(element_.whole("id", 0, kMaxExtendedId));
}

std::uint16_t MessageImport::read_dlc() const {
  if (element_.find("length").value_or("auto") != "auto") {
    return static_cast<std::uint16_t>(element_.whole("length", 0, kMaxDataBytes));
  }
  std::uint32_t bytes = 0;
  for (const Signal& signal : signals_) {
    bytes = std::max(bytes, end_byte(signal.data));
  }
  return static_cast<std::uint16_t>(bytes);
}

/// A signal that several groups of one multiplexor contain is one signal.
void MessageImport::add_signal(const Element& element, const SignalData& data,
                               std::size_t multiplexor, std::uint32_t selector) {
  const auto [entry, is_new] = by_name_.try_emplace(data.name, signals_.size());
  if (is_new) {
    if (signals_.size() == UINT16_MAX) element.fail("the message has more than 65535 signals");
    signals_.push_back({data, multiplexor, {}});
  }
  Signal& signal = signals_[entry->second];
  if (!is_new) {
    if (multiplexor == kNone || signal.multiplexor != multiplexor) {
      element.fail("another signal of the message has this name");
    }
    if (signal.data != data) element.fail("another MuxGroup has this signal with other properties");
  }
  if (multiplexor != kNone && !signal.selectors.insert(selector).second) {
    element.fail("the signal comes twice for count " + std::to_string(selector));
  }
}

void MessageImport::add_multiplexor(const Element& element) {
  const std::size_t multiplexor = signals_.size();
  add_signal(element, read_signal(element, nodes_));
  element.each("MuxGroup", [&](const Element& group) { add_group(group, multiplexor); });
}

void MessageImport::add_group(const Element& group, std::size_t multiplexor) {
  if (group.child("Multiplex")) group.fail("a Multiplex in a Multiplex");
  group.take({.attributes = {"count"}, .many = {"Signal"}});
  const auto selector = static_cast<std::uint32_t>(group.whole("count", 0, UINT32_MAX));
  if (!group.child("Signal")) reading_.left_out.add("MuxGroup element", " without signals");
  group.each("Signal", [&](const Element& inner) {
    add_signal(inner, read_signal(inner, nodes_), multiplexor, selector);
  });
}

void MessageImport::fill_transmitters(msgblk& message) const {
  const std::vector<symblk*> producers = nodes_.referred(element_.child("Producer"));
  if (producers.empty()) return;
  message.transmitter = producers.front();
  if (producers.size() == 1) return;
  ListTail<rxblk> links(message.tx_nodes);
  for (symblk* const node : producers) append_new(links).node = node;
}

void MessageImport::fill_signals(msgblk& message) const {
  std::vector<sigblk*> records;
  ListTail<sigblk> list(message.signals);
  for (const Signal& signal : signals_) {
    sigblk& record = append_new(list);
    records.push_back(&record);
    signal.data.fill(record);
    record.message = &message;
    if (signal.multiplexor == kNone) continue;
    record.mux_signal = records[signal.multiplexor];
    fill_ranges(record, signal.selectors);
  }
  message.signal_count = static_cast<std::uint16_t>(records.size());
}

/// Numbers that follow each other make up one range.
void MessageImport::fill_ranges(sigblk& record, const std::set<std::uint32_t>& selectors) {
  ListTail<muxor_val_range> list(record.mux_ranges);
  muxor_val_range* last = nullptr;
  for (const std::uint32_t selector : selectors) {
    if (!last || selector - last->high != 1) {
      last = &append_new(list);
      last->low = selector;
    }
    last->high = selector;
  }
}

}  // namespace zelk::modules::kcd

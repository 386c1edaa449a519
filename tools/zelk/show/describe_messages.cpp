#include <algorithm>
#include <set>

#include "base/multiplexing.hpp"
#include "check/picture/frame_bits.hpp"
#include "check/picture/layouts.hpp"
#include "show/bit_matrix.hpp"
#include "show/describe.hpp"
#include "term/text.hpp"
#include "words/record_words.hpp"

namespace zelk::tool {

namespace {

/// "16 bits, Intel, unsigned"
template <typename Coded>
std::string coding(const Coded& coded) {
  return fmt::format("{}, {}, {}", counted(coded.length, "bit"), byte_order(coded.flags),
                     number_format(coded.flags, coded.value_type));
}

/// 0 is "A", 25 "Z", 26 "AA", and so on.
std::string key_of(std::size_t index) {
  std::string key;
  for (std::size_t rest = index + 1; rest > 0; rest = (rest - 1) / 26)
    key.insert(key.begin(), static_cast<char>('A' + (rest - 1) % 26));
  return key;
}

}  // namespace

template <typename Scaled>
std::string Describer::scaling(const Scaled& scaled) const {
  return fmt::format("factor {}, offset {}, range {} to {}{}", scaled.factor, scaled.offset,
                     scaled.minimum, scaled.maximum, unit(scaled.unit));
}

std::string Describer::multiplexor_name(const sigblk& signal) const {
  return signal.mux_signal ? shown(view(signal.mux_signal->name)) : "(no multiplexor)";
}

/// What a reader of the drawing must know of a signal: when it is there, and why its drawing may
/// look odd.
std::string Describer::legend_remarks(const sigblk& signal, std::uint32_t dlc, bool drawn) const {
  std::string text;
  if (is_multiplexor(signal)) text += ", multiplexor";
  if (is_multiplexed(signal)) {
    text += fmt::format(", for {} = {}", multiplexor_name(signal),
                        signal.mux_ranges ? presence_values(signal) : "(none)");
  }
  if (signal.length > 0 && check::last_byte(signal) >= dlc) text += ", beyond the data length";
  if (!drawn) text += ", not drawn";
  return text;
}

void Describer::message(const msgblk& message) const {
  message_heading(message);
  const Output::Indent indent(out_);
  message_details(message);
  layout(message);
  signals(message);
}

void Describer::message_heading(const msgblk& message) const {
  out_.line("Message {}, {}, {}", shown(view(message.name)), shown_id(message.id),
            counted(message.dlc, "byte"));
}

void Describer::message_details(const msgblk& message) const {
  if (const auto group = parameter_groups_.description(message)) out_.line("J1939: {}", *group);
  transmitters(message);
  category_line(message.category);
  attributes(message.attrs);
  comment(message.comment);
  for (const siggroupblk& record : each(message.siggroups)) group(record);
}

void Describer::transmitters(const msgblk& message) const {
  const bool is_only_one =
      message.tx_nodes && !message.tx_nodes->next && message.tx_nodes->node == message.transmitter;
  if (is_only_one) return nodes("transmitter", message.tx_nodes);
  out_.line("transmitter: {}",
            message.transmitter ? shown(view(message.transmitter->name)) : "none");
  nodes("all transmitters", message.tx_nodes);
}

void Describer::signals(const msgblk& message) const {
  const GroupsOfSignal groups = groups_of(message);
  for (const sigblk& signal : each(message.signals)) {
    out_.line("Signal {}", shown(view(signal.name)));
    signal_details(signal, groups);
  }
}

void Describer::signal_alone(const sigblk& signal) const {
  out_.line("Signal {} of message {}, {}", shown(view(signal.name)),
            shown(view(signal.message->name)), shown_id(signal.message->id));
  signal_details(signal, groups_of(*signal.message));
}

void Describer::signal_details(const sigblk& signal, const GroupsOfSignal& groups) const {
  const Output::Indent indent(out_);
  out_.line("layout: start bit {}, {}", signal.start_bit, coding(signal));
  out_.line("value: {}", scaling(signal));
  multiplexing(signal);
  nodes("receivers", signal.receivers);
  if (signal.sigtype) out_.line("signal type: {}", shown(signal.sigtype->name));
  if (const auto found = groups.find(&signal); found != groups.end()) {
    std::string names;
    for (const siggroupblk* record : found->second)
      names += (names.empty() ? "" : ", ") + shown(record->name);
    out_.line("groups: {}", names);
  }
  values(signal.values);
  attributes(signal.attrs);
  comment(signal.comment);
}

void Describer::multiplexing(const sigblk& signal) const {
  const bool selects = is_multiplexor(signal);
  const bool is_selected = is_multiplexed(signal);
  if (!selects && !is_selected) return;
  std::string presence;
  if (is_selected) {
    presence = fmt::format("present for {} of {}",
                           signal.mux_ranges ? presence_values(signal) : "no value",
                           multiplexor_name(signal));
  }
  out_.line("multiplexing: {}{}{}", selects ? "multiplexor" : "",
            selects && is_selected ? ", " : "", presence);
}

Describer::GroupsOfSignal Describer::groups_of(const msgblk& message) {
  GroupsOfSignal groups;
  for (const siggroupblk& record : each(message.siggroups))
    for (const siglistblk& member : each(record.signals)) groups[member.signal].push_back(&record);
  return groups;
}

void Describer::group(const siggroupblk& group) const {
  std::string names;
  for (const siglistblk& member : each(group.signals))
    names += fmt::format(" {}", shown(view(member.signal->name)));
  out_.line("Signal group {}, repetitions {}:{}", shown(group.name), group.repetitions, names);
  const Output::Indent indent(out_);
  comment(group.comment);
}

void Describer::group_alone(const siggroupblk& group) const {
  message_heading(*group.message);
  const Output::Indent indent(out_);
  Describer::group(group);
}

void Describer::signal_type(const sigtype& type) const {
  out_.line("Signal type {}", shown(type.name));
  const Output::Indent indent(out_);
  out_.line("layout: {}", coding(type));
  out_.line("value: {}, default {}", scaling(type), type.default_value);
  if (type.valtable) out_.line("value table: {}", shown(type.valtable->name));
  attributes(type.attrs);
  comment(type.comment);
}

void Describer::layout(const msgblk& message) const {
  SignalKeys keys;
  std::size_t name_width = 0;
  std::size_t key_width = 1;
  for (const sigblk& signal : each(message.signals)) {
    const std::string& key = keys[&signal] = key_of(keys.size());
    key_width = key.size();
    name_width = std::max(name_width, view(signal.name).size());
  }

  const check::Layouts all = check::layouts_of(message, encoding_);
  std::set<const sigblk*> drawn;
  for (const check::Layout& layout : all.layouts) {
    out_.line("Layout{}{}:", layout.condition.empty() ? "" : " for ", layout.condition);
    const Output::Indent indent(out_);
    draw_bit_matrix(out_, check::FrameBits(message.dlc, layout.signals), keys, key_width);
    drawn.insert(layout.signals.begin(), layout.signals.end());
  }
  if (!all.complete) out_.line("further multiplexor values are not drawn");

  const Output::Indent indent(out_);
  for (const sigblk& signal : each(message.signals)) {
    out_.line("{:>{}}  {:<{}}  {}{}", keys.at(&signal), key_width, shown(view(signal.name)),
              name_width, check::place_text(signal),
              legend_remarks(signal, message.dlc, signal.length > 0 && drawn.contains(&signal)));
  }
}

}  // namespace zelk::tool

#include "kcd/message_export.hpp"

#include <charconv>
#include <cmath>

#include "base/characters.hpp"
#include "base/multiplexing.hpp"
#include "base/signal_bits.hpp"
#include "common/records.hpp"
#include "kcd/format.hpp"
#include "kcd/text_output.hpp"

namespace zelk::modules::kcd {
namespace {

/// The shortest digits that give the same number again.
template <typename Number, typename... Format>
std::string digits(Number number, Format... format) {
  char text[32];
  const auto end = std::to_chars(std::begin(text), std::end(text), number, format...).ptr;
  return {text, end};
}

std::string hexadecimal(std::uint32_t number) {
  std::string text = digits(number, 16);
  for (char& digit : text) digit = to_upper(digit);
  return "0x" + text;
}

const char* value_type(const sigblk& signal) {
  if (signal.value_type == ZELK_VALUE_IEEE_SINGLE) return "single";
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE) return "double";
  return is_signed(signal) ? "signed" : "unsigned";
}

/// Whether the physical range bounds anything, and can be written.
bool has_range(const sigblk& signal) {
  return std::isfinite(signal.minimum) && std::isfinite(signal.maximum) &&
         (signal.minimum != 0 || signal.maximum != 0);
}

/// The reason for which a signal is left out, whatever its multiplexing; null when there is none.
const char* obstacle(const sigblk& signal) {
  if (signal.length == 0) return " without bits";
  if (end_byte(signal) > kMaxDataBytes) return " ending behind byte 64";
  const bool is_finite = std::isfinite(signal.factor) && std::isfinite(signal.offset);
  return is_finite ? nullptr : " with a factor or offset that is no finite number";
}

/// The multiplexor's values that select a signal, at most one more than `kMaxExpandedValues`.
std::set<std::uint32_t> selectors(const sigblk& signal) {
  std::set<std::uint32_t> values;
  for (const muxor_val_range& range : each(signal.mux_ranges)) {
    std::uint64_t value = range.low;
    for (; value <= range.high && values.size() <= kMaxExpandedValues; ++value) {
      values.insert(static_cast<std::uint32_t>(value));
    }
  }
  return values;
}

}  // namespace

const char* obstacle(const msgblk& message) {
  const bool is_extended = (message.id & ZELK_ID_EXTENDED) != 0;
  const std::uint32_t id = message.id & ~ZELK_ID_EXTENDED;
  if (id > (is_extended ? kMaxExtendedId : kMaxStandardId)) {
    return " with an identifier of more than 11 bits, or 29 in the extended format";
  }
  return message.dlc > kMaxDataBytes ? " of more than 64 data bytes" : nullptr;
}

pugi::xml_node MessageExport::append_to(pugi::xml_node bus) {
  choose_signals();
  choose_multiplexors();
  for (const sigblk* const signal : chosen_) place_signal(*signal);
  pugi::xml_node element = append_child(bus, "Message");
  append_id(element);
  append_text(element, "Notes", message_.comment);
  append_nodes(element, "Producer", producers());
  for (const sigblk* const signal : multiplexors_) append_multiplexor(element, *signal);
  for (const sigblk* const signal : plain_) {
    append_signal(append_child(element, "Signal"), *signal);
  }
  left_out_.add("signal group", "", each(message_.siggroups).size());
  return element;
}

void MessageExport::append_id(pugi::xml_node element) const {
  append_attribute(element, "id", hexadecimal(message_.id & ~ZELK_ID_EXTENDED));
  append_attribute(element, "name", view(message_.name));
  append_attribute(element, "length", std::to_string(message_.dlc));
  const bool is_extended = (message_.id & ZELK_ID_EXTENDED) != 0;
  if (is_extended) append_attribute(element, "format", "extended");
}

void MessageExport::choose_signals() {
  std::set<std::string_view> names;
  for (const sigblk& signal : each(message_.signals)) {
    const char* const reason = obstacle(signal);
    if (reason) {
      left_out_.add("signal", reason);
    } else if (!names.insert(view(signal.name)).second) {
      left_out_.add("signal", " with the name of another one of the message");
    } else {
      chosen_.push_back(&signal);
    }
  }
}

void MessageExport::choose_multiplexors() {
  const std::set<const sigblk*> chosen(chosen_.begin(), chosen_.end());
  for (const sigblk* const signal : chosen_) {
    if (is_multiplexor(*signal)) multiplexor_set_.insert(signal);
    if (chosen.contains(signal->mux_signal)) multiplexor_set_.insert(signal->mux_signal);
  }
}

/// A multiplexor that another one selects keeps its own signals, and is always there.
void MessageExport::place_signal(const sigblk& signal) {
  if (multiplexor_set_.contains(&signal)) {
    multiplexors_.push_back(&signal);
    if (is_multiplexed(signal)) left_out_.add("selection", " of a multiplexor by another one");
  } else if (!is_multiplexed(signal)) {
    plain_.push_back(&signal);
  } else if (const char* const reason = select(signal)) {
    left_out_.add("signal", reason);
    return;
  }
  count_losses(signal);
}

/// Puts a signal into the groups of its multiplexor.
///
/// @return the reason for which it is left out; null when there is none
const char* MessageExport::select(const sigblk& signal) {
  if (!multiplexor_set_.contains(signal.mux_signal)) {
    return " with a multiplexor that is not in the file";
  }
  const std::set<std::uint32_t> values = selectors(signal);
  if (values.empty()) return " selected by no value of the multiplexor";
  if (values.size() > kMaxExpandedValues) {
    return " selected by more than 256 values of the multiplexor";
  }
  for (const std::uint32_t value : values) groups_[signal.mux_signal][value].push_back(&signal);
  return nullptr;
}

void MessageExport::append_multiplexor(pugi::xml_node parent, const sigblk& signal) {
  pugi::xml_node element = append_child(parent, "Multiplex");
  append_signal(element, signal);
  for (const auto& [value, selected] : groups_[&signal]) {
    pugi::xml_node group = append_child(element, "MuxGroup");
    append_attribute(group, "count", std::to_string(value));
    for (const sigblk* const inner : selected) {
      append_signal(append_child(group, "Signal"), *inner);
    }
  }
}

void MessageExport::append_signal(pugi::xml_node element, const sigblk& signal) {
  append_geometry(element, signal);
  append_text(element, "Notes", signal.comment);
  std::vector<const symblk*> consumers;
  for (const rxblk& link : each(signal.receivers)) consumers.push_back(link.node);
  append_nodes(element, "Consumer", consumers);
  append_value(element, signal);
  append_labels(element, signal);
}

void MessageExport::append_geometry(pugi::xml_node element, const sigblk& signal) {
  append_attribute(element, "name", view(signal.name));
  append_attribute(element, "offset", std::to_string(signal.start_bit));
  if (signal.length != 1) append_attribute(element, "length", std::to_string(signal.length));
  if (is_motorola(signal)) append_attribute(element, "endianess", "big");
}

void MessageExport::append_value(pugi::xml_node element, const sigblk& signal) {
  pugi::xml_node value = append_child(element, "Value");
  if (is_signed(signal) || is_ieee(signal)) append_attribute(value, "type", value_type(signal));
  if (signal.factor != 1) append_attribute(value, "slope", digits(signal.factor));
  if (signal.offset != 0) append_attribute(value, "intercept", digits(signal.offset));
  if (!view(signal.unit).empty()) append_attribute(value, "unit", view(signal.unit));
  if (has_range(signal)) {
    append_attribute(value, "min", digits(signal.minimum));
    append_attribute(value, "max", digits(signal.maximum));
  }
  if (!value.first_attribute()) element.remove_child(value);
}

void MessageExport::append_labels(pugi::xml_node element, const sigblk& signal) {
  if (!signal.values) return;
  pugi::xml_node labels = append_child(element, "LabelSet");
  for (const val& description : each(signal.values)) {
    pugi::xml_node label = append_child(labels, "Label");
    append_attribute(label, "name", view(description.text));
    const std::int64_t number = description.value;
    append_attribute(label, "value", digits(is_signed(signal) ? number : number & UINT32_MAX));
  }
}

void MessageExport::append_nodes(pugi::xml_node parent, const char* tag,
                                 const std::vector<const symblk*>& nodes) {
  pugi::xml_node group;
  for (const symblk* const node : nodes) {
    const auto found = ids_.find(node);
    if (found == ids_.end()) {
      left_out_.add("reference", " to no node of the database");
      continue;
    }
    if (!group) group = append_child(parent, tag);
    append_attribute(append_child(group, "NodeRef"), "id", found->second);
  }
}

/// The transmitter first, then the others.
std::vector<const symblk*> MessageExport::producers() {
  std::vector<const symblk*> nodes;
  if (message_.transmitter) nodes.push_back(message_.transmitter);
  for (const rxblk& link : each(message_.tx_nodes)) {
    left_out_.add("attribute value", "", each(link.attrs).size());
    if (link.node != message_.transmitter) nodes.push_back(link.node);
  }
  return nodes;
}

/// Counts what is left out of a signal: once, in however many groups it stands.
void MessageExport::count_losses(const sigblk& signal) {
  if (!std::isfinite(signal.minimum) || !std::isfinite(signal.maximum)) {
    left_out_.add("range", " with a bound that is no finite number");
  }
  if (signal.sigtype) left_out_.add("signal type reference");
  if (is_ieee(signal) && !is_signed(signal)) left_out_.add("plus sign", " of IEEE signals");
  if (signal.value_type > ZELK_VALUE_IEEE_DOUBLE) left_out_.add("unknown value type");
  left_out_.add("attribute value", "", each(signal.attrs).size());
  for (const rxblk& link : each(signal.receivers)) {
    left_out_.add("attribute value", "", each(link.attrs).size());
  }
}

}  // namespace zelk::modules::kcd

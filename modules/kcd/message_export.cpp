#include "kcd/message_export.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>

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
  for (char& digit : text) {
    if (digit >= 'a') digit = static_cast<char>(digit - 'a' + 'A');
  }
  return "0x" + text;
}

bool is_ieee(const sigblk& signal) {
  return signal.value_type == ZELK_VALUE_IEEE_SINGLE || signal.value_type == ZELK_VALUE_IEEE_DOUBLE;
}

bool is_signed(const sigblk& signal) { return (signal.flags & ZELK_SIGNAL_SIGNED) != 0; }

const char* value_type(const sigblk& signal) {
  if (signal.value_type == ZELK_VALUE_IEEE_SINGLE) return "single";
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE) return "double";
  return is_signed(signal) ? "signed" : "unsigned";
}

}  // namespace

pugi::xml_node MessageExport::append_to(pugi::xml_node bus) {
  sort_signals();
  pugi::xml_node element = append_child(bus, "Message");
  append_id(element);
  append_text(element, "Notes", message_.comment);
  append_nodes(element, "Producer", producers());
  for (const sigblk* signal = message_.signals; signal; signal = signal->next) {
    if (multiplexors_.contains(signal)) append_multiplexor(element, *signal);
  }
  for (const sigblk* signal = message_.signals; signal; signal = signal->next) {
    const bool is_plain = !multiplexors_.contains(signal) && !signal->mux_signal;
    if (is_plain) append_signal(append_child(element, "Signal"), *signal);
    count_signal(*signal);
  }
  left_out_.add("signal group", "", count(message_.siggroups));
  return element;
}

void MessageExport::fail(const sigblk* signal, const std::string& what) const {
  const std::string place = "message " + std::string(view(message_.name));
  throw Fault(place + (signal ? ", signal " + std::string(view(signal->name)) : "") + ": " + what);
}

void MessageExport::append_id(pugi::xml_node element) const {
  const bool is_extended = (message_.id & ZELK_ID_EXTENDED) != 0;
  const std::uint32_t id = message_.id & ~ZELK_ID_EXTENDED;
  if (id > (is_extended ? kMaxExtendedId : kMaxStandardId)) {
    fail(nullptr, "identifier " + hexadecimal(id) + " has more than " +
                      (is_extended ? "29" : "11") + " bits");
  }
  if (message_.dlc > kMaxDataBytes) {
    fail(nullptr,
         std::to_string(message_.dlc) + " bytes are more than " + std::to_string(kMaxDataBytes));
  }
  append_attribute(element, "id", hexadecimal(id));
  append_attribute(element, "name", view(message_.name));
  append_attribute(element, "length", std::to_string(message_.dlc));
  if (is_extended) append_attribute(element, "format", "extended");
}

void MessageExport::sort_signals() {
  std::set<std::string_view> names;
  for (const sigblk* signal = message_.signals; signal; signal = signal->next) {
    if (!names.insert(view(signal->name)).second) {
      fail(signal, "another signal of the message has this name");
    }
    if ((signal->flags & ZELK_SIGNAL_MULTIPLEXOR) != 0) multiplexors_.insert(signal);
    if (signal->mux_signal) multiplexors_.insert(signal->mux_signal);
  }
  for (const sigblk* signal = message_.signals; signal; signal = signal->next) {
    check_selection(*signal);
    if (!signal->mux_signal) continue;
    for (const std::uint32_t value : selectors(*signal)) {
      groups_[signal->mux_signal][value].push_back(signal);
    }
  }
}

void MessageExport::check_selection(const sigblk& signal) const {
  if (!signal.mux_signal) {
    if (signal.mux_ranges) fail(&signal, "is multiplexed, but has no multiplexor");
    return;
  }
  if (multiplexors_.contains(&signal)) fail(&signal, "is a multiplexor that is multiplexed itself");
  if (!signal.mux_ranges) fail(&signal, "is multiplexed, but there for no value");
  const sigblk* inside = message_.signals;
  while (inside && inside != signal.mux_signal) inside = inside->next;
  if (!inside) fail(&signal, "has a multiplexor that is in another message");
}

std::set<std::uint32_t> MessageExport::selectors(const sigblk& signal) const {
  std::set<std::uint32_t> values;
  for (const muxor_val_range* range = signal.mux_ranges; range; range = range->next) {
    const std::string text = std::to_string(range->low) + "-" + std::to_string(range->high);
    if (range->low > range->high) fail(&signal, "is there for the empty range " + text);
    if (range->high - range->low < kMaxExpandedValues) {
      for (std::uint64_t value = range->low; value <= range->high; ++value) {
        values.insert(static_cast<std::uint32_t>(value));
      }
      if (values.size() <= kMaxExpandedValues) continue;
    }
    fail(&signal, "is there for more than " + std::to_string(kMaxExpandedValues) +
                      " values of its multiplexor, counted up to " + text);
  }
  return values;
}

void MessageExport::append_multiplexor(pugi::xml_node parent, const sigblk& signal) {
  pugi::xml_node element = append_child(parent, "Multiplex");
  append_signal(element, signal);
  for (const auto& [value, selected] : groups_[&signal]) {
    pugi::xml_node group = append_child(element, "MuxGroup");
    append_attribute(group, "count", std::to_string(value));
    for (const sigblk* const each : selected) append_signal(append_child(group, "Signal"), *each);
  }
}

void MessageExport::append_signal(pugi::xml_node element, const sigblk& signal) {
  append_geometry(element, signal);
  append_text(element, "Notes", signal.comment);
  std::vector<const symblk*> consumers;
  for (const rxblk* link = signal.receivers; link; link = link->next) {
    consumers.push_back(link->node);
  }
  append_nodes(element, "Consumer", consumers);
  append_value(element, signal);
  append_labels(element, signal);
}

void MessageExport::append_geometry(pugi::xml_node element, const sigblk& signal) const {
  if (signal.length == 0) fail(&signal, "has no bits");
  if (end_byte(signal.start_bit, signal.length, signal.flags) > kMaxDataBytes) {
    fail(&signal, "ends behind byte " + std::to_string(kMaxDataBytes));
  }
  append_attribute(element, "name", view(signal.name));
  append_attribute(element, "offset", std::to_string(signal.start_bit));
  if (signal.length != 1) append_attribute(element, "length", std::to_string(signal.length));
  if ((signal.flags & ZELK_SIGNAL_MOTOROLA) != 0) append_attribute(element, "endianess", "big");
}

void MessageExport::append_value(pugi::xml_node element, const sigblk& signal) {
  pugi::xml_node value = append_child(element, "Value");
  if (is_signed(signal) || is_ieee(signal)) append_attribute(value, "type", value_type(signal));
  if (signal.factor != 1) append_number(value, "slope", signal.factor, signal);
  if (signal.offset != 0) append_number(value, "intercept", signal.offset, signal);
  if (!view(signal.unit).empty()) append_attribute(value, "unit", view(signal.unit));
  if (signal.minimum != 0 || signal.maximum != 0) {
    append_number(value, "min", signal.minimum, signal);
    append_number(value, "max", signal.maximum, signal);
  }
  if (!value.first_attribute()) element.remove_child(value);
}

void MessageExport::append_number(pugi::xml_node value, const char* attribute, double number,
                                  const sigblk& signal) const {
  if (!std::isfinite(number)) fail(&signal, std::string(attribute) + " is no finite number");
  append_attribute(value, attribute, digits(number));
}

void MessageExport::append_labels(pugi::xml_node element, const sigblk& signal) const {
  if (!signal.values) return;
  pugi::xml_node labels = append_child(element, "LabelSet");
  for (const val* description = signal.values; description; description = description->next) {
    pugi::xml_node label = append_child(labels, "Label");
    append_attribute(label, "name", view(description->text));
    append_attribute(label, "value",
                     is_signed(signal)
                         ? std::to_string(description->value)
                         : std::to_string(static_cast<std::uint32_t>(description->value)));
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
  for (const rxblk* link = message_.tx_nodes; link; link = link->next) {
    left_out_.add("attribute value", "", count(link->attrs));
    if (link->node != message_.transmitter) nodes.push_back(link->node);
  }
  return nodes;
}

/// What is left out of a signal, whatever number of groups it stands in.
void MessageExport::count_signal(const sigblk& signal) {
  if (signal.sigtype) left_out_.add("signal type reference");
  if (is_ieee(signal) && !is_signed(signal)) left_out_.add("plus sign", " of IEEE signals");
  if (signal.value_type > ZELK_VALUE_IEEE_DOUBLE) left_out_.add("unknown value type");
  left_out_.add("attribute value", "", count(signal.attrs));
  for (const rxblk* link = signal.receivers; link; link = link->next) {
    left_out_.add("attribute value", "", count(link->attrs));
  }
}

}  // namespace zelk::modules::kcd

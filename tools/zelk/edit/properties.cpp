// The properties that "--set" gives to signals, messages and the network.

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "base/characters.hpp"
#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "base/signal_bits.hpp"
#include "edit/database_editor.hpp"
#include "edit/links.hpp"
#include "edit/parse_words.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"
#include "words/record_words.hpp"
#include "zelk/model.h"

namespace zelk::tool {

namespace {

constexpr std::uint32_t kLargestCount = 32767;

std::string lowered(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), to_lower);
  return result;
}

/// Which of two words a value is.
bool is_second(const std::string& value, std::string_view first, std::string_view second) {
  const std::string word = lowered(value);
  if (word != first && word != second)
    throw RequestError(fmt::format("{} is neither {} nor {}", in_quotes(value), first, second));
  return word == second;
}

/// The nodes of a list of names; none of "none" and an empty text.
std::vector<symblk*> nodes_of(const EditTargets& targets, const std::string& names) {
  std::vector<symblk*> nodes;
  if (names == "none") return nodes;
  for (const std::string& name : list_of(names)) {
    symblk* const node = &targets.node(name);
    if (!std::ranges::count(nodes, node)) nodes.push_back(node);
  }
  return nodes;
}

// --- Signals ---

using Setter = void (*)(const EditTargets&, sigblk&, const std::string&, Encoding);

void set_factor(const EditTargets&, sigblk& signal, const std::string& value, Encoding) {
  const double factor = real_of(value);
  if (factor == 0) throw RequestError("a factor of 0 leaves nothing of the raw value");
  signal.factor = factor;
}

void set_unit(const EditTargets&, sigblk& signal, const std::string& value, Encoding encoding) {
  const std::string unit = stored(value, encoding);
  if (unit.size() > ZELK_INLINE_NAME_MAX) {
    throw RequestError(
        fmt::format("{} is longer than the 32 characters of a unit", in_quotes(value)));
  }
  std::ranges::fill(signal.unit, '\0');
  std::ranges::copy(unit, signal.unit);
}

void set_receivers(const EditTargets& targets, sigblk& signal, const std::string& value, Encoding) {
  set_links(signal.receivers, nodes_of(targets, value));
  signal.receiver_count = count_16(signal.receivers);
}

struct Ranges {
  sigblk* multiplexor;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> values;
};

/// "3", "3-5", with commas between several.
void parse_ranges(std::string_view text, Ranges& ranges) {
  constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();
  for (const std::string& part : list_of(text)) {
    const std::size_t dash = part.find('-');
    const std::uint32_t low = count_of(part.substr(0, dash), 0, kMost);
    const std::uint32_t high =
        dash == part.npos ? low : count_of(part.substr(dash + 1), low, kMost);
    ranges.values.emplace_back(low, high);
  }
  if (ranges.values.empty()) throw RequestError("no value of the multiplexor is given");
}

sigblk& only_multiplexor(const sigblk& signal) {
  sigblk* found = nullptr;
  for (sigblk& other : each(signal.message->signals)) {
    if (!is_multiplexor(other) || &other == &signal) continue;
    if (found)
      throw RequestError("the message has several multiplexors: MULTIPLEXOR=VALUES names one");
    found = &other;
  }
  if (found) return *found;
  throw RequestError("the message has no multiplexor: set multiplexing M makes a signal one");
}

/// "m3", "3" or "3-5,7" of the only multiplexor, "Page=3" of one by its name.
Ranges ranges_of(const EditTargets& targets, const sigblk& signal, const std::string& value) {
  Ranges ranges{};
  const std::size_t equals = value.find('=');
  if (equals != value.npos) {
    ranges.multiplexor = &targets.signal_of(*signal.message, value.substr(0, equals));
    parse_ranges(std::string_view(value).substr(equals + 1), ranges);
  } else {
    ranges.multiplexor = &only_multiplexor(signal);
    parse_ranges(std::string_view(value).substr(lowered(value).starts_with('m') ? 1 : 0), ranges);
  }
  for (const sigblk* above = ranges.multiplexor; above; above = above->mux_signal)
    if (above == &signal) throw RequestError("the signal would select itself");
  return ranges;
}

bool selects_signals(const sigblk& signal) {
  const auto is_selected = [&signal](const sigblk& other) { return other.mux_signal == &signal; };
  return find_first(signal.message->signals, is_selected) != nullptr;
}

/// Makes the signal one that is always there. The multiplexor stays one, for other signals.
void unselect(sigblk& signal) {
  sigblk* const multiplexor = signal.mux_signal;
  const bool was_multiplexor = multiplexor && is_multiplexor(*multiplexor);
  zelk_remove_multiplexor(&signal);
  if (multiplexor) set_flag(*multiplexor, ZELK_SIGNAL_MULTIPLEXOR, was_multiplexor);
}

void set_multiplexing(const EditTargets& targets, sigblk& signal, const std::string& value,
                      Encoding) {
  if (value == "M") return set_flag(signal, ZELK_SIGNAL_MULTIPLEXOR);
  if (value == "none" || value.empty()) {
    if (selects_signals(signal)) throw RequestError("the signal selects others");
    set_flag(signal, ZELK_SIGNAL_MULTIPLEXOR, false);
    return unselect(signal);
  }
  const Ranges ranges = ranges_of(targets, signal, value);
  unselect(signal);
  for (auto range = ranges.values.rbegin(); range != ranges.values.rend(); ++range)
    zelk_add_multiplexor_value_range(&signal, ranges.multiplexor, range->first, range->second);
}

struct SignalProperty {
  std::string_view name;
  Setter set;
};

constexpr SignalProperty kSignalProperties[] = {
    {"factor", set_factor},
    {"offset", [](const EditTargets&, sigblk& signal, const std::string& value,
                  Encoding) { signal.offset = real_of(value); }},
    {"minimum", [](const EditTargets&, sigblk& signal, const std::string& value,
                   Encoding) { signal.minimum = real_of(value); }},
    {"maximum", [](const EditTargets&, sigblk& signal, const std::string& value,
                   Encoding) { signal.maximum = real_of(value); }},
    {"unit", set_unit},
    {"start",
     [](const EditTargets&, sigblk& signal, const std::string& value, Encoding) {
       signal.start_bit = static_cast<std::uint16_t>(count_of(value, 0, kLargestCount));
     }},
    {"length",
     [](const EditTargets&, sigblk& signal, const std::string& value, Encoding) {
       signal.length = static_cast<std::uint16_t>(count_of(value, 1, kLargestCount));
     }},
    {"order",
     [](const EditTargets&, sigblk& signal, const std::string& value, Encoding) {
       set_flag(signal, ZELK_SIGNAL_MOTOROLA, is_second(value, "intel", "motorola"));
     }},
    {"sign",
     [](const EditTargets&, sigblk& signal, const std::string& value, Encoding) {
       set_flag(signal, ZELK_SIGNAL_SIGNED, is_second(value, "unsigned", "signed"));
     }},
    {"receivers", set_receivers},
    {"multiplexing", set_multiplexing},
};

std::string names_of_signal_properties() {
  std::string names;
  for (const SignalProperty& property : kSignalProperties)
    names += (names.empty() ? "" : ", ") + std::string(property.name);
  return names;
}

/// Attribute values of relations, which hang on the receivers of a signal or the senders of a
/// message.
std::size_t count_relation_values(const EditTarget& target) {
  const rxblk* links = nullptr;
  if (sigblk* const* const signal = std::get_if<sigblk*>(&target)) links = (*signal)->receivers;
  if (msgblk* const* const message = std::get_if<msgblk*>(&target)) links = (*message)->tx_nodes;
  std::size_t count = 0;
  for (const rxblk& link : each(links)) count += count_16(link.attrs);
  return count;
}

}  // namespace

void DatabaseEditor::set_signal(sigblk& signal, const std::string& property,
                                const std::string& value) {
  const auto* const found = std::ranges::find(kSignalProperties, property, &SignalProperty::name);
  if (found == std::end(kSignalProperties)) {
    throw RequestError(fmt::format("a signal has no property {}, but {}", in_quotes(property),
                                   names_of_signal_properties()));
  }
  found->set(targets_, signal, value, encoding_);
}

void DatabaseEditor::set_message(msgblk& message, const std::string& property,
                                 const std::string& value) {
  if (property == "id") {
    const std::uint32_t id = message_id_of(value);
    check_id_free(id, &message);
    message.id = id;
  } else if (property == "length") {
    message.dlc = static_cast<std::uint16_t>(count_of(value, 0, kLargestCount));
  } else if (property == "senders" || property == "sender") {
    const std::vector<symblk*> nodes = nodes_of(targets_, value);
    set_links(message.tx_nodes, nodes);
    message.transmitter = nodes.empty() ? nullptr : nodes.front();
  } else {
    throw RequestError(
        fmt::format("a message has no property {}, but id, length, senders", in_quotes(property)));
  }
}

std::string DatabaseEditor::set_property(Words words) {
  const EditTarget target = targets_.any_object(words[0]);
  const std::string shown = shown_target(target);
  const bool is_network = std::holds_alternative<std::monostate>(target);
  const std::size_t relation_values = count_relation_values(target);
  if (words[1] == "name" && !is_network)
    throw RequestError("names are given by --rename-signal and its like");
  if (words[1] == "comment") throw RequestError("comments are given by --set-comment");
  if (sigblk* const* const signal = std::get_if<sigblk*>(&target)) {
    set_signal(**signal, words[1], words[2]);
  } else if (msgblk* const* const message = std::get_if<msgblk*>(&target)) {
    set_message(**message, words[1], words[2]);
  } else if (is_network && words[1] == "version") {
    manager_.SetUserData(name_, stored(words[2], encoding_).c_str());
  } else {
    throw RequestError(fmt::format(
        "{} has no property {}: signals, messages and the version of the network can be set", shown,
        in_quotes(words[1])));
  }
  const std::size_t gone = relation_values - count_relation_values(target);
  return fmt::format("{}: {} = {}{}", shown, words[1], in_quotes(words[2]),
                     gone == 0 ? "" : ", without " + counted(gone, "relation value"));
}

}  // namespace zelk::tool

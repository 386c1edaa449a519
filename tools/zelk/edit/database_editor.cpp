#include "edit/database_editor.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <vector>

#include "edit/links.hpp"
#include "edit/new_name.hpp"
#include "edit/parse_attribute.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "term/text.hpp"
#include "words/attribute_words.hpp"

namespace zelk::tool {

namespace {

/// Calls `on_network()` for the network itself, or `on_record(record)`.
template <typename OnNetwork, typename OnRecord>
auto visit_target(const EditTarget& target, const OnNetwork& on_network,
                  const OnRecord& on_record) {
  return std::visit(
      [&](auto record) {
        if constexpr (std::is_same_v<decltype(record), std::monostate>) {
          return on_network();
        } else {
          return on_record(*record);
        }
      },
      target);
}

bool leads_to(const rxblk* links, const symblk& node) {
  return std::ranges::any_of(each(links),
                             [&node](const rxblk& link) { return link.node == &node; });
}

/// ", receiver of 2 signals"; empty for none.
std::string counted_use(std::string_view role, std::size_t count, std::string_view noun) {
  return count == 0 ? "" : fmt::format(", {} {}", role, counted(count, noun));
}

/// What a node is taken away from.
std::string uses_of(const ZelkDatabase& database, const symblk& node) {
  std::size_t sent = 0;
  std::size_t received = 0;
  std::size_t accessed = 0;
  for (const msgblk& message : each(database.messages)) {
    if (message.transmitter == &node || leads_to(message.tx_nodes, node)) ++sent;
    for (const sigblk& signal : each(message.signals))
      if (leads_to(signal.receivers, node)) ++received;
  }
  for (const env_var_blk& variable : each(database.env_vars))
    if (leads_to(variable.access_nodes, node)) ++accessed;
  return counted_use("transmitter of", sent, "message") +
         counted_use("receiver of", received, "signal") +
         counted_use("access node of", accessed, "environment variable");
}

/// What a signal is taken away from.
std::string uses_of(const sigblk& signal) {
  const auto is_member = [&signal](const siglistblk& member) { return member.signal == &signal; };
  const auto groups =
      std::ranges::count_if(each(signal.message->siggroups), [&](const siggroupblk& group) {
        return std::ranges::any_of(each(group.signals), is_member);
      });
  const auto selected =
      std::ranges::count_if(each(signal.message->signals),
                            [&signal](const sigblk& other) { return other.mux_signal == &signal; });
  return counted_use("also from", static_cast<std::size_t>(groups), "signal group") +
         counted_use("multiplexor of", static_cast<std::size_t>(selected), "signal");
}

}  // namespace

DatabaseEditor::DatabaseEditor(ZelkWriteManager& manager, const OpenedDatabase& opened,
                               std::size_t listed_nodes)
    : manager_(manager),
      name_(opened.name),
      database_(*opened.database),
      encoding_(opened.encoding),
      targets_(database_) {
  for (const msgblk& message : each(database_.messages)) {
    for (const sigblk& signal : each(message.signals))
      if (!is_in_frame(signal)) outside_.insert(&signal);
  }
  for (const symblk& node : each(database_.nodes)) {
    if (listed_nodes == 0) unlisted_.insert(&node);
    listed_nodes -= listed_nodes == 0 ? 0 : 1;
  }
}

template <typename Record>
std::string DatabaseEditor::rename(const Record* list, Record& record, const std::string& name) {
  check_name(name);
  check_free(list, &record, name);
  const std::string before = shown_target(&record);
  manager_.SetName(record, name.c_str());
  return fmt::format("{}: renamed to {}", before, name);
}

std::string DatabaseEditor::rename_message(Words words) {
  return rename(database_.messages, targets_.message(words[0]), words[1]);
}

std::string DatabaseEditor::rename_signal(Words words) {
  sigblk& signal = targets_.signal(words[0]);
  return rename(signal.message->signals, signal, words[1]);
}

std::string DatabaseEditor::rename_node(Words words) {
  return rename(database_.nodes, targets_.node(words[0]), words[1]);
}

std::string DatabaseEditor::rename_variable(Words words) {
  return rename(database_.env_vars, targets_.variable(words[0]), words[1]);
}

std::string DatabaseEditor::set_comment(Words words) {
  const EditTarget target = targets_.object(words[0]);
  const std::string bytes = stored(words[1], encoding_);
  const char* const text = bytes.empty() ? nullptr : bytes.c_str();
  visit_target(
      target, [&] { manager_.SetDatabaseComment(name_, text); },
      [&](auto& record) { manager_.SetComment(record, text); });
  return fmt::format("{}: comment {}", shown_target(target),
                     text ? in_quotes(words[1]) : "removed");
}

/// The one by which the manager stores a value. One for objects of another kind counts only where
/// there is a value of it.
const attr_def& DatabaseEditor::definition(const EditTarget& target,
                                           const std::string& name) const {
  const zelk_obj_t type = attribute_type(target);
  const std::string key = stored(name, encoding_);
  bool has_value = false;
  const attr_def* const found = visit_target(
      target,
      [&] {
        has_value = manager_.IsAttrValueDefined(key.c_str(), name_);
        return manager_.GetNetworkAttrDefinition(name_, key.c_str());
      },
      [&](auto& record) {
        has_value = manager_.IsAttrValueDefined(&record, key.c_str());
        return manager_.GetAttrDefinition(&record, key.c_str(), name_);
      });
  if (found && (has_value || found->object_type == type)) return *found;
  NameSuggestion names(name);
  find_definition({database_, encoding_}, type, name, &names);
  throw RequestError(fmt::format("{} can have no attribute {}: none is defined{}",
                                 shown_target(target), in_quotes(name), names.text()));
}

std::string DatabaseEditor::set_attribute(Words words) {
  const EditTarget target = targets_.object(words[0]);
  attr value{};
  value.def = changeable(&definition(target, words[1]));
  value.value = parse_attribute_value(*value.def, words[2], encoding_);
  attr*& values = *visit_target(
      target, [&] { return &changeable(&database_)->attr_values; },
      [](auto& record) { return &record.attrs; });
  const attr* const first = values;
  visit_target(
      target, [&] { manager_.SetAttrValue(name_, value.def->name, value.value); },
      [&](auto& record) { manager_.SetAttrValue(record, value.def->name, value.value, name_); });
  if (values != first) move_to_end(values);  // the place of a new one in a file
  return fmt::format("{}: attribute {} = {}", shown_target(target), in_quotes(words[1]),
                     shown_value(value, encoding_));
}

std::string DatabaseEditor::reset_attribute(Words words) {
  const EditTarget target = targets_.object(words[0]);
  const attr_def& attribute = definition(target, words[1]);
  visit_target(
      target, [&] { manager_.ResetAttrValue(name_, attribute.name); },
      [&](auto& record) { manager_.ResetAttrValue(record, attribute.name); });
  return fmt::format("{}: attribute {} = {}, the default", shown_target(target),
                     in_quotes(words[1]), shown_default(attribute, encoding_));
}

std::string DatabaseEditor::delete_message(Words words) {
  msgblk& message = targets_.message(words[0]);
  std::string told = fmt::format("{}: deleted, with {}", shown_target(&message),
                                 counted(each(message.signals).size(), "signal"));
  manager_.DeleteMessage(message, name_);
  return told;
}

std::string DatabaseEditor::delete_signal(Words words) {
  sigblk& signal = targets_.signal(words[0]);
  std::string told = fmt::format("{}: deleted{}", shown_target(&signal), uses_of(signal));
  manager_.DeleteSignal(signal, name_);
  return told;
}

std::string DatabaseEditor::delete_node(Words words) {
  symblk& node = targets_.node(words[0]);
  std::string told = fmt::format("{}: deleted{}", shown_target(&node), uses_of(database_, node));
  unlisted_.erase(&node);
  manager_.DeleteNode(node, name_);
  return told;
}

}  // namespace zelk::tool

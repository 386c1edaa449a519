#include "report/element_ids.hpp"

#include <fmt/format.h>

#include <utility>

#include "base/list.hpp"

namespace zelk::tool {

namespace {

/// Whether a character may stand in a link as it is. Names of the text format have no others, but
/// those that come from elsewhere may.
bool is_plain(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

}  // namespace

ElementIds::ElementIds(EncodedDatabase database, std::size_t most_messages) {
  const ZelkDatabase& records = database.records;
  std::size_t count = 0;
  for (const msgblk& message : each(records.messages))
    if (count++ < most_messages) add_message(message);
  for (const symblk& node : each(records.nodes)) add(&node, "node-" + text(view(node.name)));
  for (const valtable& table : each(records.value_tables))
    add(&table, "table-" + text(view(table.name)));
  for (const env_var_blk& variable : each(records.env_vars))
    add(&variable, "variable-" + text(view(variable.name)));
  for (const sigtype& type : each(records.signal_types))
    add(&type, "type-" + text(view(type.name)));
}

void ElementIds::add_message(const msgblk& message) {
  const std::string element = fmt::format("message-{}", message.id);
  add(&message, element);
  for (const sigblk& signal : each(message.signals))
    add(&signal, fmt::format("{}.{}", message.id, text(view(signal.name))));
}

void ElementIds::add(const void* record, std::string element) {
  const unsigned uses = ++uses_[element];
  if (uses > 1) element += fmt::format("~{}", uses);
  elements_.emplace(record, std::move(element));
}

std::string ElementIds::text(std::string_view name) {
  constexpr std::size_t kMostBytes = 200;
  std::string result;
  for (const char c : name.substr(0, kMostBytes)) {
    result +=
        is_plain(c) ? std::string(1, c) : fmt::format("-{:02X}", static_cast<unsigned char>(c));
  }
  return result;
}

}  // namespace zelk::tool

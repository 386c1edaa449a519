#include "report/message_data.hpp"

#include <fmt/format.h>

#include "base/list.hpp"
#include "check/objects/record_words.hpp"
#include "report/layout_data.hpp"
#include "report/record_data.hpp"
#include "report/signal_data.hpp"
#include "term/text.hpp"

namespace zelk::tool {

using check::number_text;
using nlohmann::json;

namespace {

/// "A, B".
template <typename Nodes, typename NodeOf>
std::string names_of(const ReportContext& context, const Nodes& nodes, const NodeOf& node_of) {
  std::string names;
  for (const auto& each : nodes) {
    if (!names.empty()) names += ", ";
    names += context.text(view(node_of(each)->name));
  }
  return names;
}

/// In milliseconds; empty when the message is not sent in cycles.
std::string cycle_text(const ReportContext& context, const msgblk& message) {
  const double cycle = context.cycle_time.number(message.attrs).value_or(0);
  return cycle > 0 ? number_text(cycle) : "";
}

std::string group_text(const ReportContext& context, const msgblk& message) {
  const auto number = context.groups.number(message);
  return number ? check::hex_text(*number, 4) : "";
}

/// The relations of a message to its senders that have attributes.
json sender_attributes(const ReportContext& context, const msgblk& message) {
  json list = json::array();
  for (const rxblk& link : each(message.tx_nodes)) {
    if (!link.node || !link.attrs) continue;
    list.push_back({{"name", context.text(view(link.node->name))},
                    {"attributes", attributes_data(link.attrs, context.database.encoding)}});
  }
  return list;
}

json senders_data(const ReportContext& context, const msgblk& message) {
  json list = json::array();
  for (const symblk* node : Traffic::senders(message))
    list.push_back(context.link(node, view(node->name)));
  return list;
}

json receivers_data(const ReportContext& context, const msgblk& message) {
  json list = json::array();
  for (const Receiver& receiver : Traffic::receivers(message))
    list.push_back(context.link(receiver.node, view(receiver.node->name)));
  return list;
}

json groups_data(const ReportContext& context, const msgblk& message) {
  json list = json::array();
  for (const siggroupblk& group : each(message.siggroups)) {
    json members = json::array();
    for (const siglistblk& member : each(group.signals))
      members.push_back(context.link(member.signal, view(member.signal->name)));
    list.push_back({{"name", context.text(view(group.name))},
                    {"repetitions", group.repetitions},
                    {"members", std::move(members)},
                    {"comment", text_data(view(group.comment), context.database.encoding)}});
  }
  return list;
}

}  // namespace

json message_row(const ReportContext& context, const msgblk& message) {
  constexpr std::size_t kMostBytesOfComment = 100;
  json row = context.link(&message, view(message.name));
  row["id"] = check::padded_id(message.id);
  row["format"] = check::id_format(message.id);
  row["group"] = group_text(context, message);
  row["length"] = message.dlc;
  row["signals"] = each(message.signals).size();
  row["cycle"] = cycle_text(context, message);
  row["senders"] =
      names_of(context, Traffic::senders(message), [](const symblk* node) { return node; });
  row["receivers"] = names_of(context, Traffic::receivers(message),
                              [](const Receiver& receiver) { return receiver.node; });
  row["comment"] = brief(view(message.comment), context.database.encoding, kMostBytesOfComment);
  return row;
}

json message_section(const ReportContext& context, const msgblk& message) {
  const Encoding encoding = context.database.encoding;
  json signals = signals_data(context, message);
  json data = context.link(&message, view(message.name));
  data["id"] = check::padded_id(message.id);
  data["id_words"] = check::shown_id(message.id);
  data["length"] = counted(message.dlc, "byte");
  data["j1939"] = context.groups.description(message).value_or("");
  data["cycle"] = cycle_text(context, message);
  data["category"] = message.category ? context.text(view(message.category->name)) : "";
  data["senders"] = senders_data(context, message);
  data["receivers"] = receivers_data(context, message);
  data["comment"] = text_data(view(message.comment), encoding);
  data["attributes"] = attributes_data(message.attrs, encoding);
  data["sender_attributes"] = sender_attributes(context, message);
  data["groups"] = groups_data(context, message);
  data["findings"] = context.findings_of(&message);
  data["layout"] = layout_data(message, encoding, {.element = context.ids.of(&message)});
  data["has_signals"] = !signals.empty();
  data["usual_coding"] = take_usual_coding(signals);
  data["signals"] = std::move(signals);
  return data;
}

}  // namespace zelk::tool

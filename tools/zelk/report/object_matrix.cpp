#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/list.hpp"
#include "report/object_data.hpp"

namespace zelk::tool {

using nlohmann::json;

namespace {

constexpr std::size_t kMostColumns = 80;
constexpr std::size_t kMostRows = 1000;
constexpr std::size_t kMostListed = 100;  // receivers of a sender

using Nodes = std::vector<const symblk*>;
using Places = std::unordered_map<const symblk*, std::size_t>;

Nodes senders_of(const ReportContext& context) {
  Nodes nodes;
  for (const symblk& node : each(context.database.records.nodes))
    if (!context.traffic.of(node).messages_to.empty()) nodes.push_back(&node);
  return nodes;
}

Nodes receivers_of(const ReportContext& context, const Nodes& senders) {
  std::unordered_set<const symblk*> receiving;
  for (const symblk* sender : senders) {
    for (const auto& [node, count] : context.traffic.of(*sender).messages_to)
      receiving.insert(node);
  }
  Nodes nodes;
  for (const symblk& node : each(context.database.records.nodes))
    if (receiving.contains(&node)) nodes.push_back(&node);
  return nodes;
}

json row_data(const ReportContext& context, const symblk& sender, const Nodes& receivers) {
  const auto& counts = context.traffic.of(sender).messages_to;
  json cells = json::array();
  for (const symblk* receiver : receivers) {
    const auto found = counts.find(receiver);
    cells.push_back({{"count", found == counts.end() ? json("") : json(found->second)}});
  }
  json row = context.link(&sender, view(sender.name));
  row["cells"] = std::move(cells);
  return row;
}

/// In the order of the columns.
json list_data(const ReportContext& context, const symblk& sender, const Places& places) {
  const auto& counts = context.traffic.of(sender).messages_to;
  Nodes receivers;
  for (const auto& [node, count] : counts) receivers.push_back(node);
  std::ranges::sort(receivers, {}, [&places](const symblk* node) { return places.at(node); });
  json to = json::array();
  for (const symblk* node : receivers) {
    if (to.size() == kMostListed) break;
    json entry = context.link(node, view(node->name));
    entry["count"] = counts.at(node);
    to.push_back(std::move(entry));
  }
  json list = context.link(&sender, view(sender.name));
  const std::size_t rest = receivers.size() - to.size();
  list["more"] = rest == 0 ? json(nullptr) : json(rest);
  list["to"] = std::move(to);
  return list;
}

}  // namespace

json matrix_data(const ReportContext& context) {
  const Nodes senders = senders_of(context);
  if (senders.empty()) return nullptr;
  const Nodes receivers = receivers_of(context, senders);
  json data = {{"is_table", false},
               {"columns", json::array()},
               {"rows", json::array()},
               {"lists", json::array()}};
  if (receivers.size() > kMostColumns || senders.size() > kMostRows) {
    Places places;
    for (const symblk* receiver : receivers) places.emplace(receiver, places.size());
    for (const symblk* sender : senders)
      data["lists"].push_back(list_data(context, *sender, places));
    return data;
  }
  data["is_table"] = true;
  for (const symblk* receiver : receivers)
    data["columns"].push_back(context.link(receiver, view(receiver->name)));
  for (const symblk* sender : senders)
    data["rows"].push_back(row_data(context, *sender, receivers));
  return data;
}

}  // namespace zelk::tool

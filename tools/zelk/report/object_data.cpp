#include "report/object_data.hpp"

#include <fmt/format.h>

#include <unordered_map>
#include <utility>
#include <vector>

#include "base/list.hpp"
#include "check/objects/record_words.hpp"
#include "report/record_data.hpp"
#include "words/attribute_words.hpp"

namespace zelk::tool {

using check::number_text;
using nlohmann::json;

namespace {

template <typename Record>
json category_of(const ReportContext& context, const Record& record) {
  return record.category ? context.text(view(record.category->name)) : "";
}

template <typename Record>
std::string range_of(const Record& record) {
  return number_text(record.minimum) + " to " + number_text(record.maximum);
}

using Accesses = std::unordered_map<const symblk*, std::vector<const env_var_blk*>>;

Accesses accesses_of(const ZelkDatabase& database) {
  Accesses accesses;
  for (const env_var_blk& variable : each(database.env_vars))
    for (const rxblk& link : each(variable.access_nodes)) accesses[link.node].push_back(&variable);
  return accesses;
}

/// {"list": [{"element", "name"}], "count", "more"}; null for none.
template <typename Record>
json links_data(const ReportContext& context, const std::vector<const Record*>& records) {
  constexpr std::size_t kMostLinks = 2000;
  if (records.empty()) return nullptr;
  json list = json::array();
  for (const Record* record : records) {
    if (list.size() == kMostLinks) break;
    list.push_back(context.link(record, view(record->name)));
  }
  const std::size_t rest = records.size() - list.size();
  return {{"list", std::move(list)},
          {"count", records.size()},
          {"more", rest == 0 ? json(nullptr) : json(rest)}};
}

json node_data(const ReportContext& context, const symblk& node, const Accesses& accesses) {
  const NodeTraffic& traffic = context.traffic.of(node);
  const auto found = accesses.find(&node);
  json data = context.link(&node, view(node.name));
  data["sends"] = links_data(context, traffic.sends);
  data["receives"] = links_data(context, traffic.receives);
  data["variables"] = found == accesses.end() ? json(nullptr) : links_data(context, found->second);
  data["category"] = category_of(context, node);
  data["comment"] = text_data(view(node.comment), context.database.encoding);
  data["attributes"] = attributes_data(node.attrs, context.database.encoding);
  data["findings"] = context.findings_of(&node);
  return data;
}

json variable_data(const ReportContext& context, const env_var_blk& variable) {
  json nodes = json::array();
  for (const rxblk& link : each(variable.access_nodes))
    if (link.node) nodes.push_back(context.link(link.node, view(link.node->name)));
  json data = context.link(&variable, view(variable.name));
  data["type"] = variable.type == ZELK_ENVVAR_DATA
                     ? fmt::format("data, {} bytes", variable.data_size)
                     : check::env_var_type(variable.type);
  data["initial"] = number_text(variable.initial);
  data["range"] = range_of(variable);
  data["unit"] = context.text(view(variable.unit));
  data["access"] = check::hex_text(variable.access_type, 1);
  data["id"] = variable.id;
  data["nodes"] = std::move(nodes);
  data["category"] = category_of(context, variable);
  data["values"] = values_data(variable.values, context.database.encoding);
  data["comment"] = text_data(view(variable.comment), context.database.encoding);
  data["attributes"] = attributes_data(variable.attrs, context.database.encoding);
  data["findings"] = context.findings_of(&variable);
  return data;
}

json type_data(const ReportContext& context, const sigtype& type) {
  json data = context.link(&type, view(type.name));
  data["length"] = type.length;
  data["coding"] = fmt::format("{}, {}", check::byte_order(type.flags),
                               check::number_format(type.flags, type.value_type));
  data["factor"] = number_text(type.factor);
  data["offset"] = number_text(type.offset);
  data["range"] = range_of(type);
  data["unit"] = context.text(view(type.unit));
  data["initial"] = number_text(type.default_value);
  data["table"] =
      type.valtable ? context.link(type.valtable, view(type.valtable->name)) : json(nullptr);
  data["comment"] = text_data(view(type.comment), context.database.encoding);
  data["attributes"] = attributes_data(type.attrs, context.database.encoding);
  return data;
}

}  // namespace

json nodes_data(const ReportContext& context) {
  const Accesses accesses = accesses_of(context.database.records);
  json list = json::array();
  for (const symblk& node : each(context.database.records.nodes))
    list.push_back(node_data(context, node, accesses));
  return list;
}

json variables_data(const ReportContext& context) {
  json list = json::array();
  for (const env_var_blk& variable : each(context.database.records.env_vars))
    list.push_back(variable_data(context, variable));
  return list;
}

json tables_data(const ReportContext& context) {
  json list = json::array();
  for (const valtable& table : each(context.database.records.value_tables)) {
    json data = context.link(&table, view(table.name));
    data["values"] = values_data(table.values, context.database.encoding);
    list.push_back(std::move(data));
  }
  return list;
}

json types_data(const ReportContext& context) {
  json list = json::array();
  for (const sigtype& type : each(context.database.records.signal_types))
    list.push_back(type_data(context, type));
  return list;
}

json definitions_data(const ReportContext& context) {
  constexpr std::size_t kMostBytes = 2000;
  const Encoding encoding = context.database.encoding;
  json list = json::array();
  for (const attr_def& definition : each(context.database.records.attr_defs)) {
    list.push_back(
        {{"name", context.text(view(definition.name))},
         {"object", check::object_kind(definition)},
         {"type", brief(shown_type(definition, encoding), Encoding::kUtf8, kMostBytes)},
         {"initial", brief(shown_default(definition, encoding), Encoding::kUtf8, kMostBytes)}});
  }
  return list;
}

json categories_data(const ReportContext& context) {
  json list = json::array();
  for (const cat& category : each(context.database.records.categories)) {
    list.push_back({{"name", context.text(view(category.name))},
                    {"number", category.number},
                    {"level", category.level}});
  }
  return list;
}

}  // namespace zelk::tool

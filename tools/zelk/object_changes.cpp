#include "object_changes.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "attribute_cells.hpp"
#include "attributes.hpp"
#include "pairing.hpp"
#include "text.hpp"

namespace zelk::tool {

namespace {

/// Whether a text can stand without quotes: words, and not the one that stands for no value.
bool is_plain(std::string_view text) {
  const auto belongs = [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           std::string_view("_-./% ").find(c) != std::string_view::npos;
  };
  return !text.empty() && text != "none" && text.front() != ' ' && text.back() != ' ' &&
         std::ranges::all_of(text, belongs);
}

std::string told(const Cell& cell) {
  const Json& value = cell.value;
  if (value.is_null() || (value.is_array() && value.empty())) return "none";
  if (!value.is_string()) return shown(cell);
  const std::string& text = value.get_ref<const std::string&>();
  return is_plain(text) ? text : in_quotes(text);
}

ChangeSide side(const Cell& cell) { return {told(cell), in_utf8(cell.value)}; }

std::multiset<Json> unordered(const Json& list) { return {list.begin(), list.end()}; }

bool same_value(const attr& a, const attr& b) {
  const bool is_text = a.def->value_type == ZELK_ATTR_STRING;
  if (is_text != (b.def->value_type == ZELK_ATTR_STRING)) return false;
  if (attribute_text(a) != attribute_text(b)) return false;
  return is_text || a.value.number == b.value.number;
}

/// A value of an attribute, with the node of a relation.
struct AttributeValue {
  const attr* record;
  std::string_view node;  // empty for none
};

std::vector<AttributeValue> attributes_of(const Object& object) {
  std::vector<AttributeValue> values;
  for (const attr& value : each(object.attributes)) values.push_back({&value, {}});
  for (const rxblk& link : each(object.links)) {
    for (const attr& value : each(link.attrs))
      values.push_back({&value, link.node ? view(link.node->name) : std::string_view()});
  }
  return values;
}

std::vector<Key> keys_of(const std::vector<AttributeValue>& values) {
  std::vector<Key> keys;
  keys.reserve(values.size());
  for (const AttributeValue& value : values)
    keys.push_back({0, view(value.record->def->name), value.node});
  return keys;
}

std::vector<Key> keys_of(const std::vector<const val*>& values) {
  std::vector<Key> keys;
  keys.reserve(values.size());
  for (const val* value : values)
    keys.push_back({static_cast<std::uint32_t>(value->value), {}, {}});
  return keys;
}

std::vector<const val*> all(const val* head) {
  std::vector<const val*> values;
  for (const val& value : each(head)) values.push_back(&value);
  return values;
}

ChangeSide side(const attr* value) {
  if (!value) return {};
  return {shown_value(*value), in_utf8(value_cell(*value).value)};
}

ChangeSide side(const val* value) {
  if (!value) return {};
  return {in_quotes(view(value->text)), in_utf8(text(value->text).value)};
}

/// Gathers what differs.
class Comparison {
 public:
  /// @return whether they differ
  bool field(std::string_view name, const Cell& before, const Cell& after, bool ordered = false) {
    if (before.value == after.value) return false;
    if (!ordered && before.value.is_array() && after.value.is_array() &&
        unordered(before.value) == unordered(after.value))
      return false;
    changes_.push_back({std::string(name), Json{{"field", name}}, side(before), side(after)});
    return true;
  }

  void comment(const char* before, const char* after) {
    field("comment", before ? text(before) : none(), after ? text(after) : none());
  }

  void attributes(const Object& before, const Object& after) {
    const std::vector<AttributeValue> old_values = attributes_of(before);
    const std::vector<AttributeValue> new_values = attributes_of(after);
    for (const Pair& pair : pair_up(keys_of(old_values), keys_of(new_values))) {
      attribute(pair.before ? old_values[*pair.before] : new_values[*pair.after],
                pair.before ? old_values[*pair.before].record : nullptr,
                pair.after ? new_values[*pair.after].record : nullptr);
    }
  }

  void descriptions(const val* before, const val* after) {
    const std::vector<const val*> old_values = all(before);
    const std::vector<const val*> new_values = all(after);
    for (const Pair& pair : pair_up(keys_of(old_values), keys_of(new_values))) {
      description(pair.before ? *old_values[*pair.before] : *new_values[*pair.after],
                  pair.before ? old_values[*pair.before] : nullptr,
                  pair.after ? new_values[*pair.after] : nullptr);
    }
  }

  std::vector<Change> take() { return std::move(changes_); }

 private:
  /// @param either  of the two, one of which can be null
  void attribute(const AttributeValue& either, const attr* before, const attr* after) {
    if (before && after && same_value(*before, *after)) return;
    const std::string_view name = view(either.record->def->name);
    Change change{fmt::format("attribute {}", in_quotes(name)),
                  Json{{"field", "attribute"}, {"attribute", in_utf8(name)}}, side(before),
                  side(after)};
    if (!either.node.empty()) {
      change.field += fmt::format(" with {}", escaped(either.node));
      change.labels["node"] = in_utf8(either.node);
    }
    changes_.push_back(std::move(change));
  }

  /// @param either  of the two, one of which can be null
  void description(const val& either, const val* before, const val* after) {
    if (before && after && view(before->text) == view(after->text)) return;
    changes_.push_back({fmt::format("value {}", either.value),
                        Json{{"field", "value"}, {"value", either.value}}, side(before),
                        side(after)});
  }

  std::vector<Change> changes_;
};

/// What a column tells is told by others: to what an object belongs, or how many or which objects
/// belong to it.
bool is_compared_elsewhere(const ObjectKind& kind, std::string_view heading) {
  return heading == "message" || (kind.plural == "messages" && heading == "signals") ||
         (kind.plural == "tables" && heading == "values");
}

const msgblk& as_message(const Object& object) {
  return *static_cast<const msgblk*>(object.record);
}

Cell transmitter(const Object& message) {
  const symblk* const node = as_message(message).transmitter;
  return node ? text(node->name) : none();
}

/// The list of all transmitters. That of one is not written to a file: it has to be the message's.
Cell transmitter_list(const Object& message) {
  Cell names{Json::array()};
  const rxblk* const links = as_message(message).tx_nodes;
  if (links && !links->next && links->node == as_message(message).transmitter) return names;
  for (const rxblk& link : each(links))
    names.value.push_back(link.node ? view(link.node->name) : "");
  return names;
}

/// The sign, which the number format of IEEE signals does not tell.
Cell sign(const ObjectKind& kind, const Object& object) {
  const unsigned flags = kind.plural == "signals"
                             ? static_cast<const sigblk*>(object.record)->flags
                             : static_cast<const sigtype*>(object.record)->flags;
  return text((flags & ZELK_SIGNAL_SIGNED) != 0 ? "signed" : "unsigned");
}

Cell bit_timings(const ZelkDatabase& database) {
  Cell list{Json::array()};
  for (const btlblk& timing : each(database.bit_timings)) {
    list.value.push_back(fmt::format("baud rate {} BTR1 0x{:02X} BTR2 0x{:02X}", timing.baudrate,
                                     timing.btr1, timing.btr2));
  }
  return list;
}

Cell filter_number(const filter_t& filter) {
  return filter.categories || filter.nodes ? number(filter.mode) : none();
}

Cell filter_categories(const filter_t& filter) {
  Cell names{Json::array()};
  for (const catlink& link : each(filter.categories))
    names.value.push_back(link.category ? view(link.category->name) : "(no category)");
  return names;
}

Cell filter_nodes(const filter_t& filter) {
  Cell names{Json::array()};
  for (const rxblk& link : each(filter.nodes))
    names.value.push_back(link.node ? view(link.node->name) : "(no node)");
  return names;
}

}  // namespace

std::vector<Change> changes_between(const ObjectKind& kind, const Object& before,
                                    const Object& after) {
  Comparison comparison;
  for (std::size_t i = 0; i < kind.headings.size(); ++i) {
    const std::string_view heading = kind.headings[i];
    if (is_compared_elsewhere(kind, heading)) continue;
    const bool differs =
        comparison.field(heading, kind.cell(before, i), kind.cell(after, i), heading == "items");
    // Of several transmitters, one is the sender; it is the first of the list when that is told.
    if (heading == "transmitters" && !differs &&
        !comparison.field("transmitter", transmitter(before), transmitter(after)))
      comparison.field("transmitter list", transmitter_list(before), transmitter_list(after));
    if (heading == "type" && !differs && (kind.plural == "signals" || kind.plural == "types"))
      comparison.field("sign", sign(kind, before), sign(kind, after));
  }
  comparison.comment(before.comment, after.comment);
  comparison.attributes(before, after);
  comparison.descriptions(before.values, after.values);
  return comparison.take();
}

std::vector<Change> network_changes(const ZelkDatabase& before, const ZelkDatabase& after) {
  const auto network = [](const ZelkDatabase& database) {
    Object object{};
    object.attributes = database.attr_values;
    return object;
  };
  Comparison comparison;
  comparison.field("version", text(before.user_data), text(after.user_data));
  comparison.field("bit timings", bit_timings(before), bit_timings(after));
  comparison.field("filter", filter_number(before.filter), filter_number(after.filter));
  comparison.field("filter categories", filter_categories(before.filter),
                   filter_categories(after.filter));
  comparison.field("filter nodes", filter_nodes(before.filter), filter_nodes(after.filter));
  comparison.comment(before.comment, after.comment);
  comparison.attributes(network(before), network(after));
  return comparison.take();
}

}  // namespace zelk::tool

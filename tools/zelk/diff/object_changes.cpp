#include "diff/object_changes.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "diff/pairing.hpp"
#include "input/attributes.hpp"
#include "table/attribute_cells.hpp"
#include "term/text.hpp"

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

ChangeSide side(const Cell& cell) { return {told(cell), cell.value}; }

std::multiset<Json> unordered(const Json& list) { return {list.begin(), list.end()}; }

/// What the texts of the two databases are encoded in.
struct Encodings {
  Encoding before;
  Encoding after;
};

bool same_value(const attr& a, const attr& b, Encodings encodings) {
  const bool is_text = a.def->value_type == ZELK_ATTR_STRING;
  if (is_text != (b.def->value_type == ZELK_ATTR_STRING)) return false;
  if (to_utf8(attribute_text(a), encodings.before) != to_utf8(attribute_text(b), encodings.after))
    return false;
  return is_text || a.value.number == b.value.number;
}

/// A value of an attribute, with the node of a relation.
struct AttributeValue {
  const attr* record;
  std::string name;
  std::string node;  // empty for none
};

std::vector<AttributeValue> attributes_of(const Object& object) {
  std::vector<AttributeValue> values;
  const auto add = [&](const attr& value, std::string_view node) {
    values.push_back(
        {&value, to_utf8(view(value.def->name), object.encoding), to_utf8(node, object.encoding)});
  };
  for (const attr& value : each(object.attributes)) add(value, {});
  for (const rxblk& link : each(object.links)) {
    for (const attr& value : each(link.attrs))
      add(value, link.node ? view(link.node->name) : std::string_view());
  }
  return values;
}

std::vector<Key> keys_of(const std::vector<AttributeValue>& values) {
  std::vector<Key> keys;
  keys.reserve(values.size());
  for (const AttributeValue& value : values) keys.push_back({0, value.name, value.node});
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

ChangeSide side(const attr* value, Encoding encoding) {
  if (!value) return {};
  return {shown_value(*value, encoding), in_utf8(value_cell(*value), encoding).value};
}

ChangeSide side(const val* value, Encoding encoding) {
  if (!value) return {};
  const std::string text = to_utf8(view(value->text), encoding);
  return {in_quotes(text), text};
}

Cell text_or_none(const char* bytes, Encoding encoding) {
  return bytes ? in_utf8(text(bytes), encoding) : none();
}

/// Gathers what differs.
class Comparison {
 public:
  explicit Comparison(Encodings encodings) : encodings_(encodings) {}

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
    field("comment", text_or_none(before, encodings_.before),
          text_or_none(after, encodings_.after));
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
    if (before && after && same_value(*before, *after, encodings_)) return;
    Change change{fmt::format("attribute {}", in_quotes(either.name)),
                  Json{{"field", "attribute"}, {"attribute", either.name}},
                  side(before, encodings_.before), side(after, encodings_.after)};
    if (!either.node.empty()) {
      change.field += fmt::format(" with {}", escaped(either.node));
      change.labels["node"] = either.node;
    }
    changes_.push_back(std::move(change));
  }

  /// @param either  of the two, one of which can be null
  void description(const val& either, const val* before, const val* after) {
    Change change{fmt::format("value {}", either.value),
                  Json{{"field", "value"}, {"value", either.value}},
                  side(before, encodings_.before), side(after, encodings_.after)};
    if (change.before.value != change.after.value) changes_.push_back(std::move(change));
  }

  Encodings encodings_;
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
  return node ? in_utf8(text(node->name), message.encoding) : none();
}

/// The list of all transmitters. That of one is not written to a file: it has to be the message's.
Cell transmitter_list(const Object& message) {
  Cell names{Json::array()};
  const rxblk* const links = as_message(message).tx_nodes;
  if (links && !links->next && links->node == as_message(message).transmitter) return names;
  for (const rxblk& link : each(links))
    names.value.push_back(link.node ? view(link.node->name) : "");
  return in_utf8(std::move(names), message.encoding);
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
  Comparison comparison({before.encoding, after.encoding});
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

std::vector<Change> network_changes(EncodedDatabase before, EncodedDatabase after) {
  const auto network = [](EncodedDatabase database) {
    Object object{};
    object.attributes = database.records.attr_values;
    object.encoding = database.encoding;
    return object;
  };
  const ZelkDatabase& old_one = before.records;
  const ZelkDatabase& new_one = after.records;
  Comparison comparison({before.encoding, after.encoding});
  comparison.field("version", in_utf8(text(old_one.user_data), before.encoding),
                   in_utf8(text(new_one.user_data), after.encoding));
  comparison.field("bit timings", bit_timings(old_one), bit_timings(new_one));
  comparison.field("filter", filter_number(old_one.filter), filter_number(new_one.filter));
  comparison.field("filter categories", filter_categories(old_one.filter),
                   filter_categories(new_one.filter));
  comparison.field("filter nodes", filter_nodes(old_one.filter), filter_nodes(new_one.filter));
  comparison.comment(old_one.comment, new_one.comment);
  comparison.attributes(network(before), network(after));
  return comparison.take();
}

}  // namespace zelk::tool

#include "check/diff/changes.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/attribute_text.hpp"
#include "base/list.hpp"
#include "base/signal_bits.hpp"
#include "check/diff/pairing.hpp"
#include "check/objects/record_words.hpp"

namespace zelk::check {

namespace {

/// A value of an attribute, with the node of a relation.
struct AttributeEntry {
  const attr* record;
  Encoding encoding;
  std::string name;
  std::string node;  // empty for none

  ObjectKey key() const { return {0, name, node}; }
  ChangeSide side() const { return {in_utf8(value_cell(*record), encoding), record, encoding}; }
};

struct DescriptionEntry {
  const val* record;
  Encoding encoding;

  ObjectKey key() const { return {static_cast<std::uint32_t>(record->value), {}, {}}; }
  ChangeSide side() const { return {in_utf8(text(view(record->text)), encoding)}; }
};

std::vector<AttributeEntry> attributes_of(const Object& object) {
  std::vector<AttributeEntry> entries;
  const auto add = [&](const attr& value, std::string_view node) {
    const Encoding encoding = object.encoding;
    entries.push_back(
        {&value, encoding, to_utf8(view(value.def->name), encoding), to_utf8(node, encoding)});
  };
  for (const attr& value : each(object.attributes)) add(value, {});
  for (const rxblk& link : each(object.links)) {
    for (const attr& value : each(link.attrs))
      add(value, link.node ? view(link.node->name) : std::string_view());
  }
  return entries;
}

std::vector<DescriptionEntry> descriptions_of(const Object& object) {
  std::vector<DescriptionEntry> entries;
  for (const val& value : each(object.values)) entries.push_back({&value, object.encoding});
  return entries;
}

bool same_value(const AttributeEntry& a, const AttributeEntry& b) {
  const auto is_string = [](const AttributeEntry& entry) {
    return entry.record->def->value_type == ZELK_ATTR_STRING;
  };
  const auto text_of = [](const AttributeEntry& entry) {
    return to_utf8(attribute_text(*entry.record).value_or(""), entry.encoding);
  };
  if (is_string(a) != is_string(b) || text_of(a) != text_of(b)) return false;
  return is_string(a) || a.record->value.number == b.record->value.number;
}

bool same_value(const DescriptionEntry& a, const DescriptionEntry& b) {
  return a.side().cell.value == b.side().cell.value;
}

bool same_elements(CellList a, CellList b) {
  std::ranges::sort(a);
  std::ranges::sort(b);
  return a == b;
}

/// Calls `visit(either, before, after)` for the entries that are paired but differ, and for those
/// that only one object has; null stands for the one that is missing.
template <typename Entry, typename Visit>
void for_each_change(const std::vector<Entry>& before, const std::vector<Entry>& after,
                     const Visit& visit) {
  const auto keys_of = [](const std::vector<Entry>& entries) {
    std::vector<ObjectKey> keys;
    keys.reserve(entries.size());
    for (const Entry& entry : entries) keys.push_back(entry.key());
    return keys;
  };
  for (const ObjectPair& pair : pair_up(keys_of(before), keys_of(after))) {
    const Entry* const old_one = pair.before ? &before[*pair.before] : nullptr;
    const Entry* const new_one = pair.after ? &after[*pair.after] : nullptr;
    if (old_one && new_one && same_value(*old_one, *new_one)) continue;
    const Entry* const either = old_one ? old_one : new_one;
    if (!either) continue;
    visit(*either, old_one ? old_one->side() : ChangeSide{},
          new_one ? new_one->side() : ChangeSide{});
  }
}

/// Gathers what differs.
class Comparison {
 public:
  /// @return whether they differ
  bool field(std::string_view name, const Cell& before, const Cell& after, bool ordered = false) {
    if (before.value == after.value) return false;
    if (!ordered && before.list() && after.list() && same_elements(*before.list(), *after.list()))
      return false;
    changes_.push_back({Changed::kField, std::string(name), {}, 0, {before}, {after}});
    return true;
  }

  /// Comment, attribute values and value descriptions.
  void attachments(const Object& before, const Object& after) {
    field("comment", before.comment_cell(), after.comment_cell());
    for_each_change(attributes_of(before), attributes_of(after),
                    [this](const AttributeEntry& either, ChangeSide old_one, ChangeSide new_one) {
                      changes_.push_back({Changed::kAttribute, either.name, either.node, 0,
                                          std::move(old_one), std::move(new_one)});
                    });
    for_each_change(descriptions_of(before), descriptions_of(after),
                    [this](const DescriptionEntry& either, ChangeSide old_one, ChangeSide new_one) {
                      changes_.push_back({Changed::kDescription,
                                          {},
                                          {},
                                          either.record->value,
                                          std::move(old_one),
                                          std::move(new_one)});
                    });
  }

  std::vector<Change> take() { return std::move(changes_); }

 private:
  std::vector<Change> changes_;
};

/// Whether other objects have the differences of a column: the one that this one belongs to, or
/// those that belong to it.
bool is_compared_elsewhere(const Object& object, std::string_view heading) {
  return heading == "message" || (object.as<msgblk>() && heading == "signals") ||
         (object.as<valtable>() && heading == "values");
}

Cell transmitter(const Object& object) {
  const symblk* const node = object.as<msgblk>()->transmitter;
  return node ? in_utf8(text(view(node->name)), object.encoding) : none();
}

/// The names of linked nodes or categories, with `missing` for a null link.
template <typename Link, typename Linked>
Cell link_names(const Link* links, Linked* Link::*linked, std::string_view missing) {
  CellList names;
  for (const Link& link : each(links))
    names.push_back({std::string(link.*linked ? view((link.*linked)->name) : missing)});
  return {std::move(names)};
}

/// The list of all transmitters. A list of one is not written to a file: that one has to be the
/// message's transmitter.
Cell transmitter_list(const Object& object) {
  const msgblk& message = *object.as<msgblk>();
  const rxblk* const links = message.tx_nodes;
  if (links && !links->next && links->node == message.transmitter) return {CellList()};
  return in_utf8(link_names(links, &rxblk::node, ""), object.encoding);
}

/// The sign, which the number format of IEEE signals does not say; none for other objects.
Cell sign(const Object& object) {
  const auto word = [](const auto& record) { return is_signed(record) ? "signed" : "unsigned"; };
  if (const sigblk* const signal = object.as<sigblk>()) return text(word(*signal));
  if (const sigtype* const type = object.as<sigtype>()) return text(word(*type));
  return none();
}

Cell bit_timings(const ZelkDatabase& database) {
  CellList list;
  for (const btlblk& timing : each(database.bit_timings)) {
    list.push_back({"baud rate " + std::to_string(timing.baudrate) + " BTR1 " +
                    hex_text(timing.btr1, 2) + " BTR2 " + hex_text(timing.btr2, 2)});
  }
  return {std::move(list)};
}

Cell filter_mode(const filter_t& filter) {
  return filter.categories || filter.nodes ? number(filter.mode) : none();
}

Object network(EncodedDatabase database) {
  Object object{};
  object.comment = database.records.comment;
  object.attributes = database.records.attr_values;
  object.encoding = database.encoding;
  return object;
}

}  // namespace

std::vector<Change> changes_between(const ObjectKind& kind, const Object& before,
                                    const Object& after) {
  Comparison comparison;
  for (std::size_t i = 0; i < kind.headings.size(); ++i) {
    const std::string_view heading = kind.headings[i];
    if (is_compared_elsewhere(before, heading)) continue;
    const bool differs =
        comparison.field(heading, kind.cell(before, i), kind.cell(after, i), heading == "items");
    // Of several transmitters, one is the sender; with another sender the list says nothing new.
    if (heading == "transmitters" && !differs &&
        !comparison.field("transmitter", transmitter(before), transmitter(after)))
      comparison.field("transmitter list", transmitter_list(before), transmitter_list(after));
    if (heading == "type" && !differs) comparison.field("sign", sign(before), sign(after));
  }
  comparison.attachments(before, after);
  return comparison.take();
}

std::vector<Change> network_changes(EncodedDatabase before, EncodedDatabase after) {
  const ZelkDatabase& old_one = before.records;
  const ZelkDatabase& new_one = after.records;
  Comparison comparison;
  comparison.field("version", in_utf8(text(view(old_one.user_data)), before.encoding),
                   in_utf8(text(view(new_one.user_data)), after.encoding));
  comparison.field("bit timings", bit_timings(old_one), bit_timings(new_one));
  comparison.field("filter", filter_mode(old_one.filter), filter_mode(new_one.filter));
  comparison.field(
      "filter categories",
      link_names<catlink>(old_one.filter.categories, &catlink::category, "(no category)"),
      link_names<catlink>(new_one.filter.categories, &catlink::category, "(no category)"));
  comparison.field("filter nodes",
                   link_names<rxblk>(old_one.filter.nodes, &rxblk::node, "(no node)"),
                   link_names<rxblk>(new_one.filter.nodes, &rxblk::node, "(no node)"));
  comparison.attachments(network(before), network(after));
  return comparison.take();
}

}  // namespace zelk::check

// From a document to a database.

#include <algorithm>

#include "json/form.hpp"
#include "json/input.hpp"

namespace zelk::modules::json {
namespace {

/// A key that an object may have.
struct Place {
  ObjectInput& object;
  std::string_view key;

  ValueInput at() const { return object.at(key); }
  std::optional<ValueInput> find() const { return object.find(key); }
};

/// Number of records, or 65535 when there are more.
template <typename Record>
std::uint16_t count_16(const Record* list) {
  return static_cast<std::uint16_t>(std::min<std::size_t>(each(list).size(), UINT16_MAX));
}

/// Reads records by their keys: `take` for each way in which a key stands for a field, which leaves
/// the field of a new record as it is, zero, when there is no such key.
class Reader {
 public:
  /// Fills a record that is an object of the document.
  void fill(const ValueInput& value, auto& record) {
    ObjectInput object(value);
    for_each_key(record, [&](std::string_view name, auto& field, auto kind) {
      take({object, name}, field, kind);
    });
    object.finish();
    complete(record);
  }

 private:
  // --- Elements of arrays ---

  void element(const ValueInput& value, auto& record) { fill(value, record); }
  void element(const ValueInput& value, catlink& link) { refer(value, link.category); }
  void element(const ValueInput& value, siglistblk& member) { refer(value, member.signal); }
  void element(const ValueInput& value, rxblk& link) {
    value.is_object() ? fill(value, link) : refer(value, link.node);
  }
  void element(const ValueInput& value, muxor_val_range& range) {
    if (value.is_object()) return fill(value, range);
    value.field(range.low);
    range.high = range.low;
  }
  void refer(const ValueInput& value, auto*& field) { value.reference(field, lists_.of(field)); }

  // --- Keys ---

  void take(Place key, const auto&, Fixed) { key.find(); }
  void take(Place key, auto& field, Required) { key.at().field(field); }
  void take(Place key, auto& field, Optional) {
    if (const auto value = key.find()) value->field(field);
  }
  void take(Place key, char*& field, Optional) {
    if (const auto value = key.find()) value->text(field);
  }
  template <typename Number>
  void take(Place key, Number& field, Otherwise<Number> kind) {
    field = kind.absent;
    take(key, field, Optional());
  }
  template <typename Kind>
  void take(Place key, zelk_attr_value_t& value, AsText<Kind>) {
    take(key, value.text, Kind());
  }
  template <typename Kind>
  void take(Place key, zelk_attr_value_t& value, AsNumber<Kind>) {
    take(key, value.number, Kind());
  }
  void take(Place key, auto& field, RequiredWord kind) { key.at().word(field, kind.words); }
  void take(Place key, auto& field, OptionalWord kind) {
    if (const auto value = key.find()) value->word(field, kind.words);
  }
  template <typename Integer>
  void take(Place key, Integer& flags, Flag kind) {
    const auto value = key.find();
    if (value && value->flag()) flags |= static_cast<Integer>(kind.bit);
  }
  void take(Place key, std::uint16_t& flags, ByteOrder) {
    const auto value = key.find();
    if (value && value->is_motorola()) flags |= ZELK_SIGNAL_MOTOROLA;
  }
  void take(Place key, std::uint16_t& flags, OtherBits kind) {
    const auto value = key.find();
    if (!value) return;
    std::uint16_t bits = 0;
    value->field(bits);
    if ((bits & ~kind.mask) != 0) value->path().fail("a bit that has a key of its own");
    flags |= bits;
  }
  void take(Place key, std::uint32_t& id, Identifier) { key.at().identifier(id); }
  void take(Place key, char*& field, Items) {
    if (const auto value = key.find()) value->items(field);
  }
  void take(Place key, auto*& field, RequiredReference) { refer(key.at(), field); }
  void take(Place key, auto*& field, OptionalReference) {
    if (const auto value = key.find()) refer(*value, field);
  }
  void take(Place key, auto*& head, List kind) {
    if (kind.attribute_kind) lists_.References<attr_def>::expect(*kind.attribute_kind);
    ListTail tail(head);
    if (const auto value = key.find()) {
      value->each_element([&](const ValueInput& item) { element(item, append_new(tail)); });
    }
    lists_.index(head);
  }
  /// In two rounds: the names first, as every signal may refer to every other one.
  void take(Place key, sigblk*& head, Signals) {
    ListTail tail(head);
    const auto value = key.find();
    if (value) {
      value->each_element([&tail](const ValueInput& item) {
        ObjectInput(item).at("name").field(append_new(tail).name);
      });
    }
    lists_.index(head);
    sigblk* next = head;
    if (value) {
      value->each_element([&](const ValueInput& item) {
        fill(item, *next);
        next = next->next;
      });
    }
    check_circles(key.object.path(), head);
  }
  void take(Place key, char*&, SignalName) { key.find(); }
  void take(Place key, auto& part, Part) {
    if (const auto value = key.find()) fill(*value, part);
  }

  // --- What records have besides the keys ---

  static void complete(auto&) {}
  static void complete(msgblk& message) {
    message.signal_count = count_16(message.signals);
    for (sigblk& signal : each(message.signals)) signal.message = &message;
    for (siggroupblk& group : each(message.siggroups)) group.message = &message;
  }
  static void complete(sigblk& signal) { signal.receiver_count = count_16(signal.receivers); }
  static void complete(env_var_blk& variable) {
    variable.access_node_count = count_16(variable.access_nodes);
  }

  Lists lists_;
};

}  // namespace

void read_document(const Value& document, Encoding encoding, const Database& database) {
  Reader().fill(ValueInput(document, Path(), encoding), database);
}

}  // namespace zelk::modules::json

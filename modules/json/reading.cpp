// Fills a database from a document.

#include "common/file.hpp"
#include "json/converter.hpp"
#include "json/document.hpp"
#include "json/form.hpp"
#include "json/input.hpp"

namespace zelk::modules::json {
namespace {

// --- The document ---

/// @throws Fault unless the document is one of this form
void check_format(const Value& document) {
  if (!document.is<Value::Object>()) Path().fail("expected an object");
  const Path root;
  const Value* const format = document.find("format");
  if (!format || !format->is_text(kFormat)) {
    Path(root, "format").fail("expected \"" + std::string(kFormat) + "\"");
  }
  const Value* const version = document.find("version");
  if (!version || !version->is_number(kVersion)) {
    Path(root, "version").fail("expected " + std::to_string(kVersion));
  }
}

Encoding encoding_in(const Value& document) {
  const Value* const found = document.find("encoding");
  if (!found || found->is_text(kEncodings[0])) return Encoding::kUtf8;
  if (found->is_text(kEncodings[1])) return Encoding::kWindows1252;
  const Path root;
  Path(root, "encoding").fail(R"(expected "utf-8" or "windows-1252")");
}

// --- Records ---

/// A key of an object.
struct Place {
  ObjectInput& object;
  std::string_view name;
  bool is_required;

  /// The value; none when there is none.
  /// @throws Fault without one that is required
  std::optional<ValueInput> value() const { return object.find(name, is_required); }
};

/// Reads records by their keys: `take` for each way in which a key stands for a field, which leaves
/// the field of a new record as it is, zero, when there is no such key.
class Reader {
 public:
  /// Fills a record that is an object of the document.
  void fill(const ValueInput& value, auto& record) {
    ObjectInput object(value);
    for_each_key(record, [&](std::string_view name, bool is_required, auto& field, auto kind) {
      take({object, name, is_required}, field, kind);
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

  void take(Place key, const auto&, Fixed) { key.value(); }
  void take(Place key, char*&, SignalName) { key.value(); }
  void take(Place key, auto& field, Plain) {
    if (const auto value = key.value()) value->field(field);
  }
  void take(Place key, char*& text, Plain) {
    if (const auto value = key.value()) key.is_required ? value->field(text) : value->text(text);
  }
  template <typename Number>
  void take(Place key, Number& field, Otherwise<Number> kind) {
    field = kind.absent;
    take(key, field, Plain());
  }
  void take(Place key, zelk_attr_value_t& value, AsText) { take(key, value.text, Plain()); }
  void take(Place key, zelk_attr_value_t& value, AsNumber) { take(key, value.number, Plain()); }
  void take(Place key, auto& number, NumberWord kind) {
    if (const auto value = key.value()) value->word(number, kind.words);
  }
  template <typename Integer>
  void take(Place key, Integer& flags, Flag kind) {
    const auto value = key.value();
    if (value && value->flag()) flags |= static_cast<Integer>(kind.bit);
  }
  void take(Place key, std::uint16_t& flags, ByteOrder) {
    const auto value = key.value();
    if (value && value->is_motorola()) flags |= ZELK_SIGNAL_MOTOROLA;
  }
  void take(Place key, std::uint16_t& flags, OtherBits kind) {
    const auto value = key.value();
    if (!value) return;
    std::uint16_t bits = 0;
    value->field(bits);
    if ((bits & ~kind.mask) != 0) value->path().fail("a bit that has a key of its own");
    flags |= bits;
  }
  void take(Place key, std::uint32_t& id, Identifier) { key.value()->identifier(id); }
  void take(Place key, char*& field, Items) {
    if (const auto value = key.value()) value->items(field);
  }
  void take(Place key, auto*& field, Reference) {
    if (const auto value = key.value()) refer(*value, field);
  }
  void take(Place key, auto*& head, List kind) {
    if (kind.attribute_kind) lists_.References<attr_def>::expect(*kind.attribute_kind);
    ListTail tail(head);
    if (const auto value = key.value()) {
      value->each_element([&](const ValueInput& item) { element(item, append_new(tail)); });
    }
    lists_.index(head);
  }
  /// In two rounds: the names first, as every signal may refer to every other one.
  void take(Place key, sigblk*& head, Signals) {
    ListTail tail(head);
    const auto value = key.value();
    if (value) {
      value->each_element([&tail](const ValueInput& item) {
        ObjectInput(item).find("name", true)->field(append_new(tail).name);
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
  void take(Place key, auto& part, Part) {
    if (const auto value = key.value()) fill(*value, part);
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

void import_file(const char* file, const Database& database, std::string_view) {
  const Value document = parse(read_file(file));
  check_format(document);
  Reader().fill(ValueInput(document, Path(), encoding_in(document)), database);
}

}  // namespace zelk::modules::json

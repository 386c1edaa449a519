/// \file
/// Reading records out of a document.

#ifndef ZELK_MODULES_JSON_INPUT_HPP
#define ZELK_MODULES_JSON_INPUT_HPP

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "base/encoding.hpp"
#include "common/records.hpp"
#include "json/document.hpp"
#include "json/path.hpp"
#include "json/references.hpp"
#include "json/words.hpp"

namespace zelk::modules::json {

/// One value of the document. Each function takes it for a field of a record, and throws a Fault
/// with the place when it does not fit.
class ValueInput {
 public:
  ValueInput(const Value& value, const Path& path, Encoding encoding)
      : value_(value), path_(path), encoding_(encoding) {}

  const Value& value() const { return value_; }
  const Path& path() const { return path_; }

  template <typename Integer>
  void whole(Integer& field) const {
    using Limits = std::numeric_limits<Integer>;
    field = static_cast<Integer>(whole(Limits::min(), Limits::max()));
  }
  void real(double& field) const;
  void text(char*& field) const { assign_text(field, decoded()); }
  void text_or_null(char*& field) const;
  template <std::size_t kSize>
  void inline_text(char (&field)[kSize]) const;
  /// An identifier without the bit that marks the extended format.
  void identifier(std::uint32_t& field) const {
    field = static_cast<std::uint32_t>(whole(0, ZELK_ID_EXTENDED - 1));
  }
  /// A word, or a number that has none.
  template <typename Integer>
  void word(Integer& field, Words words) const;
  bool flag() const;
  /// A name or a position of `list`; or nothing, which is null.
  template <typename Record>
  void reference(Record*& field, const References<Record>& list, std::int32_t kind = 0) const;
  /// Elements of an array of texts, as an ENUM has them.
  void items(char*& field) const;
  const Value::Array& array() const;
  bool is_object(bool) const { return value_.is<Value::Object>(); }
  template <typename Fill>
  void object(Fill fill) const;

 private:
  std::int64_t whole(std::int64_t lowest, std::int64_t highest) const;
  /// The text in the characters of the database.
  std::string decoded() const;
  std::int64_t number_of_word(Words words) const;
  void check_length(std::string_view text) const;
  [[noreturn]] void fail_reference(const char* what, std::size_t count) const;

  const Value& value_;
  const Path path_;
  const Encoding encoding_;
};

/// One object of the document. Its functions take keys for fields; a key that the object does not
/// have gives the field the value `absent`, and in those without one leaves it as it is.
class ObjectInput {
 public:
  static constexpr bool kReads = true;

  /// @throws Fault for a value that is no object
  ObjectInput(const Value& value, const Path& path, Encoding encoding);

  const Path& path() const { return path_; }

  /// The value of a key.
  /// @throws Fault when there is none
  ValueInput at(std::string_view key);

  template <typename Integer>
  void whole(std::string_view key, Integer& field, Integer absent) {
    field = absent;
    if (const auto* value = find(key)) input(key, *value).whole(field);
  }
  void real(std::string_view key, double& field, double absent = 0.0);
  void text(std::string_view key, char*& field);
  template <std::size_t kSize>
  void inline_text(std::string_view key, char (&field)[kSize]) {
    if (const auto* value = find(key)) input(key, *value).inline_text(field);
  }
  template <typename Integer>
  void word(std::string_view key, Integer& field, Words words) {
    if (const auto* value = find(key)) input(key, *value).word(field, words);
  }
  template <typename Integer>
  void flag(std::string_view key, Integer& flags, unsigned bit) {
    const auto* const value = find(key);
    if (value && input(key, *value).flag()) flags |= static_cast<Integer>(bit);
  }
  void byte_order(std::string_view key, std::uint16_t& flags);
  /// Bits among those of `mask`.
  void bits(std::string_view key, std::uint16_t& flags, std::uint16_t mask);
  template <typename Record>
  void reference(std::string_view key, Record*& field, const References<Record>& list) {
    if (const auto* value = find(key)) input(key, *value).reference(field, list);
  }
  void items(std::string_view key, char*& field);

  /// Appends a record for each element of an array and calls `fill(value, record)`.
  template <typename Record, typename Fill>
  void list(std::string_view key, Record*& head, Fill fill);
  /// Likewise for objects with names, by which they refer to each other: all are in `references`
  /// when `fill(object, record)` is called.
  template <typename Record, typename Fill>
  void named_list(std::string_view key, Record*& head, References<Record>& references, Fill fill);
  void left_out(bool, const char*) const {}

  /// Whether the object has a key. For an output: `wanted`.
  bool has(std::string_view key, bool) const { return object_.find(key) != nullptr; }
  /// Takes a key for known.
  void skip(std::string_view key) { find(key); }

  /// @throws Fault when the object has a key that nobody asked for
  void finish() const;

 private:
  const Value* find(std::string_view key);
  ValueInput input(std::string_view key, const Value& value) const {
    return {value, Path(path_, key), encoding_};
  }

  const Value& object_;
  const Path path_;
  const Encoding encoding_;
  std::vector<std::string_view> asked_;
  std::size_t found_ = 0;
};

// --- Implementation ---

template <std::size_t kSize>
void ValueInput::inline_text(char (&field)[kSize]) const {
  const std::string text = decoded();
  check_length(text);
  assign_inline(field, text, "");
}

template <typename Integer>
void ValueInput::word(Integer& field, Words words) const {
  if (value_.is<std::string>()) {
    field = static_cast<Integer>(number_of_word(words));
  } else {
    whole(field);
  }
}

template <typename Record>
void ValueInput::reference(Record*& field, const References<Record>& list,
                           std::int32_t kind) const {
  field = nullptr;
  if (value_.is<std::nullptr_t>()) return;
  const auto* const position = value_.get_if<std::uint64_t>();
  if (value_.is<std::string>()) {
    field = list.find(decoded(), kind);
  } else if (position && *position < list.size()) {
    field = list.at(static_cast<std::size_t>(*position));
  }
  if (!field) fail_reference(list.what(), list.size());
}

template <typename Fill>
void ValueInput::object(Fill fill) const {
  ObjectInput object(value_, path_, encoding_);
  fill(object);
  object.finish();
}

template <typename Record, typename Fill>
void ObjectInput::list(std::string_view key, Record*& head, Fill fill) {
  const auto* const value = find(key);
  if (!value) return;
  const Path path(path_, key);
  ListTail<Record> tail(head);
  std::size_t position = 0;
  for (const auto& element : input(key, *value).array()) {
    Record& record = append_new(tail);
    const ValueInput item(element, Path(path, position++), encoding_);
    fill(item, record);
  }
}

template <typename Record, typename Fill>
void ObjectInput::named_list(std::string_view key, Record*& head, References<Record>& references,
                             Fill fill) {
  list(key, head, [this](const ValueInput& value, Record& record) {
    ObjectInput(value.value(), value.path(), encoding_).at("name").text_or_null(record.name);
  });
  references.index(head);
  Record* record = head;
  if (!record) return;
  const Path path(path_, key);
  std::size_t position = 0;
  for (const auto& element : *object_.find(key)->get_if<Value::Array>()) {
    ObjectInput object(element, Path(path, position++), encoding_);
    object.skip("name");
    fill(object, *record);
    object.finish();
    record = record->next;
  }
}

}  // namespace zelk::modules::json

#endif

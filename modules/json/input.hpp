/// \file
/// Values of a document as fields of records.

#ifndef ZELK_MODULES_JSON_INPUT_HPP
#define ZELK_MODULES_JSON_INPUT_HPP

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
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

  const Path& path() const { return path_; }

  /// A number, a name, or a text or null.
  template <typename Field>
  void field(Field& field) const;
  void text(char*& field) const { assign_text(field, decoded()); }
  /// An identifier without the bit that marks the extended format.
  void identifier(std::uint32_t& field) const {
    field = static_cast<std::uint32_t>(whole(0, ZELK_ID_EXTENDED - 1));
  }
  /// A word, or a number that has none.
  template <typename Integer>
  void word(Integer& number, Words words) const;
  bool flag() const;
  /// Whether it is "motorola" rather than "intel".
  bool is_motorola() const;
  /// A name or a position of `list`; or nothing, which is null.
  template <typename Record>
  void reference(Record*& field, const References<Record>& list) const;
  /// Elements of an array of texts, as an ENUM has them.
  void items(char*& field) const;
  bool is_object() const { return value_.is<Value::Object>(); }
  /// Calls `visit(ValueInput)` with each element of an array.
  template <typename Visit>
  void each_element(Visit visit) const;

 private:
  friend class ObjectInput;

  std::int64_t whole(std::int64_t lowest, std::int64_t highest) const;
  double real() const;
  /// The text in the characters of the database.
  std::string decoded() const;
  /// One that fits into a record.
  std::string short_text() const;
  std::int64_t number_of_word(Words words) const;
  const Value::Array& array() const;
  [[noreturn]] void fail_reference(const char* what, std::size_t count) const;

  const Value& value_;
  const Path path_;
  const Encoding encoding_;
};

/// One object of the document.
class ObjectInput {
 public:
  /// @param input  must outlive the object
  /// @throws Fault for a value that is no object
  explicit ObjectInput(const ValueInput& input);

  const Path& path() const { return input_.path(); }

  /// The value of a key; none when there is none.
  /// @throws Fault without a key that is required
  std::optional<ValueInput> find(std::string_view key, bool is_required);

  /// @throws Fault when the object has a key that nobody asked for
  void finish() const;

 private:
  const ValueInput& input_;
  std::vector<std::string_view> asked_;
  std::size_t found_ = 0;
};

// --- Implementation ---

template <typename Field>
void ValueInput::field(Field& field) const {
  if constexpr (std::is_same_v<Field, double>) {
    field = real();
  } else if constexpr (std::is_integral_v<Field>) {
    using Limits = std::numeric_limits<Field>;
    field = static_cast<Field>(whole(Limits::min(), Limits::max()));
  } else if constexpr (std::is_array_v<Field>) {
    assign_inline(field, short_text(), "");
  } else if (!value_.is<std::nullptr_t>()) {
    text(field);
  }
}

template <typename Integer>
void ValueInput::word(Integer& number, Words words) const {
  if (!value_.is<std::string>()) return field(number);
  number = static_cast<Integer>(number_of_word(words));
}

template <typename Record>
void ValueInput::reference(Record*& field, const References<Record>& list) const {
  field = nullptr;
  if (value_.is<std::nullptr_t>()) return;
  const auto* const position = value_.get_if<std::uint64_t>();
  if (value_.is<std::string>()) {
    field = list.find(decoded());
  } else if (position && *position < list.size()) {
    field = list.at(static_cast<std::size_t>(*position));
  }
  if (!field) fail_reference(list.what(), list.size());
}

template <typename Visit>
void ValueInput::each_element(Visit visit) const {
  std::size_t position = 0;
  for (const Value& element : array()) {
    visit(ValueInput(element, Path(path_, position++), encoding_));
  }
}

}  // namespace zelk::modules::json

#endif

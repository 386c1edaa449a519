/// \file
/// Writing records into a document.

#ifndef ZELK_MODULES_JSON_OUTPUT_HPP
#define ZELK_MODULES_JSON_OUTPUT_HPP

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string_view>

#include "common/records.hpp"
#include "path.hpp"
#include "references.hpp"
#include "words.hpp"

namespace zelk::modules::json {

/// One value of the document, which each function makes out of a field of a record. Texts go in as
/// the bytes that they are; the names are those of `ValueInput`, which reads the values back.
class ValueOutput {
 public:
  ValueOutput(nlohmann::ordered_json& value, const Path& path) : value_(value), path_(path) {}

  const Path& path() const { return path_; }

  template <typename Integer>
  void whole(Integer field) const {
    value_ = field;
  }
  void real(double field) const;
  void text(const char* field) const { value_ = view(field); }
  void text_or_null(const char* field) const;
  /// @throws Fault for a text that is longer than it may be
  template <std::size_t kSize>
  void inline_text(const char (&field)[kSize]) const;
  void identifier(std::uint32_t field) const { value_ = field & ~ZELK_ID_EXTENDED; }
  void word(std::int64_t field, Words words) const;
  /// @throws Fault for a record that is not in `list`
  template <typename Record>
  void reference(const Record* field, const References<Record>& list, std::int32_t kind = 0) const;
  void items(const char* field) const;
  /// Whether the value becomes an object rather than something shorter.
  bool is_object(bool wanted) const { return wanted; }
  template <typename Fill>
  void object(Fill fill) const;

 private:
  void short_text(std::string_view text) const;

  nlohmann::ordered_json& value_;
  const Path path_;
};

/// One object of the document. Its functions add keys for fields that are not as they are without
/// the key, in the order of the calls; the names are those of `ObjectInput`.
class ObjectOutput {
 public:
  static constexpr bool kReads = false;

  /// Makes `value` an empty object.
  ObjectOutput(nlohmann::ordered_json& value, const Path& path);

  const Path& path() const { return path_; }

  ValueOutput at(std::string_view key) { return {object_[std::string(key)], Path(path_, key)}; }

  template <typename Integer>
  void whole(std::string_view key, Integer field, Integer absent) {
    if (field != absent) at(key).whole(field);
  }
  void real(std::string_view key, double field, double absent = 0.0);
  void text(std::string_view key, const char* field) {
    if (field) at(key).text(field);
  }
  template <std::size_t kSize>
  void inline_text(std::string_view key, const char (&field)[kSize]) {
    if (field[0] != '\0') at(key).inline_text(field);
  }
  void word(std::string_view key, std::int64_t field, Words words) {
    if (field != 0) at(key).word(field, words);
  }
  void flag(std::string_view key, unsigned flags, unsigned bit) {
    if ((flags & bit) != 0) at(key).whole(true);
  }
  void byte_order(std::string_view key, unsigned flags) {
    if ((flags & ZELK_SIGNAL_MOTOROLA) != 0) object_[std::string(key)] = kMotorola;
  }
  void bits(std::string_view key, unsigned flags, unsigned mask) {
    if ((flags & mask) != 0) at(key).whole(flags & mask);
  }
  template <typename Record>
  void reference(std::string_view key, const Record* field, const References<Record>& list) {
    if (field) at(key).reference(field, list);
  }
  void items(std::string_view key, const char* field) {
    if (field) at(key).items(field);
  }
  template <typename Record, typename Fill>
  void list(std::string_view key, Record* head, Fill fill);
  template <typename Record, typename Fill>
  void named_list(std::string_view key, Record* head, References<Record>& references, Fill fill);
  bool has(std::string_view, bool wanted) const { return wanted; }
  /// Tells the library of something that the document does not hold.
  void left_out(bool is_there, const char* what) const;

 private:
  nlohmann::ordered_json& object_;
  const Path path_;
};

// --- Implementation ---

template <std::size_t kSize>
void ValueOutput::inline_text(const char (&field)[kSize]) const {
  short_text(view(field));
}

template <typename Record>
void ValueOutput::reference(const Record* field, const References<Record>& list,
                            std::int32_t kind) const {
  if (!field) return;  // the value is null as it is made
  const auto position = list.position(field);
  if (!position) {
    path_.fail("refers to a record that is no " + std::string(list.what()) + " of the list");
  }
  if (list.leads_back(*field, kind)) {
    value_ = view(field->name);
  } else {
    value_ = *position;
  }
}

template <typename Fill>
void ValueOutput::object(Fill fill) const {
  ObjectOutput object(value_, path_);
  fill(object);
}

template <typename Record, typename Fill>
void ObjectOutput::list(std::string_view key, Record* head, Fill fill) {
  if (!head) return;
  auto& array = object_[std::string(key)] = nlohmann::ordered_json::array();
  const Path path(path_, key);
  for (std::size_t position = 0; head; head = head->next, ++position) {
    const ValueOutput item(array.emplace_back(), Path(path, position));
    fill(item, *head);
  }
}

template <typename Record, typename Fill>
void ObjectOutput::named_list(std::string_view key, Record* head, References<Record>& references,
                              Fill fill) {
  references.index(head);
  list(key, head, [&fill](const ValueOutput& value, Record& record) {
    value.object([&](ObjectOutput& object) {
      object.at("name").text_or_null(record.name);
      fill(object, record);
    });
  });
}

}  // namespace zelk::modules::json

#endif

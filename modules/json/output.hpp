/// \file
/// Writing records into a document.

#ifndef ZELK_MODULES_JSON_OUTPUT_HPP
#define ZELK_MODULES_JSON_OUTPUT_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/records.hpp"
#include "json/path.hpp"
#include "json/references.hpp"
#include "json/text_output.hpp"
#include "json/words.hpp"

namespace zelk::modules::json {

/// The value that comes next in the document: one call of a function writes it, out of a field of a
/// record. Texts go in as the bytes that they are; the names are those of `ValueInput`, which reads
/// the values back.
class ValueOutput {
 public:
  ValueOutput(TextOutput& out, const Path& path) : out_(out), path_(path) {}

  const Path& path() const { return path_; }

  template <typename Integer>
  void whole(Integer field) const {
    out_.literal(std::to_string(field));
  }
  void flag(bool field) const { out_.literal(field ? "true" : "false"); }
  void real(double field) const;
  void text(const char* field) const { out_.string(view(field)); }
  void text_or_null(const char* field) const;
  /// @throws Fault for a text that is longer than it may be
  template <std::size_t kSize>
  void inline_text(const char (&field)[kSize]) const;
  void identifier(std::uint32_t field) const { whole(field & ~ZELK_ID_EXTENDED); }
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

  TextOutput& out_;
  const Path path_;
};

/// An object that is open in the document. Its functions add keys for fields that are not as they
/// are without the key, in the order of the calls; the names are those of `ObjectInput`.
class ObjectOutput {
 public:
  static constexpr bool kReads = false;

  ObjectOutput(TextOutput& out, const Path& path) : out_(out), path_(path) {}

  const Path& path() const { return path_; }

  /// Begins a member, whose value is to be written by the result.
  ValueOutput at(std::string_view key) {
    out_.key(key);
    return {out_, Path(path_, key)};
  }

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
    if ((flags & bit) != 0) at(key).flag(true);
  }
  void byte_order(std::string_view key, unsigned flags) {
    if ((flags & ZELK_SIGNAL_MOTOROLA) != 0) at(key).text(kMotorola);
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
  TextOutput& out_;
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
  if (!field) {
    out_.literal("null");
    return;
  }
  const auto position = list.position(field);
  if (!position) {
    path_.fail("refers to a record that is no " + std::string(list.what()) + " of the list");
  }
  if (list.leads_back(*field, kind)) {
    out_.string(view(field->name));
  } else {
    whole(*position);
  }
}

template <typename Fill>
void ValueOutput::object(Fill fill) const {
  out_.open('{');
  ObjectOutput object(out_, path_);
  fill(object);
  out_.close('}');
}

template <typename Record, typename Fill>
void ObjectOutput::list(std::string_view key, Record* head, Fill fill) {
  if (!head) return;
  out_.key(key);
  out_.open('[');
  const Path path(path_, key);
  for (std::size_t position = 0; head; head = head->next, ++position) {
    out_.element();
    const ValueOutput item(out_, Path(path, position));
    fill(item, *head);
  }
  out_.close(']');
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

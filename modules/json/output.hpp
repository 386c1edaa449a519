/// \file
/// Fields of records as values of a document.

#ifndef ZELK_MODULES_JSON_OUTPUT_HPP
#define ZELK_MODULES_JSON_OUTPUT_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "common/records.hpp"
#include "json/path.hpp"
#include "json/references.hpp"
#include "json/text_output.hpp"
#include "json/words.hpp"

namespace zelk::modules::json {

/// The value that comes next in the document: one call of a function writes it, out of a field of a
/// record. Texts are written as the bytes that they are. The functions are named as those of
/// `ValueInput`, which reads the value back.
class ValueOutput {
 public:
  ValueOutput(TextOutput& out, const Path& path) : out_(out), path_(path) {}

  const Path& path() const { return path_; }

  /// A number, a name, or a text or null.
  /// @throws Fault for a name that is longer than it may be
  template <typename Field>
  void field(const Field& field) const;
  void text(const char* text) const { out_.string(text); }
  void flag() const { out_.literal("true"); }
  void word(std::int64_t number, Words words) const;
  /// @throws Fault for a record that is not in `list`
  template <typename Record>
  void reference(const Record* field, const References<Record>& list) const;
  void items(const char* field) const;

 private:
  void real(double number) const;
  void short_text(std::string_view text) const;

  TextOutput& out_;
  const Path path_;
};

// --- Implementation ---

template <typename Field>
void ValueOutput::field(const Field& field) const {
  if constexpr (std::is_same_v<Field, double>) {
    real(field);
  } else if constexpr (std::is_integral_v<Field>) {
    out_.literal(std::to_string(field));
  } else if constexpr (std::is_array_v<Field>) {
    short_text(view(field));
  } else if (field) {
    text(field);
  } else {
    out_.literal("null");
  }
}

template <typename Record>
void ValueOutput::reference(const Record* field, const References<Record>& list) const {
  if (!field) {
    out_.literal("null");
    return;
  }
  const auto position = list.position(field);
  if (!position) {
    path_.fail("refers to a record that is no " + std::string(list.what()) + " of the list");
  }
  if (list.leads_back(*field)) {
    out_.string(view(field->name));
  } else {
    this->field(*position);
  }
}

}  // namespace zelk::modules::json

#endif

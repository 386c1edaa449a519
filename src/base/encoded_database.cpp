#include "base/encoded_database.hpp"

#include <string_view>

#include "base/list.hpp"
#include "base/text_view.hpp"

namespace zelk {

namespace {

/// Looks for a text that is not UTF-8.
class EncodingTest {
 public:
  bool is_utf8() const { return is_utf8_; }

  void database(const ZelkDatabase& database) {
    text(view(database.user_data));
    text(view(database.comment));
    records(database.attr_values);
    records(database.nodes);
    records(database.messages);
    records(database.env_vars);
    records(database.value_tables);
    records(database.signal_types);
    records(database.attr_defs);
    records(database.categories);
  }

 private:
  template <typename Record>
  void records(const Record* list) {
    for (const Record& item : each(list))
      if (is_utf8_) record(item);
  }

  /// All that records of different kinds have under the same names.
  template <typename Record>
  void record(const Record& record) {
    if constexpr (requires { record.name; }) text(view(record.name));
    if constexpr (requires { record.comment; }) text(view(record.comment));
    if constexpr (requires { record.unit; }) inline_text(record.unit);
    if constexpr (requires { record.text; }) text(view(record.text));
    if constexpr (requires { record.values; }) records(record.values);
    if constexpr (requires { record.attrs; }) records(record.attrs);
    if constexpr (requires { record.receivers; }) records(record.receivers);
    if constexpr (requires { record.tx_nodes; }) records(record.tx_nodes);
    if constexpr (requires { record.access_nodes; }) records(record.access_nodes);
    if constexpr (requires { record.siggroups; }) records(record.siggroups);
    if constexpr (requires { record.dlc; }) records(record.signals);
  }

  void record(const attr& value) {
    if (value.def->value_type == ZELK_ATTR_STRING) text(view(value.value.text));
  }

  void record(const attr_def& definition) {
    inline_text(definition.name);
    const bool is_enum = definition.value_type == ZELK_ATTR_ENUM;
    if (is_enum) text(view(definition.enum_values));
    if (is_enum || definition.value_type == ZELK_ATTR_STRING)
      text(view(definition.default_value.text));
  }

  void text(std::string_view bytes) { is_utf8_ = is_utf8_ && zelk::is_utf8(bytes); }

  /// A name or unit that may be cut within a character, whose first byte is no smaller
  /// than 0xC2 and the others 0x80 to 0xBF.
  void inline_text(std::string_view bytes) {
    const auto byte_at = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    if (bytes.size() == ZELK_INLINE_NAME_MAX && !zelk::is_utf8(bytes)) {
      std::size_t lead = bytes.size() - 1;
      while (lead > 0 && (byte_at(lead) & 0xC0) == 0x80) --lead;
      if (byte_at(lead) >= 0xC2) bytes.remove_suffix(bytes.size() - lead);
    }
    text(bytes);
  }

  bool is_utf8_ = true;
};

}  // namespace

Encoding encoding_of(const ZelkDatabase& database) {
  EncodingTest test;
  test.database(database);
  return test.is_utf8() ? Encoding::kUtf8 : Encoding::kWindows1252;
}

}  // namespace zelk

/// \file
/// One write of a database as DBC text.

#ifndef ZELK_WRITER_WRITER_HPP
#define ZELK_WRITER_WRITER_HPP

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/list.hpp"
#include "base/seeded_hash.hpp"
#include "model/heads.hpp"
#include "writer/short_names.hpp"
#include "writer/text_output.hpp"

namespace zelk {

/// Writes the sections in their fixed order:
///
///     VERSION, NS_, BS_, BU_, VAL_TABLE_, BO_ with SG_, BO_TX_BU_, EV_, ENVVAR_DATA_, SGTYPE_,
///     CM_, BA_DEF_, BA_DEF_SGTYPE_, BA_DEF_REL_, BA_DEF_DEF_ and BA_DEF_DEF_REL_, BA_ and
///     BA_SGTYPE_, BA_REL_, VAL_, CAT_DEF_, CAT_, FILTER, SIG_TYPE_REF_, SIG_GROUP_, SIG_VALTYPE_,
///     SIGTYPE_VALTYPE_, SG_MUL_VAL_
///
/// The blanks and empty lines are part of the format, the odd ones too: hosts compare files byte by
/// byte.
class Writer {
 public:
  /// All must outlive the writer. `names` are of this model.
  Writer(const ModelView& model, ShortNameCache& names, TextOutput& out)
      : model_(model), names_(names), out_(out) {}

  /// @param with_multiplexor_ranges  write the "SG_MUL_VAL_" section
  void write(bool with_multiplexor_ranges);

 private:
  using MessageSet = std::unordered_set<const msgblk*>;

  // The frame and the objects (object_sections.cpp).
  bool needs_new_symbols() const;
  void new_symbols();
  std::vector<std::string> unused_new_symbols();
  template <typename Use>
  void for_each_written_name(Use use);
  void bit_timings();
  void nodes();
  void messages();
  void signal(const sigblk& signal);
  void transmitters();
  void variable(const env_var_blk& variable);
  void variables();
  void signal_type(const sigtype& type);
  void comments();
  void message_comments(const msgblk& message);
  void comment_text(const char* text);

  // Attributes (attribute_sections.cpp).
  void attributes();
  void definitions();
  void long_name_definitions();
  void signal_type_definitions();
  void relation_definitions();
  void type_and_range(const attr_def& definition);
  void items(std::string_view list);
  void defaults();
  void values();
  template <typename... Place>
  void object_values(const attr* values, const Place&... place);
  template <typename... Place>
  void long_name(NamedKind kind, const char* full_name, const Place&... place);
  void relation_values();
  template <typename... Place>
  void link_values(const rxblk* links, const char* relation, const Place&... place);
  template <typename... Place>
  void value(const char* keyword, const attr& value, const Place&... place);
  void number_or_text(bool is_text, zelk_attr_value_t value);
  bool defines_long_names(std::size_t kind) const;
  bool writes_long_names(NamedKind kind) const;
  MessageSet hidden_messages() const;

  // Descriptions, categories and what refers to signals (description_sections.cpp).
  void value_tables();
  void value_descriptions();
  void descriptions(const val* list);
  void categories();
  template <typename Record, typename Key>
  void category_of(const Record& record, const char* keyword, const Key& key);
  void filter();
  void type_references();
  void signal_groups();
  void value_types();
  void multiplexor_ranges();
  void signal_ranges(const msgblk& message, const sigblk& signal);

  /// The placeholder for null.
  std::string_view name(const symblk* node);
  /// The placeholder for none and for one without a name.
  std::string_view transmitter(const msgblk& message);
  std::string_view name(const symblk& node);
  std::string_view name(const msgblk& message);
  /// The placeholder for a signal without a name.
  std::string_view name(const sigblk& signal);
  std::string_view name(const env_var_blk& variable);
  void names(const rxblk* links);

  /// Calls `visit(message, signal)` for every signal.
  template <typename Visit>
  void for_each_signal(Visit visit) {
    for (const msgblk& message : each(model_.messages)) {
      for (const sigblk& signal : each(message.signals)) {
        visit(message, signal);
      }
    }
  }

  /// What some signal has that few signals have, noticed while the signals are written: the
  /// sections for it are walked over only then. The records have left the caches by that time.
  struct Noticed {
    bool link_attribute = false;
    bool type = false;
    bool value_type = false;
    bool multiplexor = false;
  };
  void notice(const sigblk& signal);

  const ModelView& model_;
  ShortNameCache& names_;
  TextOutput& out_;
  Noticed noticed_;
  /// By kind: the user's first definition of the attribute for its long names.
  std::array<const attr_def*, kNamedKinds> long_name_definitions_{};
};

}  // namespace zelk

#endif

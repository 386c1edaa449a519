/// \file
/// Actions of the statements about attributes: definitions, defaults, values, and long names.

#ifndef ZELK_READER_ATTRIBUTE_ACTIONS_HPP
#define ZELK_READER_ATTRIBUTE_ACTIONS_HPP

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/seeded_hash.hpp"
#include "reader/read_context.hpp"
#include "text/definition_index.hpp"

namespace zelk {

class AttributeActions {
 public:
  explicit AttributeActions(ReadContext& context);

  // The type of the definition under way.
  void type(std::int32_t value_type) { type_ = value_type; }
  void range(RealPair range) { range_ = range; }
  void item(TokenText text);

  void define(std::int32_t object_type, TokenText name);
  void define_for_signal_types(TokenText name);

  // The value of the statement under way: a number, a text, or none.
  void number(double value) { value_ = {value, {}, ValueForm::kNumber}; }
  void text(TokenText text) { value_ = {0.0, text, ValueForm::kText}; }
  void no_value() { value_ = {0.0, {}, ValueForm::kNone}; }

  /// `object_type` is `kAnyOrdinaryKind` or `kAnyRelationKind` when the statement names no kind.
  void set_default(std::int32_t object_type, TokenText attribute);

  void network_value(TokenText attribute);
  void node_value(TokenText attribute, TokenText node_name);
  void message_value(TokenText attribute, std::uint32_t id);
  void signal_value(TokenText attribute, std::uint32_t id, TokenText signal_name);
  void variable_value(TokenText attribute, TokenText variable_name);
  void type_value(TokenText attribute, TokenText type_name);

  // Values of relations between a node and what it receives, sends or accesses.
  void node_signal_value(TokenText attribute, TokenText node_name, std::uint32_t id,
                         TokenText signal_name);
  void node_message_value(TokenText attribute, TokenText node_name, std::uint32_t id);
  void node_variable_value(TokenText attribute, TokenText node_name, TokenText variable_name);

  /// The file is accepted: long names become the names of their objects, and their definitions go.
  void accept();

 private:
  enum class ValueForm { kNone, kNumber, kText };
  struct Value {
    double number;
    TokenText text;
    ValueForm form;
  };
  struct DeferredName {
    char** field;
    OwnedText name;
  };
  /// The items of an ENUM, by index and by text.
  struct Items {
    std::vector<std::string_view> texts;
    std::unordered_map<std::string_view, int, SeededHash> indexes;
  };

  attr_def** slot(std::string_view attribute) const;
  attr_def& definition(std::int32_t object_type, TokenText attribute);
  [[noreturn]] void fail_with_value(std::string_view text) const;

  void append_value(attr*& list, attr_def& definition);
  void append_object_value(attr*& list, attr_def& definition, char** name, bool is_node);
  void append_relation_value(rxblk* links, attr_def& definition, symblk* node);
  void defer_name(char** field, bool is_node);

  OwnedText text_value() const;
  double number_value() const;
  double item_value(const attr_def& definition);
  OwnedText item_default(const attr_def& definition);
  const Items& items(const attr_def& definition);

  ReadContext& context_;
  ListTail<attr_def> definitions_;
  DefinitionIndex index_;
  std::unordered_map<const attr_def*, Items>
      items_;  ///< of the ENUMs that an item was looked up in
  std::unordered_set<const attr_def*> long_name_definitions_;  ///< of the slots and of the file
  std::vector<DeferredName> deferred_names_;

  std::int32_t type_ = 0;
  RealPair range_{};
  std::optional<std::string> item_list_;
  Value value_{};
};

}  // namespace zelk

#endif

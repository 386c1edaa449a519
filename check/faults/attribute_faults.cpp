#include <cmath>
#include <string>

#include "base/numbers.hpp"
#include "check/faults/analysis.hpp"
#include "check/faults/definitions.hpp"
#include "check/faults/links.hpp"
#include "zelk/dbc.h"
#include "zelk/records.h"

namespace zelk::check {

namespace {

/// The value that a statement gives.
struct Value {
  const Token* token = nullptr;  ///< null when it gives none that can be read
  bool is_text = false;
  std::string text{};  ///< of a number: as it is kept in an attribute for texts
  double number = 0;
};

/// For which objects the values of a statement are.
Word described_object(const Document& document, const Statement& statement) {
  if (statement.kind == Word::kTypeAttribute) return Word::kSignalType;
  const Token* const object = document.find(statement, Role::kObject);
  return object ? object->word : Word::kNone;
}

class AttributeFaults {
 public:
  explicit AttributeFaults(const Analysis& analysis)
      : in_(analysis), definitions_(analysis.document), links_(analysis) {}

  void find() {
    for (std::uint32_t i = 0; i < in_.document.statements.size(); ++i)
      if (in_.statement(i).is_readable) find(i);
  }

 private:
  void find(std::uint32_t index) {
    switch (in_.statement(index).kind) {
      case Word::kDefault:
        return check_default(index, kAnyObject);
      case Word::kRelationDefault:
        return check_default(index, kAnyRelation);
      case Word::kAttribute:
      case Word::kTypeAttribute:
      case Word::kRelationAttribute:
        return check_value(index);
      case Word::kTypeDefinition:
        if (!definitions_.find(Word::kSignal, name_of(index))) add_unknown(index);
        return;
      case Word::kDefinition:
      case Word::kRelationDefinition:
        return check_items(index);
      default:
        return;
    }
  }

  std::string name_of(std::uint32_t index) const {
    const Token* const name = in_.document.find(in_.statement(index), Role::kAttributeRef);
    return name ? text_value(in_.document, *name) : std::string();
  }

  void add_unknown(std::uint32_t index) const {
    const Token* const name = in_.document.find(in_.statement(index), Role::kAttributeRef);
    if (name) in_.add(FaultKind::kUnknownAttribute, index, *name);
  }

  Value value_of(std::uint32_t index) const {
    const Token* token = in_.document.find(in_.statement(index), Role::kValue);
    if (!token) return {};
    const bool is_negative = token->is_mark('-');
    if (token->kind == TokenKind::kMark) ++token;
    if (token->kind == TokenKind::kOddNumber) return {};
    if (token->kind != TokenKind::kWhole && token->kind != TokenKind::kReal)
      return {token, true, text_value(in_.document, *token)};
    const double magnitude = literal_to_double(in_.document.text_of(*token));
    const double number = is_negative ? -magnitude : magnitude;
    return {token, false, std::string(NumberText(number).view()), number};
  }

  void add_wrong(std::uint32_t index, const Token& token, const Definition& definition) const {
    in_.add(FaultKind::kWrongValue, index, token).related = definition.statement;
  }

  // --- Defaults ---

  void check_default(std::uint32_t index, Word object) {
    const Token* const relation = in_.document.find(in_.statement(index), Role::kObject);
    if (relation) object = relation->word;
    Definition* const definition = definitions_.next_for_default(object, name_of(index));
    if (!definition) return add_unknown(index);
    const Value value = value_of(index);
    if (value.token && !is_right_default(*definition, value))
      add_wrong(index, *value.token, *definition);
  }

  bool is_right_default(Definition& definition, const Value& value) const {
    if (definition.type != Word::kEnum) return is_right(definition, value);
    definitions_.read_items(definition);
    const bool is_whole = value.number == std::floor(value.number);
    if (!value.is_text) {
      return is_whole && value.number >= 0 &&
             value.number < static_cast<double>(definition.item_count);
    }
    const std::string item = item_value(value.text);
    return item.empty() || definition.items.contains(item);
  }

  // --- Values of objects ---

  void check_value(std::uint32_t index) {
    const Statement& statement = in_.statement(index);
    const Word object = described_object(in_.document, statement);
    Definition* const definition = definitions_.find(object, name_of(index));
    if (!definition) return add_unknown(index);
    const Value value = value_of(index);
    if (!value.token || !has_object(index)) return;
    if (definition->is_long_name) return check_long_name(index, object, value);
    if (!is_right(*definition, value)) add_wrong(index, *value.token, *definition);
  }

  /// The reader drops values of what stands for no node, and of nodes without the link, unseen.
  bool has_object(std::uint32_t index) {
    const Statement& statement = in_.statement(index);
    const bool is_relation = statement.kind == Word::kRelationAttribute;
    return in_.document.text_of(statement, Role::kNodeRef) != ZELK_NO_NODE &&
           (!is_relation || links_.has_link(index));
  }

  bool is_right(Definition& definition, const Value& value) const {
    if (!value.is_text || definition.type == Word::kString) return true;
    if (definition.type != Word::kEnum) return parse_number(value.text).has_value();
    definitions_.read_items(definition);
    return definition.items.contains(item_value(value.text));
  }

  /// The reader notes what cannot name an object, and drops it.
  void check_long_name(std::uint32_t index, Word object, const Value& value) const {
    const bool can_name =
        object != Word::kNone && object != Word::kSignalType &&
        zelk_can_name_object(value.text.c_str(), object == Word::kNodes ? 1 : 0) != 0;
    if (!value.text.empty() && !can_name)
      in_.add(FaultKind::kWrongValue, index, *value.token).is_accepted = true;
  }

  /// Items are kept line by line, so the reader makes blanks of their line feeds, with a note.
  void check_items(std::uint32_t index) const {
    for (const Token& token : in_.document.tokens_of(in_.statement(index))) {
      const bool is_divided = token.role == Role::kItem &&
                              text_value(in_.document, token).find('\n') != std::string::npos;
      if (is_divided) in_.add(FaultKind::kWrongValue, index, token).is_accepted = true;
    }
  }

  const Analysis& in_;
  Definitions definitions_;
  Links links_;
};

}  // namespace

void find_attribute_faults(const Analysis& analysis) { AttributeFaults(analysis).find(); }

}  // namespace zelk::check

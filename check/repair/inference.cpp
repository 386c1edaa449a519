#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "base/numbers.hpp"
#include "base/seeded_hash.hpp"
#include "check/findings/sentences.hpp"
#include "check/repair/number_mends.hpp"
#include "check/repair/references.hpp"

namespace zelk::check {

namespace {

/// Attributes are told apart by the kind of their objects and their names.
struct Attribute {
  Word object;  ///< as `Names::attribute` takes it, or kSignalType
  std::string_view name;

  bool operator<(const Attribute& other) const {
    return std::tie(object, name) < std::tie(other.object, other.name);
  }
};

/// What the values of an attribute have in common.
struct Values {
  const Fault* first = nullptr;
  std::uint32_t count = 0;
  bool has_text = false;
  bool has_fraction = false;
  double minimum = 0;
  double maximum = 0;
};

bool is_default(Word kind) { return kind == Word::kDefault || kind == Word::kRelationDefault; }

class Inference {
 public:
  explicit Inference(Mender& mender) : mender_(mender) {}

  void take(const Fault& fault) {
    const Statement& statement = mender_.statement(fault.statement);
    if (is_default(statement.kind) || statement.kind == Word::kTypeDefinition) return;
    const Attribute attribute = attribute_of(statement);
    names_.insert(attribute.name);
    Values& values = attributes_[attribute];
    if (values.count++ == 0) values.first = &fault;
    add_value(values, statement);
  }

  /// A default without a definition says nothing about any object.
  void drop_alone(const Fault& fault) {
    const Statement& statement = mender_.statement(fault.statement);
    const bool needs_other = is_default(statement.kind) || statement.kind == Word::kTypeDefinition;
    if (needs_other && !names_.contains(mender_.document.text_of(statement, Role::kAttributeRef))) {
      mender_.drop(fault.kind, fault.statement,
                   "there is no such attribute, and no object has a value of it");
    }
  }

  void add_definitions() const {
    for (const auto& [attribute, values] : attributes_) add_definition(attribute, values);
  }

 private:
  Attribute attribute_of(const Statement& statement) const {
    const Token* const object = mender_.document.find(statement, Role::kObject);
    Word kind = object ? object->word : Word::kNone;
    if (statement.kind == Word::kTypeAttribute) kind = Word::kSignalType;
    return {kind, mender_.document.text_of(statement, Role::kAttributeRef)};
  }

  void add_value(Values& values, const Statement& statement) const {
    bool is_negative = false;
    for (const Token& token : mender_.document.tokens_of(statement)) {
      if (token.role != Role::kValue) continue;
      const bool is_number = token.kind == TokenKind::kWhole || token.kind == TokenKind::kReal ||
                             token.kind == TokenKind::kOddNumber;
      if (is_number) return add_number(values, token, is_negative);
      if (token.kind != TokenKind::kMark) values.has_text = true;
      is_negative = token.is_mark('-');
    }
  }

  void add_number(Values& values, const Token& token, bool is_negative) const {
    const double size = lenient_number(mender_.document.text_of(token)).value_or(0);
    const double number = is_negative ? -size : size;
    const bool is_first = values.count == 1;
    values.has_fraction |= number != std::trunc(number) || size > 2147483647.0;
    values.minimum = is_first ? number : std::min(values.minimum, number);
    values.maximum = is_first ? number : std::max(values.maximum, number);
  }

  static std::string type_of(const Values& values) {
    if (values.has_text) return "STRING";
    return (values.has_fraction ? "FLOAT " : "INT ") +
           std::string(NumberText(values.minimum).view()) + ' ' +
           std::string(NumberText(values.maximum).view());
  }

  void add_definition(const Attribute& attribute, const Values& values) const {
    const bool is_relation = attribute.object == Word::kNodeSignal ||
                             attribute.object == Word::kNodeMessage ||
                             attribute.object == Word::kNodeVariable;
    const bool is_of_types = attribute.object == Word::kSignalType;
    const Word object = is_of_types ? Word::kSignal : attribute.object;
    const std::string name = " \"" + std::string(attribute.name) + '"';
    std::string text(spelling(is_relation ? Word::kRelationDefinition : Word::kDefinition));
    if (object != Word::kNone) text.append(" ").append(spelling(object));
    text += name + ' ' + type_of(values) + ';';
    mender_.note(FaultKind::kUnknownAttribute, values.first->statement, values.first->token,
                 values.first->token_end,
                 "definition " + shown(text) + " added for " + counted(values.count, "value"));
    mender_.add(place_of(Word::kDefinition), std::move(text));
    if (is_of_types) {
      mender_.add(place_of(Word::kTypeDefinition),
                  std::string(spelling(Word::kTypeDefinition)) + name + ';');
    }
  }

  Mender& mender_;
  std::map<Attribute, Values> attributes_;
  std::unordered_set<std::string_view, SeededHash> names_;  ///< of `attributes_`
};

}  // namespace

void infer_definitions(Mender& mender, std::span<const Fault> faults) {
  Inference inference(mender);
  const auto each_of_kind = [&](const auto& act) {
    for (const Fault& fault : faults) {
      if (fault.kind == FaultKind::kUnknownAttribute && !mender.is_settled(fault.statement))
        act(fault);
    }
  };
  each_of_kind([&](const Fault& fault) { inference.take(fault); });
  each_of_kind([&](const Fault& fault) { inference.drop_alone(fault); });
  inference.add_definitions();
}

}  // namespace zelk::check

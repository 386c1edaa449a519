// Values of attributes, and statements that come twice.

#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_map>

#include "base/characters.hpp"
#include "base/hash_table.hpp"
#include "base/numbers.hpp"
#include "check/lint/context.hpp"

namespace zelk::check {

namespace {

constexpr Rule kRange{
    "attribute-range",
    Severity::kWarning,
    "An attribute's value is outside its definition",
    "BA_DEF_ gives an attribute of type INT, HEX or FLOAT a range, and one of type ENUM its items; "
    "whole numbers are meant by INT and HEX. Tools refuse other values, cut them, or take the "
    "default. A range of 0 to 0 stands for none.",
    "BA_DEF_ BO_ \"GenMsgCycleTime\" INT 0 1000;\nBA_ \"GenMsgCycleTime\" BO_ 256 5000;\n",
    "Correct the value, or widen the range of the definition."};

constexpr Rule kCycleTime{
    "cycle-time-zero",
    Severity::kWarning,
    "A message that is sent cyclically has a cycle time of 0",
    "The attribute GenMsgSendType says that the message is sent again and again, GenMsgCycleTime "
    "after how many milliseconds: 0 says that it is not. Simulations and generated code send it "
    "never, "
    "or without a pause.",
    "BA_ \"GenMsgSendType\" BO_ 256 0;\nBA_ \"GenMsgCycleTime\" BO_ 256 0;\n",
    "Give the message its cycle time, or another send type."};

constexpr Rule kDoubled{
    "doubled-statement",
    Severity::kWarning,
    "A second statement says the same of one object",
    "A second comment replaces the first one, a second value of an attribute is passed over, and a "
    "second VAL_ adds to the first one. Tools differ in that, so one of the two is lost sooner or "
    "later.",
    "CM_ BO_ 256 \"Speed over ground.\";\nCM_ BO_ 256 \"Speed of the wheels.\";\n",
    "Delete one of the two, or merge them."};

// --- Definitions ---

/// What a definition allows.
struct Definition {
  Word type = Word::kNone;
  std::optional<double> minimum{};
  std::optional<double> maximum{};
  std::size_t items = 0;
};

Definition definition_of(const Document& document, const Statement& statement) {
  Definition definition;
  if (const Token* const type = document.find(statement, Role::kValueType))
    definition.type = type->word;
  definition.minimum = real_value(document, statement, Role::kMinimum);
  definition.maximum = real_value(document, statement, Role::kMaximum);
  for (const Token& token : document.tokens_of(statement))
    definition.items += token.role == Role::kItem ? 1 : 0;
  return definition;
}

/// What is wrong with a value; empty for nothing.
std::string fault_of(const Definition& definition, double value) {
  if (definition.type == Word::kEnum) {
    const bool is_index =
        value >= 0 && value < static_cast<double>(definition.items) && std::trunc(value) == value;
    return is_index ? "" : join("the definition has ", definition.items, " items, counted from 0");
  }
  const bool is_whole = definition.type == Word::kInt || definition.type == Word::kHex;
  if (is_whole && std::trunc(value) != value) return "the attribute has whole numbers";
  const double minimum = definition.minimum.value_or(0);
  const double maximum = definition.maximum.value_or(0);
  const bool is_allowed = minimum >= maximum || (minimum <= value && value <= maximum);
  return is_allowed ? "" : join("the definition allows ", minimum, " to ", maximum);
}

// --- Values ---

/// Checks values against definitions, each of which is read once.
class ValueCheck {
 public:
  explicit ValueCheck(const LintContext& context) : context_(context) {}

  void check(const Statement& statement) {
    const Document& document = context_.document;
    const Token* const token = document.find(statement, Role::kValue);
    const auto value = token ? value_of(statement, *token) : std::nullopt;
    if (!value) return;
    const std::string_view name = document.text_of(statement, Role::kAttributeRef);
    const std::uint32_t index = context_.names.attribute(name, object_of(statement));
    if (index == Statement::kNone) return;
    const std::string fault = fault_of(definition(index), *value);
    if (fault.empty()) return;
    context_.report(kRange, context_.index_of(statement), Role::kValue, [&](Finding& finding) {
      finding.message = join("attribute ", name, " cannot be ", *value, ": ", fault);
      finding.related.push_back({context_.span_of(index, Role::kAttribute), "the definition"});
    });
  }

 private:
  std::optional<double> value_of(const Statement& statement, const Token& token) const {
    if (token.kind == TokenKind::kText) return std::nullopt;
    return real_value(context_.document, statement, Role::kValue);
  }

  Word object_of(const Statement& statement) const {
    const Token* const object = context_.document.find(statement, Role::kObject);
    return object ? object->word : Word::kNone;
  }

  const Definition& definition(std::uint32_t statement) {
    const auto [found, is_new] = definitions_.try_emplace(statement);
    if (is_new)
      found->second = definition_of(context_.document, context_.document.statements[statement]);
    return found->second;
  }

  const LintContext& context_;
  std::unordered_map<std::uint32_t, Definition> definitions_;
};

// --- Doubled statements ---

bool may_double(Word kind) {
  return kind == Word::kComment || kind == Word::kAttribute || kind == Word::kTypeAttribute ||
         kind == Word::kRelationAttribute || kind == Word::kDescriptions ||
         kind == Word::kValueType || kind == Word::kTypeReference ||
         kind == Word::kMultiplexorRanges || kind == Word::kTransmitters || kind == Word::kGroup;
}

/// Whether a token tells what a statement is about, in front of what it says of that.
bool names_object(const Token& token) {
  switch (token.role) {
    case Role::kObject:
    case Role::kAttributeRef:
    case Role::kMessageRef:
    case Role::kSignalRef:
    case Role::kNodeRef:
    case Role::kVariableRef:
    case Role::kGroup:
      return true;
    case Role::kTypeRef:
    case Role::kNone:
      return !token.is_mark(':') && !token.is_mark(';');
    default:
      return false;
  }
}

/// The keyword, and the tokens that name the object.
std::span<const Token> head_of(const Document& document, const Statement& statement) {
  const auto tokens = document.tokens_of(statement);
  std::size_t size = 1;
  while (size < tokens.size() && names_object(tokens[size])) ++size;
  return tokens.first(size);
}

class DoubledStatements {
 public:
  explicit DoubledStatements(const LintContext& context)
      : context_(context),
        first_(static_cast<std::size_t>(std::ranges::count_if(
            context.statements(), [](const Statement& s) { return may_double(s.kind); }))) {}

  void check(const Statement& statement) {
    const std::uint32_t index = context_.index_of(statement);
    const auto head = head_of(context_.document, statement);
    const std::uint32_t other = first_.enter(
        static_cast<std::uint32_t>(key_of(head) >> 32), index, [&](std::uint32_t there) {
          return is_same(head, head_of(context_.document, context_.document.statements[there]));
        });
    if (other == index) return;
    const Span span = {head.front().begin, head.back().end};
    context_.report(kDoubled, index, span, [&](Finding& finding) {
      finding.message = "an earlier statement says the same of this object";
      const Token& there = context_.document.tokens[context_.document.statements[other].first];
      finding.related.push_back({context_.span_of(there), "the earlier statement"});
    });
  }

 private:
  std::uint64_t key_of(std::span<const Token> head) const {
    std::uint64_t key = 0;
    for (const Token& token : head)
      key = (key ^ hash_(context_.document.text_of(token))) * hash_.seed;
    return key;
  }

  bool is_same(std::span<const Token> a, std::span<const Token> b) const {
    return std::ranges::equal(a, b, [this](const Token& x, const Token& y) {
      return context_.document.text_of(x) == context_.document.text_of(y);
    });
  }

  const LintContext& context_;
  SeededHash hash_;
  /// Half of a key is enough, and keeps the table small.
  HashTable<std::uint32_t, std::uint32_t, Statement::kNone> first_;
};

// --- Cycle times ---

/// A message that has neither of the two attributes was not thought about, and is left out.
void check_message(const LintContext& context, const PlacedMessage& message) {
  const KnownAttributes& known = context.attributes;
  const attr* const values = message.record->attrs;
  if (!known.send_type.is_set(values) && !known.cycle_time.is_set(values)) return;
  const auto send_type = known.send_type.text(values).value_or("");
  if (!is_cyclic(send_type) || known.cycle_time.number(values) != 0) return;
  context.report(kCycleTime, message.statement, Role::kMessage, [&](Finding& finding) {
    finding.message = join("the send type is \"", send_type, "\", but the cycle time is 0");
  });
}

void check_database(const LintContext& context) {
  ValueCheck values(context);
  DoubledStatements doubled(context);
  for (const Statement& statement : context.statements()) {
    if (!statement.is_readable) continue;
    const Word kind = statement.kind;
    if (kind == Word::kAttribute || kind == Word::kRelationAttribute ||
        kind == Word::kTypeAttribute || kind == Word::kDefault || kind == Word::kRelationDefault)
      values.check(statement);
    if (may_double(kind)) doubled.check(statement);
  }
}

constexpr const Rule* kRules[] = {&kRange, &kCycleTime, &kDoubled};

}  // namespace

const RuleGroup kAttributeRules = {kRules, check_message, check_database};

}  // namespace zelk::check

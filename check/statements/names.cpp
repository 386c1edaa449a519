#include "check/statements/names.hpp"

#include <algorithm>

#include "base/numbers.hpp"
#include "zelk/records.h"

namespace zelk::check {

namespace {

/// The reader keeps as many characters of the names of tables, types and definitions.
std::string_view kept(std::string_view name) { return name.substr(0, 32); }

std::size_t count(const Document& document, Word kind) {
  return static_cast<std::size_t>(std::ranges::count(document.statements, kind, &Statement::kind));
}

template <typename Table, typename Key>
std::uint32_t find(const Table& table, const Key& key) {
  const auto found = table.find(key);
  return found == table.end() ? Statement::kNone : found->second;
}

bool is_relation(Word object) {
  return object == Word::kNodeSignal || object == Word::kNodeMessage ||
         object == Word::kNodeVariable;
}

/// Where definitions for objects of any kind are found.
constexpr Word kAnyObject = Word::kDefinition;
constexpr Word kAnyRelation = Word::kRelationDefinition;

}  // namespace

std::optional<std::uint32_t> whole_value(const Document& document, const Token& token) {
  if (token.kind != TokenKind::kWhole) return std::nullopt;
  const auto literal = whole_literal(document.text_of(token));
  return literal ? std::optional(literal->value) : std::nullopt;
}

std::optional<std::uint32_t> whole_value(const Document& document, const Statement& statement,
                                         Role role) {
  const Token* const token = document.find(statement, role);
  return token ? whole_value(document, *token) : std::nullopt;
}

std::optional<std::int64_t> signed_value(const Document& document, const Statement& statement,
                                         Role role) {
  bool is_negative = false;
  for (const Token& token : document.tokens_of(statement)) {
    if (token.role != role) continue;
    if (const auto value = whole_value(document, token))
      return is_negative ? -std::int64_t{*value} : std::int64_t{*value};
    is_negative = token.is_mark('-');
  }
  return std::nullopt;
}

std::string text_value(const Document& document, const Token& token) {
  const std::string_view content = document.content_of(token);
  const std::string_view text = content.substr(0, content.find('\0'));
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char next = i + 1 < text.size() ? text[i + 1] : '\0';
    const bool is_dropped = (text[i] == '\\' && next == '"') || (text[i] == '\r' && next == '\n');
    if (!is_dropped) result += text[i];
  }
  return result;
}

std::optional<double> real_value(const Document& document, const Statement& statement, Role role) {
  bool is_negative = false;
  for (const Token& token : document.tokens_of(statement)) {
    if (token.role != role) continue;
    if (token.kind == TokenKind::kWhole || token.kind == TokenKind::kReal) {
      const auto whole = whole_value(document, token);
      const double value = whole ? *whole : literal_to_double(document.text_of(token));
      return is_negative ? -value : value;
    }
    is_negative = token.is_mark('-');
  }
  return std::nullopt;
}

Names::Names(const Document& document)
    : document_(document),
      messages_(count(document, Word::kMessage)),
      signals_(count(document, Word::kSignal)) {
  for (std::uint32_t i = 0; i < document.statements.size(); ++i)
    if (document.statements[i].is_readable) enter(i);
}

void Names::enter(std::uint32_t index) {
  const Statement& statement = document_.statements[index];
  const auto name = [&](Role role) { return document_.text_of(statement, role); };
  switch (statement.kind) {
    case Word::kMessage:
      if (const auto id = whole_value(document_, statement, Role::kMessageId))
        messages_.enter(*id, index);
      break;
    case Word::kSignal:
      if (statement.owner == Statement::kNone) break;
      signals_.enter(hash_(name(Role::kSignal)) + statement.owner * hash_.seed, index,
                     [&](std::uint32_t other) {
                       const Statement& there = document_.statements[other];
                       return there.owner == statement.owner &&
                              document_.text_of(there, Role::kSignal) == name(Role::kSignal);
                     });
      break;
    case Word::kVariable:
      variables_.emplace(name(Role::kVariable), index);
      break;
    case Word::kValueTable:
      tables_.emplace(kept(name(Role::kTable)), index);
      break;
    case Word::kSignalType:
      types_.emplace(kept(name(Role::kType)), index);
      break;
    case Word::kCategoryDefinition:
      if (const auto number = signed_value(document_, statement, Role::kCategoryNumber))
        categories_.emplace(*number, index);
      break;
    case Word::kDefinition:
    case Word::kRelationDefinition:
      enter_definition(index);
      break;
    default:
      break;
  }
}

void Names::enter_definition(std::uint32_t index) {
  const Statement& statement = document_.statements[index];
  const bool is_ordinary = statement.kind == Word::kDefinition;
  const Token* const object = document_.find(statement, Role::kObject);
  // A relation that is not named is one between node and signal.
  const Word unnamed = is_ordinary ? Word::kNone : Word::kNodeSignal;
  const std::string_view name = kept(document_.text_of(statement, Role::kAttribute));
  definitions_[object ? object->word : unnamed].emplace(name, index);
  definitions_[is_ordinary ? kAnyObject : kAnyRelation].emplace(name, index);
}

std::uint32_t Names::message(std::uint32_t id) const { return messages_.find(id); }

std::uint32_t Names::signal(std::uint32_t message, std::string_view name) const {
  return signals_.find(hash_(name) + message * hash_.seed, [&](std::uint32_t index) {
    const Statement& there = document_.statements[index];
    return there.owner == message && document_.text_of(there, Role::kSignal) == name;
  });
}

std::uint32_t Names::variable(std::string_view name) const { return find(variables_, name); }

std::uint32_t Names::table(std::string_view name) const { return find(tables_, kept(name)); }

std::uint32_t Names::type(std::string_view name) const { return find(types_, kept(name)); }

std::uint32_t Names::category(std::int64_t number) const { return find(categories_, number); }

std::uint32_t Names::attribute(std::string_view name, Word object) const {
  for (const Word kind : {object, is_relation(object) ? kAnyRelation : kAnyObject}) {
    const auto table = definitions_.find(kind);
    const std::uint32_t index =
        table == definitions_.end() ? Statement::kNone : find(table->second, kept(name));
    if (index != Statement::kNone) return index;
  }
  return Statement::kNone;
}

const Names::NameTable& Names::nodes() const {
  if (nodes_) return *nodes_;
  nodes_.emplace();
  for (const Statement& statement : document_.statements)
    if (statement.kind == Word::kNodes) enter_nodes(statement);
  for (const Statement& statement : document_.statements)
    if (statement.is_readable && statement.kind != Word::kNodes) enter_nodes(statement);
  return *nodes_;
}

void Names::enter_nodes(const Statement& statement) const {
  for (const Token& token : document_.tokens_of(statement)) {
    const bool is_node = token.role == Role::kNode || token.role == Role::kTransmitter ||
                         token.role == Role::kReceiver || token.role == Role::kAccessNode;
    if (!is_node || document_.text_of(token) == ZELK_NO_NODE) continue;
    nodes_->emplace(document_.text_of(token),
                    static_cast<std::uint32_t>(&token - document_.tokens.data()));
  }
}

std::uint32_t Names::node(std::string_view name) const { return find(nodes(), name); }

}  // namespace zelk::check

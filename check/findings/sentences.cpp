#include "check/findings/sentences.hpp"

#include <algorithm>
#include <span>

namespace zelk::check {

namespace {

constexpr std::size_t kMostShown = 300;  // characters

/// The object that a statement names by references: "signal Speed of message 1492".
std::string object_of(const Document& document, const Statement& statement) {
  // They stand in front. What follows may be long, and each of its tokens may have its own finding.
  constexpr std::size_t kMostInFront = 16;
  std::span<const Token> front = document.tokens_of(statement);
  front = front.first(std::min(front.size(), kMostInFront));
  const auto name = [&](Role role) {
    const auto token = std::ranges::find(front, role, &Token::role);
    return token == front.end() ? std::string() : std::string(document.content_of(*token));
  };
  const std::string message = name(Role::kMessageRef);
  const std::string signal = name(Role::kSignalRef);
  if (!signal.empty()) return "signal " + signal + " of message " + message;
  if (!message.empty()) return "message " + message;
  if (const std::string node = name(Role::kNodeRef); !node.empty()) return "node " + node;
  const std::string variable = name(Role::kVariableRef);
  if (!variable.empty()) return "environment variable " + variable;
  const std::string type = name(Role::kTypeRef);
  return type.empty() ? "the database" : "signal type " + type;
}

/// "node" and its name; the word alone where a broken statement has none.
std::string named(std::string_view noun, std::string_view name) {
  std::string text(noun);
  return name.empty() ? text : text.append(" ").append(name);
}

std::string describe_message(const Document& document, const Statement& statement) {
  return named(named("message", document.text_of(statement, Role::kMessageId)),
               document.text_of(statement, Role::kMessage));
}

std::string describe_signal(const Document& document, const Statement& statement) {
  std::string text = named("signal", document.text_of(statement, Role::kSignal));
  if (statement.owner == Statement::kNone) return text;
  const Statement& owner = document.statements[statement.owner];
  return text + " of message " + std::string(document.text_of(owner, Role::kMessageId));
}

std::string attribute_of(const Document& document, const Statement& statement) {
  std::string_view name = document.text_of(statement, Role::kAttribute);
  if (name.empty()) name = document.text_of(statement, Role::kAttributeRef);
  return "attribute \"" + std::string(name) + '"';
}

std::string describe_later(const Document& document, const Statement& statement) {
  switch (statement.kind) {
    case Word::kDefinition:
    case Word::kRelationDefinition:
    case Word::kTypeDefinition:
      return "definition of " + attribute_of(document, statement);
    case Word::kDefault:
    case Word::kRelationDefault:
      return "default of " + attribute_of(document, statement);
    case Word::kAttribute:
    case Word::kTypeAttribute:
    case Word::kRelationAttribute:
      return "value of " + attribute_of(document, statement) + " for " +
             object_of(document, statement);
    case Word::kGroup:
      return named(named("signal group", document.text_of(statement, Role::kGroup)) + " of message",
                   document.text_of(statement, Role::kMessageRef));
    case Word::kNone:
      return "text";
    case Word::kAnnounced:
      return "statement \"" + std::string(document.text_of(document.tokens[statement.first])) + '"';
    default:
      return "statement \"" + std::string(spelling(statement.kind)) + '"';
  }
}

}  // namespace

std::string describe(const Document& document, const Statement& statement) {
  switch (statement.kind) {
    case Word::kMessage:
      return describe_message(document, statement);
    case Word::kSignal:
      return describe_signal(document, statement);
    case Word::kVariable:
      return named("environment variable", document.text_of(statement, Role::kVariable));
    case Word::kValueTable:
      return named("value table", document.text_of(statement, Role::kTable));
    case Word::kSignalType:
      return named("signal type", document.text_of(statement, Role::kType));
    case Word::kComment:
      return "comment of " + object_of(document, statement);
    case Word::kTransmitters:
      return "transmitters of " + object_of(document, statement);
    case Word::kDescriptions:
      return "value descriptions of " + object_of(document, statement);
    case Word::kCategory:
      return "category of " + object_of(document, statement);
    case Word::kTypeReference:
    case Word::kTypeValueType:
    case Word::kValueType:
      return "type of " + object_of(document, statement);
    case Word::kMultiplexorRanges:
      return "multiplexor values of " + object_of(document, statement);
    default:
      return describe_later(document, statement);
  }
}

std::string shown(std::string_view text) {
  std::string result = "`";
  const bool is_cut = text.size() > kMostShown;
  for (const char c : text.substr(0, kMostShown)) {
    const bool is_space = static_cast<unsigned char>(c) <= ' ';
    if (!is_space) result += c;
    if (is_space && result.back() != ' ') result += ' ';
  }
  return result + (is_cut ? "...`" : "`");
}

std::string counted(std::uint64_t count, std::string_view noun) {
  return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

}  // namespace zelk::check

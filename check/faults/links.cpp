#include "check/faults/links.hpp"

#include "zelk/records.h"

namespace zelk::check {

bool Links::has_link(std::uint32_t relation) {
  const Statement& statement = in_.statement(relation);
  const std::string_view node = in_.document.text_of(statement, Role::kNodeRef);
  const std::uint32_t object = object_of(statement);
  if (node == ZELK_NO_NODE || object == kNoStatement) return true;
  const bool is_message = in_.statement(object).kind == Word::kMessage;
  return nodes_of(is_message ? sender_list(object) : object).contains(node);
}

std::uint32_t Links::object_of(const Statement& relation) const {
  const auto id = whole_value(in_.document, relation, Role::kMessageRef);
  if (!id) return in_.names.variable(in_.document.text_of(relation, Role::kVariableRef));
  const std::uint32_t message = in_.names.message(*id);
  const Token* const signal = in_.document.find(relation, Role::kSignalRef);
  if (!signal || message == kNoStatement) return message;
  return in_.names.signal(message, in_.document.text_of(*signal));
}

std::uint32_t Links::sender_list(std::uint32_t message) {
  for (std::uint32_t i = 0; !has_senders_ && i < in_.document.statements.size(); ++i) {
    const Statement& statement = in_.statement(i);
    if (statement.kind != Word::kTransmitters || !statement.is_readable) continue;
    const auto id = whole_value(in_.document, statement, Role::kMessageRef);
    if (id && in_.document.find(statement, Role::kTransmitter))
      senders_[in_.names.message(*id)] = i;
  }
  has_senders_ = true;
  const auto found = senders_.find(message);
  return found == senders_.end() ? message : found->second;
}

const Links::NameSet& Links::nodes_of(std::uint32_t statement) {
  const auto [entry, is_new] = nodes_.try_emplace(statement);
  if (!is_new) return entry->second;
  for (const Token& token : in_.document.tokens_of(in_.statement(statement))) {
    const bool is_link = token.role == Role::kReceiver || token.role == Role::kTransmitter ||
                         token.role == Role::kAccessNode;
    if (is_link) entry->second.insert(in_.document.text_of(token));
  }
  return entry->second;
}

}  // namespace zelk::check

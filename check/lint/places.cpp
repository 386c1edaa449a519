#include "check/lint/places.hpp"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include "base/list.hpp"

namespace zelk::check {

namespace {

/// Behind the last statement in front of a byte that ends the reading.
std::uint32_t end_of_reading(const Document& document) {
  const auto fault = std::ranges::find(document.faults, FaultKind::kEndByte, &Fault::kind);
  if (fault == document.faults.end()) return static_cast<std::uint32_t>(document.statements.size());
  const auto behind =
      std::ranges::lower_bound(document.statements, fault->token, {}, &Statement::first);
  return static_cast<std::uint32_t>(behind - document.statements.begin());
}

/// Of records in the order of their statements; those without a place come last.
template <typename Placed>
const Placed* at(std::span<const Placed> all, std::uint32_t statement) {
  const auto found = std::ranges::lower_bound(all, statement, {}, &Placed::statement);
  return found != all.end() && found->statement == statement ? &*found : nullptr;
}

}  // namespace

Places::Places(const Document& document, const Names& names, const RecordsView& records)
    : document_(document), end_(end_of_reading(document)) {
  place_messages(records.messages);
  place_variables(records.env_vars);
  place_nodes(records.nodes, names);
}

void Places::place_messages(const msgblk* first) {
  const auto& statements = document_.statements;
  std::uint32_t at = 0;
  for (const msgblk& message : each(first)) {
    const auto is_wanted = [&](const Statement& statement) {
      return statement.kind == Word::kMessage && statement.is_readable &&
             whole_value(document_, statement, Role::kMessageId) == message.id;
    };
    while (at < end_ && !is_wanted(statements[at])) ++at;
    const std::uint32_t found = at < end_ ? at : Statement::kNone;
    const auto first_signal = static_cast<std::uint32_t>(signals_.size());
    place_signals(message, found);
    messages_.push_back(
        {&message, found, first_signal, static_cast<std::uint32_t>(signals_.size())});
    if (at < end_) ++at;
  }
}

/// The signals of a message stand behind it. When they are as many as there are records they belong
/// to each other in this order, whatever their names; else by their names.
void Places::place_signals(const msgblk& message, std::uint32_t statement) {
  const auto& statements = document_.statements;
  const auto is_own = [&](std::uint32_t index) {
    return index < end_ && statements[index].kind == Word::kSignal && statements[index].is_readable;
  };
  std::uint32_t at = statement == Statement::kNone ? end_ : statement + 1;
  std::size_t spare = 0;  // statements beyond the number of records
  for (std::uint32_t index = at; is_own(index); ++index) ++spare;
  const std::size_t count = each(message.signals).size();
  const bool fits = spare == count;
  for (const sigblk& signal : each(message.signals)) {
    const auto is_named = [&](std::uint32_t index) {
      return fits || document_.text_of(statements[index], Role::kSignal) == view(signal.name);
    };
    while (is_own(at) && !is_named(at)) ++at;
    signals_.push_back({&signal, is_own(at) ? at : Statement::kNone});
    if (is_own(at)) ++at;
  }
}

void Places::place_variables(const env_var_blk* first) {
  const auto& statements = document_.statements;
  std::uint32_t at = 0;
  for (const env_var_blk& variable : each(first)) {
    const auto is_wanted = [&](const Statement& statement) {
      return statement.kind == Word::kVariable && statement.is_readable &&
             whole_value(document_, statement, Role::kVariableId) == variable.id;
    };
    while (at < end_ && !is_wanted(statements[at])) ++at;
    variables_.push_back({&variable, at < end_ ? at : Statement::kNone});
    if (at < end_) ++at;
  }
}

/// The listed nodes stand in front of those of which the reader makes nodes where they are used.
void Places::place_nodes(const symblk* first, const Names& names) {
  std::unordered_set<std::string_view, SeededHash> known;
  std::vector<std::uint32_t> listed;
  for (const Statement& statement : std::span(document_.statements).first(end_)) {
    if (statement.kind != Word::kNodes) continue;
    for (const Token& token : document_.tokens_of(statement)) {
      const std::string_view name = document_.text_of(token);
      const bool is_node = token.role == Role::kNode && name != ZELK_NO_NODE;
      if (is_node && known.insert(name).second)
        listed.push_back(static_cast<std::uint32_t>(&token - document_.tokens.data()));
    }
    break;
  }
  for (const symblk& node : each(first)) {
    const bool is_listed = nodes_.size() < listed.size();
    const std::uint32_t token = is_listed ? listed[nodes_.size()] : names.node(view(node.name));
    nodes_.push_back({&node, token});
  }
  listed_nodes_ = std::min(listed.size(), nodes_.size());
}

const PlacedMessage* Places::message_at(std::uint32_t statement) const {
  return at(messages(), statement);
}

const PlacedSignal* Places::signal_at(std::uint32_t statement) const {
  const PlacedMessage* const message = message_at(document_.statements[statement].owner);
  return message ? at(signals(*message), statement) : nullptr;
}

const PlacedVariable* Places::variable_at(std::uint32_t statement) const {
  return at(variables(), statement);
}

}  // namespace zelk::check

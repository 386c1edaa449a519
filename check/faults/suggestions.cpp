#include "check/faults/suggestions.hpp"

#include <algorithm>

#include "base/edit_distance.hpp"
#include "zelk/records.h"

namespace zelk::check {

namespace {

constexpr std::size_t kMostNames = 3;

/// The role of the names that a reference of this kind could have meant.
Role introduced_by(FaultKind kind) {
  switch (kind) {
    case FaultKind::kUnknownNode:
      return Role::kNode;
    case FaultKind::kUnknownVariable:
      return Role::kVariable;
    case FaultKind::kUnknownTable:
      return Role::kTable;
    case FaultKind::kUnknownType:
      return Role::kType;
    case FaultKind::kUnknownAttribute:
      return Role::kAttribute;
    case FaultKind::kUnknownCategory:
      return Role::kCategoryNumber;
    default:
      return Role::kNone;
  }
}

}  // namespace

std::string Suggestions::for_reference(const Fault& fault) {
  const Role role = introduced_by(fault.kind);
  const bool is_in_frame =
      fault.kind == FaultKind::kUnknownMessage || fault.kind == FaultKind::kUnknownSignal;
  if (role == Role::kNone && !is_in_frame) return {};  // other faults can lie behind all tokens
  const std::string_view name = document_.content_of(document_.tokens[fault.token]);
  if (!is_in_frame) return nearest(name, names_with(role));
  return fault.kind == FaultKind::kUnknownMessage ? for_message(fault, name)
                                                  : for_signal(fault, name);
}

std::string Suggestions::for_keyword(std::string_view name) const {
  std::string_view best;
  std::size_t least = std::min<std::size_t>(name.size() / 2, 2) + 1;
  for (int i = 1; i < static_cast<int>(Word::kAnnounced); ++i) {
    const Word word = static_cast<Word>(i);
    if (place_of(word) == 0) continue;
    const std::size_t distance = edit_distance(name, spelling(word), least - 1);
    if (distance >= least) continue;
    least = distance;
    best = spelling(word);
  }
  return best.empty() ? std::string() : "did you mean \"" + std::string(best) + "\"?";
}

std::string Suggestions::for_item(std::uint32_t definition, std::string_view text) {
  std::vector<std::string_view> items;
  for (const Token& token : document_.tokens_of(document_.statements[definition]))
    if (token.role == Role::kItem) items.push_back(document_.content_of(token));
  return nearest(text, items);
}

/// The other frame format, the message with the signal of the statement, or a number that is
/// spelled alike.
std::string Suggestions::for_message(const Fault& fault, std::string_view id) {
  const auto value = whole_value(document_, document_.tokens[fault.token]);
  const std::uint32_t other = value ? names_.message(*value ^ ZELK_ID_EXTENDED) : kNoStatement;
  if (other != kNoStatement) return "with the other frame format, there is " + message_words(other);
  const std::string_view signal =
      document_.text_of(document_.statements[fault.statement], Role::kSignalRef);
  const std::uint32_t owner = signal.empty() ? kNoStatement : message_of_signal(signal);
  if (owner != kNoStatement) return "a signal of this name is in " + message_words(owner);
  return nearest(id, names_with(Role::kMessageId));
}

/// A name of the message that is spelled alike, or the only message with such a signal.
std::string Suggestions::for_signal(const Fault& fault, std::string_view name) {
  std::vector<std::string_view> names;
  for (std::uint32_t i = fault.related + 1; i < document_.statements.size(); ++i) {
    const Statement& statement = document_.statements[i];
    if (statement.owner != fault.related || names.size() == comparisons_left_) break;
    names.push_back(document_.text_of(statement, Role::kSignal));
  }
  std::string near = nearest(name, names);
  if (!near.empty()) return near;
  const std::uint32_t owner = message_of_signal(name);
  return owner == kNoStatement ? near : "a signal of this name is in " + message_words(owner);
}

std::string Suggestions::nearest(std::string_view typed,
                                 const std::vector<std::string_view>& names) {
  const std::size_t limit = suggestion_distance(typed);
  std::vector<std::pair<std::size_t, std::string_view>> near;
  for (const std::string_view name : names) {
    if (comparisons_left_ == 0) break;
    --comparisons_left_;
    const std::size_t distance = limit == 0 ? 1 : edit_distance(name, typed, limit);
    if (distance <= limit) near.emplace_back(distance, name);
  }
  std::ranges::sort(near);
  near.erase(std::unique(near.begin(), near.end()), near.end());
  near.resize(std::min(near.size(), kMostNames));
  std::string text;
  for (const auto& [distance, name] : near)
    text.append(text.empty() ? "did you mean " : " or ").append(name);
  return text.empty() ? text : text + "?";
}

const std::vector<std::string_view>& Suggestions::names_with(Role role) {
  const auto [entry, is_new] = by_role_.try_emplace(static_cast<int>(role));
  if (!is_new) return entry->second;
  for (const Token& token : document_.tokens) {
    if (token.role == role && token.kind != TokenKind::kMark)
      entry->second.push_back(document_.content_of(token));
  }
  return entry->second;
}

std::uint32_t Suggestions::message_of_signal(std::string_view name) {
  if (!has_signals_) {
    has_signals_ = true;
    for (const Statement& statement : document_.statements) {
      const bool is_known = statement.kind == Word::kSignal && statement.is_readable;
      if (!is_known || statement.owner == kNoStatement) continue;
      const auto [entry, is_new] =
          signals_.try_emplace(document_.text_of(statement, Role::kSignal), statement.owner);
      if (!is_new) entry->second = kNoStatement;
    }
  }
  const auto found = signals_.find(name);
  return found == signals_.end() ? kNoStatement : found->second;
}

std::string Suggestions::message_words(std::uint32_t message) const {
  const Statement& statement = document_.statements[message];
  return "message " + std::string(document_.text_of(statement, Role::kMessageId)) + " " +
         std::string(document_.text_of(statement, Role::kMessage));
}

}  // namespace zelk::check

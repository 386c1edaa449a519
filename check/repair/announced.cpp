#include "check/repair/announced.hpp"

#include <algorithm>
#include <span>
#include <string>

#include "base/characters.hpp"
#include "check/findings/sentences.hpp"
#include "zelk/records.h"

namespace zelk::check {

namespace {

/// Behind the list, a statement of a kind that it announces no more would become a part of it.
void drop_announced(Mender& mender, const NameSet& kinds) {
  if (kinds.empty()) return;
  for (std::uint32_t i = 0; i < mender.document.statements.size(); ++i) {
    const Statement& statement = mender.statement(i);
    if (statement.kind == Word::kAnnounced && kinds.contains(mender.text_of(statement.first)))
      mender.drop(FaultKind::kStray, i, "it begins no statement");
  }
}

}  // namespace

NameSet announced_names(const Document& document) {
  NameSet names;
  for (const Statement& statement : document.statements) {
    if (statement.kind != Word::kNewSymbols) continue;
    for (const Token& token : document.tokens_of(statement))
      if (token.kind == TokenKind::kName) names.insert(document.announced_name(token));
  }
  return names;
}

void insert_names(const Document& document, const Token& token, NameSet& names) {
  const bool is_odd = token.kind == TokenKind::kOddName || token.kind == TokenKind::kOddNumber;
  if (token.kind != TokenKind::kName && !is_odd) return;
  const std::string_view text = document.text_of(token);
  for (auto at = text.begin(); at != text.end();) {
    // Digits in front are a number.
    const auto begin = std::find_if(at, text.end(), is_letter);
    at = std::find_if_not(begin, text.end(), is_name_character);
    if (begin != at) names.insert(std::string_view(begin, at));
  }
}

NameSet names_in_front(const Document& document, const Statement& end) {
  NameSet names{ZELK_NO_NODE};  // which mends add
  for (const Token& token : std::span(document.tokens).first(end.first))
    insert_names(document, token, names);
  return names;
}

void forget_used_names(Mender& mender, std::uint32_t list) {
  const Statement& statement = mender.statement(list);
  if (mender.is_settled(list) || !mender.is_on(FaultKind::kOrder)) return;
  const NameSet used = names_in_front(mender.document, statement);
  NameSet forgotten;
  for (std::uint32_t i = statement.first; i < statement.end; ++i) {
    const Token& token = mender.token(i);
    const bool is_used =
        token.kind == TokenKind::kName && used.contains(mender.document.announced_name(token));
    if (!is_used) continue;
    forgotten.insert(mender.document.announced_name(token));
    mender.erase_tokens(i, i + 1);
    mender.note(FaultKind::kOrder, list, i, i + 1,
                shown(mender.text_of(i)) +
                    " removed from the list of new symbols, statements in front use the name");
  }
  drop_announced(mender, forgotten);
}

void drop_next_to_list(Mender& mender, std::uint32_t list) {
  const auto is_announced = [&](std::uint32_t index) {
    return mender.statement(index).kind == Word::kAnnounced;
  };
  for (std::uint32_t i = list + 1; i < mender.document.statements.size(); ++i) {
    if (is_announced(i)) mender.drop(FaultKind::kStray, i, "it begins no statement");
    if (!mender.is_dropped(i)) return;
  }
}

}  // namespace zelk::check

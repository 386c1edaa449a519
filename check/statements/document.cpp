#include "check/statements/document.hpp"

#include <algorithm>
#include <utility>

#include "check/statements/forms.hpp"
#include "check/statements/tokenizer.hpp"

namespace zelk::check {

namespace {

/// Gives the faults in characters the statements in which they stand.
void place_faults(Document& document, std::size_t count) {
  std::uint32_t statement = 0;
  for (Fault& fault : std::span(document.faults).first(count)) {
    while (statement < document.statements.size() &&
           document.statements[statement].end <= fault.token)
      ++statement;
    if (statement < document.statements.size()) fault.statement = statement;
  }
}

}  // namespace

std::string_view Document::content_of(const Token& token) const {
  std::string_view text = text_of(token);
  const bool is_text = token.kind == TokenKind::kText || token.kind == TokenKind::kOpenText;
  if (is_text) text.remove_prefix(1);
  if (token.kind == TokenKind::kText) text.remove_suffix(1);
  return text;
}

const Token* Document::find(const Statement& statement, Role role) const {
  const auto range = tokens_of(statement);
  const auto found = std::ranges::find(range, role, &Token::role);
  return found == range.end() ? nullptr : &*found;
}

std::string_view Document::text_of(const Statement& statement, Role role) const {
  const Token* const token = find(statement, role);
  return token ? content_of(*token) : std::string_view();
}

Document read_document(Source source) {
  Document document{std::move(source), {}, {}, {}};
  Tokens tokens = tokenize(document.source);
  document.tokens = std::move(tokens.tokens);
  document.faults = std::move(tokens.faults);
  const std::size_t count = document.faults.size();
  read_statements(document);
  place_faults(document, count);
  const auto by_token = [](const Fault& a, const Fault& b) { return a.token < b.token; };
  std::inplace_merge(document.faults.begin(),
                     document.faults.begin() + static_cast<std::ptrdiff_t>(count),
                     document.faults.end(), by_token);
  return document;
}

}  // namespace zelk::check

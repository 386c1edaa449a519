#include "check/lint/context.hpp"

namespace zelk::check {

Span LintContext::span_of(std::uint32_t index, Role role) const {
  if (index >= document.statements.size()) return {};
  const Statement& statement = document.statements[index];
  const Token* const token = document.find(statement, role);
  return span_of(token ? *token : document.tokens[statement.first]);
}

}  // namespace zelk::check

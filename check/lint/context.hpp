/// \file
/// What rules see, and how they report.

#ifndef ZELK_CHECK_LINT_CONTEXT_HPP
#define ZELK_CHECK_LINT_CONTEXT_HPP

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "check/lint/known_attributes.hpp"
#include "check/lint/places.hpp"
#include "check/lint/reports.hpp"
#include "check/lint/words.hpp"
#include "check/statements/names.hpp"

namespace zelk::check {

struct LintContext {
  const Document& document;
  const RecordsView& records;
  const Names& names;
  const Places& places;
  const KnownAttributes& attributes;
  Reports& reports;

  std::span<const Statement> statements() const {
    return std::span(document.statements).first(places.end());
  }
  std::uint32_t index_of(const Statement& statement) const {
    return static_cast<std::uint32_t>(&statement - document.statements.data());
  }
  Span span_of(const Token& token) const { return {token.begin, token.end}; }
  /// The first token of the role, or else the keyword; the beginning of the text for no statement.
  Span span_of(std::uint32_t index, Role role) const;

  Span span_of_node(const PlacedNode& node) const {
    return node.token == Statement::kNone ? Span{} : span_of(document.tokens[node.token]);
  }

  /// Reports a finding in a statement.
  ///
  /// @param fill  gets a `Finding&`, and sets its message at least
  template <typename Fill>
  void report(const Rule& rule, std::uint32_t statement, Span span, const Fill& fill) const {
    reports.add(rule, span, [&](Finding& finding) {
      if (statement < document.statements.size())
        finding.statement = describe(document, document.statements[statement]);
      fill(finding);
    });
  }
  template <typename Fill>
  void report(const Rule& rule, std::uint32_t statement, Role role, const Fill& fill) const {
    report(rule, statement, span_of(statement, role), fill);
  }
};

/// Whether this is where tools keep signals that belong to no message: no frame has its identifier,
/// and its signals have no places.
constexpr bool is_pseudo(const msgblk& message) {
  return message.id == 0xC0000000 || message.id == 0x40000000;
}

/// The rules of a subject, and the functions that apply them.
struct RuleGroup {
  std::span<const Rule* const> rules;
  /// Applies those that look at one message; null when there are none.
  void (*check_message)(const LintContext& context, const PlacedMessage& message);
  /// Applies the others; null when there are none.
  void (*check_database)(const LintContext& context);
};

extern const RuleGroup kIdentifierRules;
extern const RuleGroup kLayoutRules;
extern const RuleGroup kOverlapRules;
extern const RuleGroup kMultiplexingRules;
extern const RuleGroup kRangeRules;
extern const RuleGroup kDescriptionRules;
extern const RuleGroup kAttributeRules;
extern const RuleGroup kNodeRules;
extern const RuleGroup kJ1939Rules;
extern const RuleGroup kNameRules;
extern const RuleGroup kTextRules;

}  // namespace zelk::check

#endif

// Value descriptions.

#include <algorithm>
#include <vector>

#include "base/numbers.hpp"
#include "check/lint/context.hpp"
#include "check/lint/value_range.hpp"

namespace zelk::check {

namespace {

constexpr Rule kRange{
    "description-range",
    Severity::kWarning,
    "A value description is for a value that the signal cannot have",
    "VAL_ describes raw values: with 3 bits 0 to 7, or -4 to 3 when the signal is signed. The text "
    "of "
    "another value is never shown.",
    " SG_ Gear : 0|3@1+ (1,0) [0|7] \"\" Cluster\nVAL_ 256 Gear 8 \"Reverse\" ;\n",
    "Correct the value, the length or the sign of the signal."};

constexpr Rule kDoubled{"doubled-description",
                        Severity::kWarning,
                        "A value is described twice",
                        "Only the first text is shown, and only one of the two can be right.",
                        "VAL_ 256 Gear 0 \"Park\" 1 \"Reverse\" 1 \"Neutral\" ;\n",
                        "Correct the value of one of the two, or delete it."};

struct Description {
  std::int64_t value;
  std::uint32_t token;  ///< its number
};

/// The reader cuts numbers toward 0, and keeps them in 32 bits.
std::int64_t kept_value(const Document& document, const Token& token, bool is_negative) {
  const double value = literal_to_double(document.text_of(token));
  const double kept = std::trunc(is_negative ? -value : value);
  return std::abs(kept) < 9e15 ? static_cast<std::int64_t>(kept) : INT64_MAX;
}

std::vector<Description> descriptions_of(const Document& document, const Statement& statement) {
  std::vector<Description> all;
  bool is_negative = false;
  for (const Token& token : document.tokens_of(statement)) {
    if (token.role != Role::kNumber) continue;
    if (token.kind == TokenKind::kMark) {
      is_negative = token.mark == '-';
      continue;
    }
    const auto index = static_cast<std::uint32_t>(&token - document.tokens.data());
    all.push_back({kept_value(document, token, is_negative), index});
    is_negative = false;
  }
  return all;
}

/// Lists are nearly always in order, one way or the other.
bool is_strictly_ordered(const std::vector<Description>& all) {
  const auto value = &Description::value;
  return std::ranges::is_sorted(all, std::ranges::less_equal{}, value) ||
         std::ranges::is_sorted(all, std::ranges::greater_equal{}, value);
}

void check_doubled(const LintContext& context, std::uint32_t statement,
                   std::vector<Description> all) {
  if (is_strictly_ordered(all)) return;
  std::ranges::stable_sort(all, {}, &Description::value);
  const Description* first = &all.front();
  for (const Description& description : std::span(all).subspan(1)) {
    if (description.value != first->value) {
      first = &description;
      continue;
    }
    const Span span = context.span_of(context.document.tokens[description.token]);
    context.report(kDoubled, statement, span, [&](Finding& finding) {
      finding.message = join("the value ", description.value, " is described twice");
      finding.related.push_back(
          {context.span_of(context.document.tokens[first->token]), "the first description"});
    });
  }
}

void check_range(const LintContext& context, const sigblk& signal, std::uint32_t statement,
                 const std::vector<Description>& all) {
  if (is_ieee(signal) || signal.length == 0) return;
  const ValueRange range = raw_range(signal);
  for (const Description& description : all) {
    const auto value = static_cast<double>(description.value);
    if (range.low <= value && value <= range.high) continue;
    const Span span = context.span_of(context.document.tokens[description.token]);
    context.report(kRange, statement, span, [&](Finding& finding) {
      finding.message =
          join("signal ", view(signal.name), " cannot have the value ", description.value, ": ",
               counted(signal.length, "bit"), signal.length > 1 ? " give " : " gives ", range.low,
               " to ", range.high);
    });
  }
}

/// The signal that a "VAL_" statement is about; null for an environment variable.
const sigblk* signal_of(const LintContext& context, const Statement& statement) {
  const auto id = whole_value(context.document, statement, Role::kMessageRef);
  if (!id) return nullptr;
  const std::uint32_t message = context.names.message(*id);
  if (message == Statement::kNone) return nullptr;
  const std::uint32_t signal =
      context.names.signal(message, context.document.text_of(statement, Role::kSignalRef));
  const PlacedSignal* const placed =
      signal == Statement::kNone ? nullptr : context.places.signal_at(signal);
  return placed ? placed->record : nullptr;
}

void check_database(const LintContext& context) {
  for (const Statement& statement : context.statements()) {
    const bool is_own = statement.kind == Word::kDescriptions;
    if (!statement.is_readable || (!is_own && statement.kind != Word::kValueTable)) continue;
    const std::uint32_t index = context.index_of(statement);
    std::vector<Description> all = descriptions_of(context.document, statement);
    if (const sigblk* const signal = is_own ? signal_of(context, statement) : nullptr)
      check_range(context, *signal, index, all);
    check_doubled(context, index, std::move(all));
  }
}

constexpr const Rule* kRules[] = {&kRange, &kDoubled};

}  // namespace

const RuleGroup kDescriptionRules = {kRules, nullptr, check_database};

}  // namespace zelk::check

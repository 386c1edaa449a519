#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "base/seeded_hash.hpp"
#include "check/faults/analysis.hpp"
#include "check/faults/links.hpp"
#include "zelk/records.h"

namespace zelk::check {

namespace {

constexpr std::size_t kStretch = 16384;  // statements

bool has_references(const Statement& statement) {
  switch (statement.kind) {
    case Word::kNone:
    case Word::kAnnounced:
    case Word::kVersion:
    case Word::kNewSymbols:
    case Word::kBitTiming:
    case Word::kNodes:
    case Word::kValueTable:
    case Word::kMessage:
    case Word::kSignal:
    case Word::kVariable:
    case Word::kDefinition:
    case Word::kRelationDefinition:
      return false;
    default:
      return statement.is_readable;
  }
}

/// Attributes are found elsewhere, with their values.
class ReferenceFaults {
 public:
  explicit ReferenceFaults(const Analysis& analysis) : in_(analysis), links_(analysis) {}

  void find(std::atomic<std::size_t>& next) {
    const std::size_t count = in_.document.statements.size();
    for (std::size_t first = next++ * kStretch; first < count; first = next++ * kStretch) {
      for (std::size_t i = first; i < std::min(first + kStretch, count); ++i)
        if (has_references(in_.document.statements[i])) find(static_cast<std::uint32_t>(i));
    }
  }

 private:
  void find(std::uint32_t index) {
    statement_ = index;
    message_ = kNoStatement;
    const std::size_t count = in_.faults.size();
    for (const Token& token : in_.document.tokens_of(in_.statement(index))) find(token);
    const bool is_relation = in_.statement(index).kind == Word::kRelationAttribute;
    if (!is_relation || in_.faults.size() != count || links_.has_link(index)) return;
    in_.add(FaultKind::kUnknownLink, index,
            *in_.document.find(in_.statement(index), Role::kNodeRef))
        .is_accepted = true;
  }

  void find(const Token& token) {
    const std::string_view name = in_.document.text_of(token);
    switch (token.role) {
      case Role::kMessageRef:
        if (const auto id = whole_value(in_.document, token)) message_ = in_.names.message(*id);
        return check(token, message_, FaultKind::kUnknownMessage);
      case Role::kSignalRef:
      case Role::kMultiplexorRef:
        return check_signal(token);
      case Role::kNodeRef:
        if (name == ZELK_NO_NODE) return;
        return check(token, in_.names.node(name), FaultKind::kUnknownNode);
      case Role::kVariableRef:
        return check_variable(token);
      case Role::kTableRef:
        return check(token, in_.names.table(name), FaultKind::kUnknownTable);
      case Role::kTypeRef:
        return check(token, in_.names.type(name), FaultKind::kUnknownType);
      case Role::kCategoryRef:
        return check_category(token);
      default:
        return;
    }
  }

  void check(const Token& token, std::uint32_t found, FaultKind kind) const {
    if (found == kNoStatement) in_.add(kind, statement_, token);
  }

  /// A signal of an unknown message is no second fault.
  void check_signal(const Token& token) const {
    if (message_ == kNoStatement) return;
    const bool is_known = in_.names.signal(message_, in_.document.text_of(token)) != kNoStatement;
    if (!is_known) in_.add(FaultKind::kUnknownSignal, statement_, token).related = message_;
  }

  /// The reader only notes the size of data of a variable that there is not.
  void check_variable(const Token& token) const {
    if (in_.names.variable(in_.document.text_of(token)) != kNoStatement) return;
    const Word kind = in_.statement(statement_).kind;
    in_.add(FaultKind::kUnknownVariable, statement_, token).is_accepted =
        kind == Word::kData || kind == Word::kVariableData;
  }

  /// Category 0 is none; an object that is no node has none either.
  void check_category(const Token& token) const {
    const auto value = whole_value(in_.document, token);
    if (!value || *value == 0) return;
    const Statement& statement = in_.statement(statement_);
    if (statement.kind == Word::kCategory &&
        in_.document.text_of(statement, Role::kNodeRef) == ZELK_NO_NODE)
      return;
    const std::uint32_t index = in_.index_of(token);
    const bool is_negative = in_.document.tokens[index - 1].is_mark('-');
    const std::int64_t number = is_negative ? -std::int64_t{*value} : std::int64_t{*value};
    check(token, in_.names.category(number), FaultKind::kUnknownCategory);
  }

  const Analysis& in_;
  Links links_;
  std::uint32_t statement_ = kNoStatement;
  std::uint32_t message_ = kNoStatement;
};

}  // namespace

void find_reference_faults(const Analysis& analysis, std::atomic<std::size_t>& next) {
  ReferenceFaults(analysis).find(next);
}

}  // namespace zelk::check

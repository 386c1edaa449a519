#include "check/repair/doubles.hpp"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/hash_table.hpp"
#include "base/seeded_hash.hpp"
#include "check/findings/sentences.hpp"

namespace zelk::check {

namespace {

using TokenSpan = std::span<const Token>;

bool is_same(const Document& document, TokenSpan a, TokenSpan b) {
  return std::ranges::equal(a, b, [&document](const Token& x, const Token& y) {
    return document.text_of(x) == document.text_of(y);
  });
}

/// Whether the token begins what a statement says about its object.
bool is_content(const Token& token) {
  switch (token.role) {
    case Role::kComment:
    case Role::kValue:
    case Role::kNumber:
    case Role::kValueType:
    case Role::kCategoryRef:
    case Role::kMode:
    case Role::kMultiplexorRef:
      return true;
    default:
      return token.is_mark(':');
  }
}

/// The keyword, and what names the object.
TokenSpan head_of(const Document& document, const Statement& statement) {
  const TokenSpan tokens = document.tokens_of(statement);
  const auto content = std::ranges::find_if(tokens, is_content);
  return tokens.first(static_cast<std::size_t>(content - tokens.begin()));
}

/// Attributes of which statements say different things: which default goes to which definition
/// depends on how many there are.
class DividedAttributes {
 public:
  explicit DividedAttributes(const Document& document) : document_(document) {
    for (const Statement& statement : document.statements)
      if (statement.is_readable && is_about(statement)) enter(statement);
  }

  bool contains(const Statement& statement) const {
    return is_about(statement) && by_name_.at(name_of(statement)).is_divided;
  }

 private:
  struct Firsts {
    const Statement* definition = nullptr;
    const Statement* default_value = nullptr;
    bool is_divided = false;
  };

  static bool is_definition(Word kind) {
    return kind == Word::kDefinition || kind == Word::kRelationDefinition;
  }
  static bool is_about(const Statement& statement) {
    return is_definition(statement.kind) || statement.kind == Word::kDefault ||
           statement.kind == Word::kRelationDefault || statement.kind == Word::kTypeDefinition;
  }

  /// The reader keeps 32 characters.
  std::string_view name_of(const Statement& statement) const {
    const bool is_introduced = is_definition(statement.kind);
    return document_.text_of(statement, is_introduced ? Role::kAttribute : Role::kAttributeRef)
        .substr(0, 32);
  }

  void enter(const Statement& statement) {
    Firsts& firsts = by_name_[name_of(statement)];
    // One of several definitions becomes one for signal types.
    if (statement.kind == Word::kTypeDefinition) firsts.is_divided = true;
    const Statement*& first =
        is_definition(statement.kind) ? firsts.definition : firsts.default_value;
    if (!first) first = &statement;
    if (!is_same(document_, document_.tokens_of(*first), document_.tokens_of(statement)))
      firsts.is_divided = true;
  }

  const Document& document_;
  std::unordered_map<std::string_view, Firsts, SeededHash> by_name_;
};

class Doubles {
 public:
  Doubles(Mender& mender, std::span<const Fault> faults)
      : mender_(mender),
        document_(mender.document),
        divided_(document_),
        candidates_(candidates(faults)),
        first_(candidates_.size()) {}

  void drop() {
    // Signals first: a message is the same as another one that has a signal twice.
    for (const bool is_message : {false, true}) {
      for (const std::uint32_t each : candidates_)
        if (is_message == (document_.statements[each].kind == Word::kMessage)) enter(each);
    }
  }

 private:
  static bool is_introduced(const Statement& statement) {
    return statement.kind == Word::kMessage || statement.kind == Word::kSignal;
  }

  /// What may be said twice: of messages and signals, which are most of a text, those that were
  /// found to be doubled.
  std::vector<std::uint32_t> candidates(std::span<const Fault> faults) const {
    std::vector<std::uint32_t> found;
    for (const Fault& fault : faults) {
      const bool is_doubled =
          fault.kind == FaultKind::kDoubledMessage || fault.kind == FaultKind::kDoubledSignal;
      if (is_doubled) found.insert(found.end(), {fault.statement, fault.related});
    }
    for (std::uint32_t i = 0; i < document_.statements.size(); ++i)
      if (!is_introduced(document_.statements[i])) found.push_back(i);
    std::erase_if(found, [this](std::uint32_t index) { return !may_go(index); });
    std::ranges::sort(found);
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
  }

  bool may_go(std::uint32_t index) const {
    const Statement& statement = document_.statements[index];
    const bool has_place = place_of(statement.kind) >= place_of(Word::kValueTable);
    return has_place && statement.is_readable && !mender_.is_settled(index) &&
           !divided_.contains(statement);
  }

  /// The last statement about the same object counts, so that what is said in between is not lost.
  void enter(std::uint32_t index) {
    const Statement& statement = document_.statements[index];
    const TokenSpan head = head_of(document_, statement);
    const std::uint32_t key = key_of(head, statement.owner);
    const std::uint32_t first = first_.enter(key, index, [&](std::uint32_t other) {
      const Statement& there = document_.statements[other];
      return there.owner == statement.owner && is_same(document_, head, head_of(document_, there));
    });
    const auto [last, is_first] = last_.try_emplace(first, index);
    if (is_first) return;
    if (is_double(last->second, index)) return drop(index, last->second);
    last->second = index;
  }

  std::uint32_t key_of(TokenSpan head, std::uint32_t owner) const {
    std::uint64_t key = owner;
    for (const Token& token : head) key = (key ^ hash_(document_.text_of(token))) * hash_.seed;
    return static_cast<std::uint32_t>(key >> 32);
  }

  bool is_double(std::uint32_t first, std::uint32_t second) const {
    const Statement& a = document_.statements[first];
    const Statement& b = document_.statements[second];
    const bool is_equal = is_same(document_, document_.tokens_of(a), document_.tokens_of(b));
    if (!is_equal || a.kind != Word::kMessage) return is_equal;
    const auto is_equal_signal = [this](std::uint32_t x, std::uint32_t y) {
      return is_same(document_, document_.tokens_of(document_.statements[x]),
                     document_.tokens_of(document_.statements[y]));
    };
    return std::ranges::equal(signals_of(first), signals_of(second), is_equal_signal);
  }

  /// Those that stay so far.
  std::vector<std::uint32_t> signals_of(std::uint32_t message) const {
    std::vector<std::uint32_t> signals;
    for (std::uint32_t i = message + 1; i < document_.statements.size(); ++i) {
      if (document_.statements[i].kind == Word::kMessage) break;
      if (document_.statements[i].owner == message && !mender_.is_dropped(i)) signals.push_back(i);
    }
    return signals;
  }

  void drop(std::uint32_t index, std::uint32_t kept) {
    const Statement& statement = document_.statements[index];
    const FaultKind kind = statement.kind == Word::kMessage  ? FaultKind::kDoubledMessage
                           : statement.kind == Word::kSignal ? FaultKind::kDoubledSignal
                                                             : FaultKind::kDoubledStatement;
    if (!mender_.is_on(kind)) return;
    if (kind == FaultKind::kDoubledMessage) {
      drop_message(index);
    } else {
      mender_.drop(kind, index, "the same stands in front of it");
    }
    const Statement& there = document_.statements[kept];
    mender_.findings.back().related.push_back(
        {{document_.begin_of(there), document_.end_of(there)}, "the one that stays"});
  }

  void drop_message(std::uint32_t index) {
    const std::vector<std::uint32_t> signals = signals_of(index);
    const Statement& statement = document_.statements[index];
    const Statement& last = signals.empty() ? statement : document_.statements[signals.back()];
    const Span span{document_.begin_of(statement), document_.end_of(last)};
    std::string message = describe(document_, statement);
    if (!signals.empty()) message += " with " + counted(signals.size(), "signal");
    mender_.note(FaultKind::kDoubledMessage, span,
                 message + " dropped, the same stands in front of it: " +
                     shown(document_.source.text(span.begin, span.end)));
    mender_.erase(index);
    for (const std::uint32_t signal : signals) mender_.erase(signal);
  }

  Mender& mender_;
  const Document& document_;
  DividedAttributes divided_;
  SeededHash hash_;
  std::vector<std::uint32_t> candidates_;  ///< in their order
  /// The first statement about each object.
  HashTable<std::uint32_t, std::uint32_t, kNoStatement> first_;
  std::unordered_map<std::uint32_t, std::uint32_t> last_;  ///< about the object of a first one
};

}  // namespace

void drop_doubles(Mender& mender, std::span<const Fault> faults) { Doubles(mender, faults).drop(); }

}  // namespace zelk::check

#include "check/patch/patch.hpp"

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "check/patch/full_names.hpp"
#include "check/patch/merge.hpp"
#include "check/patch/renaming.hpp"
#include "check/patch/subjects.hpp"
#include "zelk/records.h"

namespace zelk::check {

namespace {

using Entries = std::span<const Subjects::Entry>;

bool is_frame(Word kind) { return kind == Word::kMessage || kind == Word::kSignal; }

/// Statements whose objects have their final numbers.
class StatementPatch {
 public:
  StatementPatch(const Casts& casts, const Renaming& renaming, Splices& splices)
      : casts_(casts),
        original_text_(casts.original.document()),
        before_text_(casts.before.document()),
        after_text_(casts.after.document()),
        renaming_(renaming),
        original_(casts.original),
        before_(casts.before),
        after_(casts.after),
        splices_(splices),
        merge_(casts, splices),
        partners_(after_text_.statements.size(), kNoPartner) {}

  void run(Nodes nodes) {
    pair_equal(before_.all(), after_.all(), partners_);
    keep_order(partners_);
    if (nodes == Nodes::kAll) list_all_nodes();
    change_and_remove(nodes);
    add();
    remove_orphans();
  }

 private:
  void list_all_nodes() {
    const auto list_in = [](const Document& document) {
      const auto& statements = document.statements;
      const auto found = std::ranges::find(statements, Word::kNodes, &Statement::kind);
      return static_cast<std::uint32_t>(found - statements.begin());
    };
    const std::uint32_t original = list_in(original_text_);
    const std::uint32_t after = list_in(after_text_);
    const bool are_there =
        original < original_text_.statements.size() && after < after_text_.statements.size();
    if (are_there) merge_.change(original, kNoStatement, after);
  }

  // --- Statements that change or go ---

  /// But the list of nodes, where that is changed already.
  void change_and_remove(Nodes nodes) {
    std::vector<std::uint32_t> successors(before_text_.statements.size(), kNoStatement);
    for (std::uint32_t i = 0; i < partners_.size(); ++i)
      if (partners_[i] != kNoPartner) successors[partners_[i]] = i;
    for (std::uint32_t i = 0; i < successors.size(); ++i) {
      const bool is_listed =
          nodes == Nodes::kAll && before_text_.statements[i].kind == Word::kNodes;
      if (before_.all()[i] == 0 || is_listed) continue;
      if (successors[i] == kNoStatement) {
        remove(i);
      } else if (differ(i, successors[i])) {
        change(i, successors[i]);
      }
    }
  }

  bool differ(std::uint32_t before, std::uint32_t after) const {
    const bool is_same_text = before_text_.text_of(before_text_.statements[before]) ==
                              after_text_.text_of(after_text_.statements[after]);
    if (is_same_text && !renaming_.reuses_names()) return false;
    return !merge_.are_equal(before, after);
  }

  /// The original of a statement of `before`: the one that comes as often in both, or else the last
  /// one, which is the one that counts.
  std::uint32_t original_of(std::uint32_t before) const {
    const Entries places = original_.about(before_.all()[before]);
    const Entries befores = before_.about(before_.all()[before]);
    if (places.empty()) return kNoStatement;
    if (befores.size() == 1) return places.back().statement;
    const auto found = std::ranges::find(befores, before, &Subjects::Entry::statement);
    const auto occurrence = static_cast<std::size_t>(found - befores.begin());
    return occurrence < places.size() ? places[occurrence].statement : kNoStatement;
  }

  void remove(std::uint32_t before) {
    const std::uint64_t subject = before_.all()[before];
    const std::uint32_t place = original_of(before);
    if (after_.about(subject).empty()) {
      for (const Subjects::Entry& entry : original_.about(subject))
        if (!stays_unused(before, entry.statement)) splices_.remove(entry.statement);
    } else if (place != kNoStatement) {
      splices_.remove(place);
    }
  }

  /// Whether a definition for long names stays when there are none: the author has spelled it
  /// otherwise than the library would when there are some again.
  bool stays_unused(std::uint32_t before, std::uint32_t original) const {
    const Statement& statement = original_text_.statements[original];
    return defines_full_names(original_text_, statement) &&
           original_text_.text_of(statement) !=
               before_text_.text_of(before_text_.statements[before]);
  }

  void change(std::uint32_t before, std::uint32_t after) {
    const Word kind = after_text_.statements[after].kind;
    const std::uint32_t place = original_of(before);
    if (place == kNoStatement) return insert(after);
    // Value descriptions of several statements become one.
    const Entries places = original_.about(before_.all()[before]);
    const bool is_divided = kind == Word::kDescriptions && places.size() > 1;
    merge_.change(place, is_divided ? kNoStatement : before, after);
    if (!is_divided) return;
    for (const Subjects::Entry& entry : places)
      if (entry.statement != place) splices_.remove(entry.statement);
  }

  // --- New statements ---

  void add() {
    for (std::uint32_t i = 0; i < partners_.size(); ++i) {
      if (partners_[i] != kNoPartner || after_.all()[i] == 0) continue;
      const Entries places = original_.about(after_.all()[i]);
      const bool is_there = !places.empty() && before_.about(after_.all()[i]).empty();
      if (is_there) {
        merge_.change(places.back().statement, kNoStatement, i);
      } else {
        insert(i);
      }
    }
  }

  /// Nothing depends on the list of new symbols.
  void insert(std::uint32_t after) {
    const Word kind = after_text_.statements[after].kind;
    if (kind == Word::kNewSymbols) return;
    std::uint32_t anchor = kNoStatement;
    const bool follows_inserted = after > 0 && after - 1 == last_inserted_ && continues(after);
    bool is_section = false;
    if (follows_inserted) {
      anchor = last_anchor_;
    } else {
      anchor = anchor_in_section(after);
      if (anchor == kNoStatement) {
        anchor = end_of_earlier(kind);
        is_section = anchor == kNoStatement || original_text_.statements[anchor].kind != kind;
      }
    }
    const std::string indentation = kind == Word::kSignal ? indentation_of_signals(anchor) : "";
    splices_.insert(anchor, indentation + merge_.text_of(after),
                    is_section || kind == Word::kMessage);
    last_inserted_ = after;
    last_anchor_ = anchor;
  }

  /// Whether a statement stands in the section of the one in front of it.
  bool continues(std::uint32_t after) const {
    const Word kind = after_text_.statements[after].kind;
    const Word previous = after_text_.statements[after - 1].kind;
    return kind == previous || (is_frame(kind) && is_frame(previous));
  }

  /// The original statement behind which a new one belongs, by what stands in front of it in its
  /// section.
  std::uint32_t anchor_in_section(std::uint32_t after) const {
    const Word kind = after_text_.statements[after].kind;
    for (std::uint32_t i = after; i > 0 && continues(i); --i) {
      const std::uint32_t before = partners_[i - 1];
      const std::uint32_t place = before == kNoPartner ? kNoStatement : original_of(before);
      if (place != kNoStatement) return kind == Word::kMessage ? end_of_message(place) : place;
    }
    return kNoStatement;
  }

  /// The last signal of the message of a statement.
  std::uint32_t end_of_message(std::uint32_t place) const {
    const auto& statements = original_text_.statements;
    while (place + 1 < statements.size() && statements[place + 1].kind == Word::kSignal) ++place;
    return place;
  }

  /// The last statement of the section, or of those in front of it.
  std::uint32_t end_of_earlier(Word kind) const {
    for (auto i = static_cast<std::uint32_t>(original_text_.statements.size()); i-- > 0;) {
      const int place = place_of(original_text_.statements[i].kind);
      if (place != 0 && place <= place_of(kind)) return i;
    }
    return kNoStatement;
  }

  std::string indentation_of_signals(std::uint32_t anchor) const {
    const auto& statements = original_text_.statements;
    const bool is_signal = anchor != kNoStatement && statements[anchor].kind == Word::kSignal;
    if (is_signal) return splices_.indentation_at(anchor);
    const auto found = std::ranges::find(statements, Word::kSignal, &Statement::kind);
    if (found == statements.end()) return " ";
    return splices_.indentation_at(static_cast<std::uint32_t>(found - statements.begin()));
  }

  // --- Statements that the library does not write ---

  /// Those of the original that say nothing to the records, but are about objects that go, or about
  /// what changes.
  void remove_orphans() {
    const bool has_gone = has_gone_objects();
    for (std::uint32_t i = 0; i < original_text_.statements.size(); ++i) {
      if (original_.all()[i] == 0 || is_written(original_.all()[i])) continue;
      if ((has_gone && names_gone_object(i)) || has_outdated_ranges(i)) {
        splices_.remove(i);
      } else if (original_text_.statements[i].kind == Word::kTransmitters) {
        follow_sender(i);
      }
    }
  }

  bool has_gone_objects() const {
    for (std::size_t i = 0; i < kCastKinds; ++i) {
      const auto kind = static_cast<CastKind>(i);
      for (std::uint32_t object = 0; object < casts_.before.count(kind); ++object)
        if (!casts_.after.token(kind, object)) return true;
    }
    return false;
  }

  bool is_written(std::uint64_t subject) const {
    return !before_.about(subject).empty() || !after_.about(subject).empty();
  }

  bool names_gone_object(std::uint32_t original) const {
    for (const Token& token : original_text_.tokens_of(original_text_.statements[original])) {
      const std::uint32_t object = casts_.original.object(original, token);
      const CastKind kind = Cast::kind_of(token.role).kind;
      if (object != kNoStatement && !casts_.after.token(kind, object)) return true;
    }
    return false;
  }

  /// Whether it has ranges of a signal that is now selected otherwise.
  bool has_outdated_ranges(std::uint32_t original) const {
    if (original_text_.statements[original].kind != Word::kMultiplexorRanges) return false;
    const std::uint32_t signal = object_of(original, Role::kSignalRef);
    const auto indicator = [&](const Cast& cast) {
      const std::uint32_t statement = cast.statement(CastKind::kSignal, signal);
      if (statement == kNoStatement) return std::string_view();
      return cast.document().text_of(cast.document().statements[statement], Role::kIndicator);
    };
    return indicator(casts_.before) != indicator(casts_.after);
  }

  /// A list with the sender alone that the message's line has, too, goes along with that.
  void follow_sender(std::uint32_t original) {
    const std::uint32_t message = object_of(original, Role::kMessageRef);
    if (sender_of(casts_.before, message) == sender_of(casts_.after, message)) return;
    const std::string sender =
        merge_.name_in(casts_.after.statement(CastKind::kMessage, message), Role::kTransmitter);
    if (sender == ZELK_NO_NODE) return splices_.remove(original);
    const auto tokens = original_text_.tokens_of(original_text_.statements[original]);
    const auto first = std::ranges::find(tokens, Role::kTransmitter, &Token::role);
    auto last = first;
    for (auto at = first; at != tokens.end(); ++at)
      if (at->role == Role::kTransmitter) last = at;
    splices_.replace(first->begin, last->end, sender);
  }

  std::uint32_t object_of(std::uint32_t original, Role reference) const {
    const Token* const token = original_text_.find(original_text_.statements[original], reference);
    return casts_.original.object(original, *token);
  }

  static std::uint32_t sender_of(const Cast& cast, std::uint32_t message) {
    const std::uint32_t statement = cast.statement(CastKind::kMessage, message);
    if (statement == kNoStatement) return kNoStatement;
    const Document& document = cast.document();
    const Token* const sender = document.find(document.statements[statement], Role::kTransmitter);
    return sender ? cast.object(statement, *sender) : kNoStatement;
  }

  Casts casts_;
  const Document& original_text_;
  const Document& before_text_;
  const Document& after_text_;
  const Renaming& renaming_;
  Subjects original_;
  Subjects before_;
  Subjects after_;
  Splices& splices_;
  Merge merge_;
  Partners partners_;
  std::uint32_t last_inserted_ = kNoStatement;
  std::uint32_t last_anchor_ = kNoStatement;
};

std::optional<Patched> patch_statements(const Document& original, const Document& before,
                                        const Document& after, Nodes nodes) {
  Cast original_cast(original);
  const Cast before_cast(before);
  Cast after_cast(after);
  after_cast.follow(before_cast);
  if (!original_cast.match(before_cast)) return std::nullopt;
  Splices splices(original);
  const Renaming renaming(before_cast, after_cast);
  StatementPatch({original_cast, before_cast, after_cast}, renaming, splices).run(nodes);
  renaming.apply(original_cast, splices);  // names that nothing else replaces
  return splices.apply();
}

/// The offset of the byte that ends the reading of a text; none when it is read to its end.
std::optional<std::uint32_t> end_byte_of(const Document& document) {
  const auto found = std::ranges::find(document.faults, FaultKind::kEndByte, &Fault::kind);
  if (found == document.faults.end()) return std::nullopt;
  const std::uint32_t behind = found->token == 0 ? 0 : document.tokens[found->token - 1].end;
  return static_cast<std::uint32_t>(document.source.text().find('\xFF', behind));
}

Document with_names_in_place(const Document& document, const std::vector<CastKind>& kinds) {
  return read_document(Source(document.source.path(), with_full_names(document, kinds)));
}

}  // namespace

std::optional<Patched> patch(const Document& original, const Document& before,
                             const Document& after, Nodes nodes) {
  if (const auto end = end_byte_of(original)) {
    const std::string_view text = original.source.text();
    const Document head =
        read_document(Source(original.source.path(), std::string(text.substr(0, *end))));
    std::optional<Patched> patched = patch(head, before, after, nodes);
    if (patched) patched->text += text.substr(*end);
    return patched;
  }
  const std::vector<CastKind> kinds = kinds_with_full_names(original);
  if (kinds.empty()) return patch_statements(original, before, after, nodes);
  return patch_statements(original, with_names_in_place(before, kinds),
                          with_names_in_place(after, kinds), nodes);
}

}  // namespace zelk::check

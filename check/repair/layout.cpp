#include "check/repair/layout.hpp"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

#include "base/seeded_hash.hpp"
#include "check/findings/sentences.hpp"
#include "check/repair/announced.hpp"
#include "check/statements/order.hpp"
#include "zelk/records.h"

namespace zelk::check {

namespace {

constexpr int kPlaces = 24;  // from 1 on

/// No frame has this identifier: it is an extended one, of 30 bits.
constexpr std::uint32_t kIdOfStraySignals = 0xC0000000;

// --- Sections that there must be once ---

/// Readable or not, in the order of the text.
std::vector<std::uint32_t> statements_of(const Mender& mender, Word kind) {
  std::vector<std::uint32_t> found;
  for (std::uint32_t i = 0; i < mender.document.statements.size(); ++i)
    if (mender.statement(i).kind == kind && !mender.is_dropped(i)) found.push_back(i);
  return found;
}

/// What follows the colon, as it stands.
std::string_view content_of(const Document& document, const Statement& statement) {
  const auto tokens = document.tokens_of(statement);
  const auto colon = std::ranges::find_if(tokens, [](const Token& t) { return t.is_mark(':'); });
  const bool is_empty = colon == tokens.end() || std::next(colon) == tokens.end();
  return is_empty ? std::string_view()
                  : document.source.text(std::next(colon)->begin, tokens.back().end);
}

/// The name in a list, as the reader keeps it.
std::string_view listed_name(const Document& document, const Statement& list, const Token& token) {
  return list.kind == Word::kNewSymbols ? document.announced_name(token) : document.text_of(token);
}

/// Names that the first section needs no more of: those that it has, and of "NS_" those that other
/// statements use: announced, they would be skipped there, with all up to the next semicolon.
NameSet unneeded_names(const Document& document, const Statement& first) {
  NameSet names;
  for (const Token& token : document.tokens_of(first))
    names.insert(listed_name(document, first, token));
  if (first.kind != Word::kNewSymbols) return names;
  names.insert(ZELK_NO_NODE);  // which mends add
  for (const Statement& each : document.statements) {
    if (each.kind == Word::kNone || each.kind == Word::kNewSymbols) continue;
    for (const Token& token : document.tokens_of(each)) insert_names(document, token, names);
  }
  return names;
}

/// The names of a section that the first one needs, each with a blank in front.
std::string further_names(const Document& document, const Statement& other, NameSet& unneeded) {
  std::string text;
  for (const Token& token : document.tokens_of(other)) {
    const std::string_view name = listed_name(document, other, token);
    if (token.kind == TokenKind::kName && unneeded.insert(name).second)
      text.append(" ").append(name);
  }
  return text;
}

void merge_section(Mender& mender, std::uint32_t first, std::uint32_t other, NameSet& unneeded) {
  const Statement& kept = mender.statement(first);
  const Statement& there = mender.statement(other);
  const bool can_merge = kept.is_readable && there.is_readable && kept.kind != Word::kVersion;
  const std::string name = '"' + std::string(spelling(kept.kind)) + '"';
  if (!can_merge) return mender.drop(FaultKind::kDoubledSection, other, "the file has one already");
  const std::string_view content = content_of(mender.document, there);
  const bool is_timing = kept.kind == Word::kBitTiming;
  std::string added = is_timing ? "" : further_names(mender.document, there, unneeded);
  if (is_timing && content != content_of(mender.document, kept) && !content.empty())
    added = " " + std::string(content);
  mender.note(FaultKind::kDoubledSection, other, there.first, there.end,
              added.empty() ? "second " + name + " dropped, the first needs nothing of it"
                            : "second " + name + " merged into the first:" + added);
  if (!added.empty()) mender.insert_behind_token(kept.end - 1, std::move(added));
  mender.erase(other);
}

void merge_sections(Mender& mender, Word kind) {
  const std::vector<std::uint32_t> found = statements_of(mender, kind);
  // One that is rewritten is read again first, and takes in the others then.
  if (found.size() < 2 || mender.is_settled(found[0])) return;
  NameSet unneeded = unneeded_names(mender.document, mender.statement(found[0]));
  for (const std::uint32_t other : std::span(found).subspan(1))
    merge_section(mender, found[0], other, unneeded);
}

/// In front of the first statement that stands behind the place.
std::uint32_t offset_of(const Mender& mender, int place) {
  const auto& statements = mender.document.statements;
  const auto next = std::ranges::find_if(
      statements, [place](const Statement& each) { return place_of(each.kind) > place; });
  return next == statements.end() ? mender.document.source.size() : mender.document.begin_of(*next);
}

void add_section(Mender& mender, FaultKind fault, Word kind, const std::string& content) {
  if (!mender.is_on(fault)) return;
  const std::string text = std::string(spelling(kind)) + ':' + content;
  const std::uint32_t place = offset_of(mender, place_of(kind));
  mender.note(fault, {place, place}, shown(text) + " added, which no file can do without");
  mender.add(place_of(kind), text);
}

/// The names of the nodes that send, receive or access something, and further ones, each with a
/// blank in front.
std::string linked_nodes(const Mender& mender, std::span<const std::string_view> further) {
  std::unordered_set<std::string_view, SeededHash> seen{ZELK_NO_NODE};
  std::string list;
  const auto add = [&](std::string_view name) {
    const bool is_new = !mender.options.no_node.contains(name) && seen.insert(name).second;
    if (is_new) list.append(" ").append(name);
  };
  for (const Token& token : mender.document.tokens) {
    const bool is_link = token.role == Role::kTransmitter || token.role == Role::kReceiver ||
                         token.role == Role::kAccessNode;
    if (is_link && token.kind == TokenKind::kName) add(mender.document.text_of(token));
  }
  for (const std::string_view name : further) add(name);
  return list;
}

// --- Order ---

/// The place of each statement; 0 for those that go with the one in front of them.
std::vector<int> places_of(const Mender& mender) {
  std::vector<int> places;
  places.reserve(mender.document.statements.size());
  int last = 0;
  for (std::uint32_t i = 0; i < mender.document.statements.size(); ++i) {
    const Word kind = mender.statement(i).kind;
    int place = mender.is_dropped(i) ? 0 : place_of(kind);
    // Definitions for relations may also stand among those for signal types.
    if (kind == Word::kRelationDefinition && last == place + 1) place = last;
    if (place != 0) last = place;
    places.push_back(place);
  }
  return places;
}

/// Statements of one place that move.
struct Run {
  std::uint32_t first = kNoStatement;
  std::uint32_t count = 0;
};

class Order {
 public:
  explicit Order(Mender& mender)
      : mender_(mender), places_(places_of(mender)), stays_(longest_in_order(places_)) {}

  std::vector<Part> parts() {
    const bool is_on = mender_.is_on(FaultKind::kOrder);
    if (is_on) note_moves();
    std::vector<Part> parts = is_on ? sorted_parts() : parts_as_they_stand();
    const std::uint32_t end = parts.back().end;
    if (mender_.needs_line_feed && !ends_line(parts))
      parts.push_back({end, end, std::string(line_end())});
    return parts;
  }

 private:
  // --- What is said ---

  /// One finding for the statements of each place.
  void note_moves() {
    find_neighbours();
    std::array<Run, kPlaces> moved{};
    for (std::uint32_t i = 0; i < places_.size(); ++i) {
      if (places_[i] == 0 || stays_[i]) continue;
      Run& run = moved[static_cast<std::size_t>(places_[i])];
      if (run.count++ == 0) run.first = i;
    }
    for (const Run& run : moved) note_run(run);
  }

  /// The last statement that stays and must stand in front of a place.
  void find_neighbours() {
    last_staying_.fill(kNoStatement);
    for (std::uint32_t i = 0; i < places_.size(); ++i)
      if (stays_[i]) last_staying_[static_cast<std::size_t>(places_[i])] = i;
    for (std::size_t place = 1; place < kPlaces; ++place)
      if (last_staying_[place] == kNoStatement) last_staying_[place] = last_staying_[place - 1];
  }

  void note_run(const Run& run) {
    if (run.count == 0) return;
    const Document& document = mender_.document;
    const Statement& first = mender_.statement(run.first);
    const auto place = static_cast<std::size_t>(places_[run.first]);
    const std::uint32_t before = last_staying_[place - 1];
    std::string message = describe(document, first);
    if (run.count > 1) message += " and " + counted(run.count - 1, "more statement");
    message += " moved to the place of \"" + std::string(spelling(first.kind)) + "\" statements";
    if (before != kNoStatement)
      message += ", behind \"" + std::string(spelling(mender_.statement(before).kind)) + '"';
    mender_.note(FaultKind::kOrder, {document.begin_of(first), document.end_of(first)},
                 std::move(message));
  }

  // --- Parts ---

  std::vector<Part> parts_as_they_stand() {
    std::vector<Part> parts{{0, mender_.document.source.size()}};
    for (const Addition& addition : mender_.additions) {
      const std::uint32_t place = offset_of(mender_, addition.place);
      mender_.edits.insert_before(place, addition.text + std::string(line_end()));
    }
    return parts;
  }

  std::vector<Part> sorted_parts() {
    cut();
    std::vector<Part> parts{{0, header_end_}};
    for (int place = 1; place < kPlaces; ++place) {
      for (const Part& part : by_place_[static_cast<std::size_t>(place)]) append(parts, part);
      add_new(parts, place);
    }
    append(parts, {footer_begin_, mender_.document.source.size()});
    return parts;
  }

  /// Divides the text into the stretches of the places.
  void cut() {
    const auto& statements = mender_.document.statements;
    const std::uint32_t size = mender_.document.source.size();
    std::size_t place = 0;
    header_end_ = statements.empty() ? size : begin_of_line(0);
    std::uint32_t begin = header_end_;
    for (std::uint32_t i = 0; i < statements.size(); ++i) {
      if (places_[i] != 0) place = static_cast<std::size_t>(places_[i]);
      const std::uint32_t end = end_of_line(i);
      auto& list = by_place_[place];
      if (!list.empty() && list.back().end == begin) {
        list.back().end = end;
      } else {
        list.push_back({begin, end});
      }
      begin = end;
    }
    footer_begin_ = begin;
    // What stands in front of all places stays there.
    if (!by_place_[0].empty()) header_end_ = by_place_[0].back().end;
  }

  std::uint32_t begin_of_line(std::uint32_t statement) const {
    return mender_.document.begin_of(mender_.statement(statement));
  }

  /// Behind the line feed that follows a statement, when no other statement stands before that.
  std::uint32_t end_of_line(std::uint32_t statement) const {
    const Document& document = mender_.document;
    const bool is_last = statement + 1 == document.statements.size();
    const std::uint32_t end = document.end_of(mender_.statement(statement));
    const std::uint32_t limit = is_last ? document.source.size() : begin_of_line(statement + 1);
    const std::size_t line_feed = document.source.text(end, limit).find('\n');
    if (line_feed != std::string_view::npos) return end + static_cast<std::uint32_t>(line_feed) + 1;
    return is_last ? limit : end;
  }

  /// With a line end in front, where the parts did not follow each other before.
  void append(std::vector<Part>& parts, const Part& part) {
    if (part.begin == part.end) return;
    Part& last = parts.back();
    const bool follows = last.added.empty() && last.end == part.begin;
    if (follows) {
      last.end = part.end;
      return;
    }
    if (!ends_line(parts)) parts.push_back({part.begin, part.begin, std::string(line_end())});
    parts.push_back(part);
  }

  bool ends_line(const std::vector<Part>& parts) const {
    const Part& last = parts.back();
    const std::string_view text = last.added.empty()
                                      ? mender_.document.source.text(last.begin, last.end)
                                      : std::string_view(last.added);
    return text.empty() ? parts.size() == 1 : text.back() == '\n';
  }

  void add_new(std::vector<Part>& parts, int place) {
    std::string text;
    for (const Addition& addition : mender_.additions)
      if (addition.place == place) text.append(addition.text).append(line_end());
    if (text.empty()) return;
    const std::uint32_t origin = parts.back().end;
    if (!ends_line(parts)) text.insert(0, line_end());
    // Sections of one line stand between empty ones.
    if (place <= place_of(Word::kNodes)) text.append(line_end());
    parts.push_back({origin, origin, std::move(text)});
  }

  std::string_view line_end() const { return mender_.document.source.line_end(); }

  Mender& mender_;
  std::vector<int> places_;
  std::vector<bool> stays_;
  std::array<std::uint32_t, kPlaces> last_staying_{};
  std::array<std::vector<Part>, kPlaces> by_place_;
  std::uint32_t header_end_ = 0;
  std::uint32_t footer_begin_ = 0;
};

}  // namespace

void mend_sections(Mender& mender, std::span<const std::string_view> nodes) {
  const std::vector<std::uint32_t> symbols = statements_of(mender, Word::kNewSymbols);
  if (!symbols.empty()) forget_used_names(mender, symbols[0]);
  if (mender.is_on(FaultKind::kDoubledSection)) {
    for (const Word kind : {Word::kVersion, Word::kNewSymbols, Word::kBitTiming, Word::kNodes})
      merge_sections(mender, kind);
  }
  if (!symbols.empty()) drop_next_to_list(mender, symbols[0]);
  if (statements_of(mender, Word::kBitTiming).empty())
    add_section(mender, FaultKind::kMissingBitTiming, Word::kBitTiming, "");
  const std::vector<std::uint32_t> lists = statements_of(mender, Word::kNodes);
  std::string added = lists.empty() ? linked_nodes(mender, nodes) : "";
  if (lists.empty()) return add_section(mender, FaultKind::kMissingNodes, Word::kNodes, added);
  for (const std::string_view node : nodes) added.append(" ").append(node);
  if (!added.empty())
    mender.insert_behind_token(mender.statement(lists[0]).end - 1, std::move(added));
}

void adopt_signals(Mender& mender) {
  std::uint32_t first = kNoStatement;
  std::uint64_t count = 0;
  for (std::uint32_t i = 0; i < mender.document.statements.size(); ++i) {
    const Statement& statement = mender.statement(i);
    const bool is_orphan = statement.kind == Word::kSignal && statement.owner == kNoStatement;
    if (!is_orphan || mender.is_dropped(i)) continue;
    if (count++ == 0) first = i;
  }
  if (first == kNoStatement || !mender.is_on(FaultKind::kUnknownMessage)) return;
  std::uint32_t id = kIdOfStraySignals;
  while (mender.names.message(id) != kNoStatement) --id;
  const std::string message =
      "BO_ " + std::to_string(id) + " Signals_without_message: 0 " + ZELK_NO_NODE;
  const std::uint32_t place = mender.document.begin_of(mender.statement(first));
  mender.edits.insert_before(place, message + std::string(mender.document.source.line_end()) + ' ');
  mender.note(FaultKind::kUnknownMessage, {place, place},
              "message " + shown(message) + " added for " + counted(count, "signal") +
                  " in front of all messages");
}

std::vector<Part> ordered(Mender& mender) { return Order(mender).parts(); }

}  // namespace zelk::check

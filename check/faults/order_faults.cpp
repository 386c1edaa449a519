/// The order of statements. Those outside the longest sequence that is in order are at fault.

#include <algorithm>
#include <array>

#include "check/faults/analysis.hpp"
#include "check/statements/order.hpp"

namespace zelk::check {

namespace {

constexpr int kPlaces = 24;  // from 1 to 23

bool is_section(Word kind) {
  return kind == Word::kVersion || kind == Word::kNewSymbols || kind == Word::kBitTiming ||
         kind == Word::kNodes;
}

class OrderFaults {
 public:
  explicit OrderFaults(const Analysis& analysis) : in_(analysis) {
    kept_from_.fill(kNoStatement);
    kept_to_.fill(kNoStatement);
  }

  void find() {
    place_statements();
    if (!std::ranges::is_sorted(placed_, {}, &Placed::place)) keep_longest();
    find_kept();
    for (const Placed& placed : placed_)
      if (!placed.is_kept) add_misplaced(placed);
    add_missing(Word::kBitTiming, FaultKind::kMissingBitTiming);
    add_missing(Word::kNodes, FaultKind::kMissingNodes);
  }

 private:
  struct Placed {
    std::uint32_t statement;
    int place;
    bool is_kept = true;
  };

  /// All statements that have a place; for some it depends on what stands in front.
  void place_statements() {
    std::array<std::uint32_t, kPlaces> sections;
    sections.fill(kNoStatement);
    bool has_type_definitions = false;
    for (std::uint32_t i = 0; i < in_.document.statements.size(); ++i) {
      const Statement& statement = in_.statement(i);
      int place = place_of(statement.kind);
      if (place == 0) continue;
      auto& section = sections[static_cast<std::size_t>(place)];
      const bool is_doubled = is_section(statement.kind) && section != kNoStatement;
      const bool is_orphan = statement.kind == Word::kSignal && statement.owner == kNoStatement;
      has_type_definitions |= statement.kind == Word::kTypeDefinition;
      if (statement.kind == Word::kRelationDefinition && has_type_definitions) ++place;
      if (is_doubled) in_.add(FaultKind::kDoubledSection, i).related = section;
      if (is_orphan) in_.add(FaultKind::kOrder, i);
      if (is_doubled || is_orphan) continue;
      section = i;
      placed_.push_back({i, place});
    }
  }

  void keep_longest() {
    std::vector<int> places;
    places.reserve(placed_.size());
    for (const Placed& placed : placed_) places.push_back(placed.place);
    const std::vector<bool> is_kept = longest_in_order(places);
    for (std::size_t i = 0; i < placed_.size(); ++i) placed_[i].is_kept = is_kept[i];
  }

  void find_kept() {
    for (const Placed& placed : placed_) {
      if (!placed.is_kept) continue;
      const auto place = static_cast<std::size_t>(placed.place);
      if (kept_from_[place] == kNoStatement) kept_from_[place] = placed.statement;
      kept_to_[place] = placed.statement;
    }
  }

  /// The first statement that stays with a place behind this one.
  std::uint32_t next_kept(int place) const {
    const auto found =
        std::find_if(kept_from_.begin() + place + 1, kept_from_.end(),
                     [](std::uint32_t statement) { return statement != kNoStatement; });
    return found == kept_from_.end() ? kNoStatement : *found;
  }

  /// The last statement that stays with this place or one in front.
  std::uint32_t last_kept(int place) const {
    while (place > 0 && kept_to_[static_cast<std::size_t>(place)] == kNoStatement) --place;
    return kept_to_[static_cast<std::size_t>(place)];
  }

  void add_misplaced(const Placed& placed) const {
    const std::uint32_t next = next_kept(placed.place);
    const bool is_late = next != kNoStatement && next < placed.statement;
    in_.add(FaultKind::kOrder, placed.statement).related = is_late ? next : last_kept(placed.place);
  }

  void add_missing(Word kind, FaultKind fault) const {
    if (std::ranges::find(in_.document.statements, kind, &Statement::kind) !=
        in_.document.statements.end())
      return;
    const std::uint32_t next = next_kept(place_of(kind));
    const auto all = static_cast<std::uint32_t>(in_.document.tokens.size());
    const std::uint32_t token = next == kNoStatement ? all : in_.statement(next).first;
    in_.faults.push_back({fault, next, token, token});
  }

  const Analysis& in_;
  std::vector<Placed> placed_;
  std::array<std::uint32_t, kPlaces> kept_from_;
  std::array<std::uint32_t, kPlaces> kept_to_;
};

}  // namespace

void find_order_faults(const Analysis& analysis) { OrderFaults(analysis).find(); }

}  // namespace zelk::check

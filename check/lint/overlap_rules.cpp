// Signals that share bits of a frame.
//
// Signals below different values of a multiplexor share bits on purpose: no frame holds both. With
// several multiplexors, which may select each other, two signals are never in one frame when
// some multiplexor above both must have different values for them. Instead of comparing all pairs,
// bits are handed out from the innermost multiplexors on:
//
//  - For each value of a multiplexor, the signals that it selects must have bits of their own, and
//    so must all that is below a multiplexor among them. Its values are passed in ascending order:
//    signals take their bits where a range begins and give them back behind its end.
//  - All bits taken below a multiplexor, for whatever value, count as its own one level higher.
//  - At the top are the signals that are always there.

#include <bit>
#include <map>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "base/multiplexing.hpp"
#include "check/lint/context.hpp"
#include "check/lint/occupancy.hpp"

namespace zelk::check {

namespace {

constexpr Rule kOverlap{
    "overlapping-signals",
    Severity::kWarning,
    "Two signals of one frame share bits, but neither lies within the other",
    "Who sends the frame overwrites one signal with the other, and who receives it reads bits that "
    "belong to both. Signals that a multiplexor never selects together may share bits.",
    " SG_ Speed : 0|12@1+ (1,0) [0|4095] \"\" Cluster\n SG_ Gear : 8|8@1+ (1,0) [0|255] \"\" "
    "Cluster\n",
    "Correct start bits and lengths; where only one signal is sent at a time, multiplex them."};

constexpr Rule kNested{"nested-signals",
                       Severity::kNote,
                       "A signal lies within another one",
                       "Some databases have a signal for a whole group of bits, and one for each "
                       "part of it. Only one of "
                       "the two can be sent: set the parts, and leave the whole alone.",
                       " SG_ Flags : 0|8@1+ (1,0) [0|255] \"\" Cluster\n SG_ Brake : 3|1@1+ (1,0) "
                       "[0|1] \"\" Cluster\n",
                       "Where this is not meant, correct start bits and lengths."};

/// Longer messages than any protocol has are searched up to here.
constexpr std::uint32_t kMostWords = 256;
/// Ranges of a signal beyond these are not looked at.
constexpr std::size_t kMostRanges = 4096;
/// Each signal is compared with others so often, at most.
constexpr std::uint32_t kMostComparisons = 1024;

std::uint32_t words_of(const msgblk& message) {
  return std::min((message.dlc * 8U + kWordBits - 1) / kWordBits, kMostWords);
}

/// Whether any bit has two signals, whatever the multiplexors say: few messages need more.
bool shares_bits(std::span<const PlacedSignal> signals, std::uint32_t words) {
  std::vector<std::uint64_t> held(words);
  std::uint64_t shared = 0;
  for (const PlacedSignal& signal : signals) {
    for_each_word(*signal.record, words, [&](std::uint32_t word, std::uint64_t mask) {
      shared |= held[word] & mask;
      held[word] |= mask;
    });
  }
  return shared != 0;
}

class OverlapSearch {
 public:
  OverlapSearch(const LintContext& context, std::span<const PlacedSignal> signals,
                std::uint32_t words)
      : context_(context),
        signals_(signals),
        words_(words),
        children_(signals.size()),
        below_(signals.size()),
        states_(signals.size()) {}

  void run() {
    link();
    const std::vector<std::uint32_t> order = top_down();
    for (std::size_t i = order.size(); i-- > 0;)
      if (!children_[order[i]].empty()) pass_values(order[i]);
    Occupancy frame(words_);
    for (std::uint32_t i = 0; i < signals_.size(); ++i)
      if (!is_multiplexed(*signals_[i].record)) take(frame, i);
    for (std::uint32_t i = 0; i < signals_.size(); ++i)
      if (!is_multiplexed(*signals_[i].record)) take_below(frame, i);
    report_parts();
  }

 private:
  struct Event {
    std::uint32_t value;
    bool ends;  ///< behind this value, else begins with it
    std::uint32_t signal;
  };

  /// Enters every signal with the multiplexor that selects it.
  void link() {
    std::unordered_map<const sigblk*, std::uint32_t> indexes;
    for (std::uint32_t i = 0; i < signals_.size(); ++i)
      if (is_multiplexor(*signals_[i].record)) indexes.emplace(signals_[i].record, i);
    for (std::uint32_t i = 0; i < signals_.size(); ++i) {
      const auto multiplexor = indexes.find(signals_[i].record->mux_signal);
      if (multiplexor != indexes.end()) children_[multiplexor->second].push_back(i);
    }
  }

  /// Multiplexors in front of those that they select. Signals in a circle are never present, and
  /// are left out.
  std::vector<std::uint32_t> top_down() const {
    std::vector<std::uint32_t> order;
    for (std::uint32_t i = 0; i < signals_.size(); ++i)
      if (!is_multiplexed(*signals_[i].record)) order.push_back(i);
    for (std::size_t next = 0; next < order.size(); ++next)
      order.insert(order.end(), children_[order[next]].begin(), children_[order[next]].end());
    return order;
  }

  void pass_values(std::uint32_t multiplexor) {
    Occupancy now(words_);
    Occupancy ever(words_);
    std::unordered_map<std::uint32_t, std::size_t> open_ranges;
    for (const Event& event : events_of(multiplexor)) {
      std::size_t& open = open_ranges[event.signal];
      if (event.ends) {
        if (--open == 0) free(now, event.signal);
      } else if (++open == 1) {
        take(now, event.signal);
        take_below(now, event.signal);
        note(ever, event.signal);
      }
    }
    below_[multiplexor] = ever.holdings();
  }

  std::vector<Event> events_of(std::uint32_t multiplexor) const {
    std::vector<Event> events;
    for (const std::uint32_t child : children_[multiplexor]) {
      std::size_t count = 0;
      for (const muxor_val_range& range : each(signals_[child].record->mux_ranges)) {
        if (range.low > range.high) continue;
        if (++count > kMostRanges) break;
        events.push_back({range.low, false, child});
        events.push_back({range.high, true, child});
      }
    }
    std::ranges::sort(events, [](const Event& a, const Event& b) {
      return std::tie(a.value, a.ends, a.signal) < std::tie(b.value, b.ends, b.signal);
    });
    return events;
  }

  void take(Occupancy& bits, std::uint32_t signal) {
    for_each_word(*signals_[signal].record, words_, [&](std::uint32_t word, std::uint64_t mask) {
      compare(bits, {word, mask, signal});
      bits.take({word, mask, signal});
    });
  }

  void take_below(Occupancy& bits, std::uint32_t multiplexor) {
    for (const Holding& holding : below_[multiplexor]) {
      compare(bits, holding);
      bits.take(holding);
    }
  }

  /// Takes the bits of the signal and of all below it, silently.
  void note(Occupancy& bits, std::uint32_t signal) const {
    for_each_word(*signals_[signal].record, words_, [&](std::uint32_t word, std::uint64_t mask) {
      bits.take_free({word, mask, signal});
    });
    for (const Holding& holding : below_[signal]) bits.take_free(holding);
  }

  void free(Occupancy& bits, std::uint32_t signal) const {
    for_each_word(*signals_[signal].record, words_,
                  [&](std::uint32_t word, std::uint64_t) { bits.free(word, signal); });
    for (const Holding& holding : below_[signal]) bits.free(holding.word, holding.signal);
  }

  void compare(const Occupancy& bits, const Holding& wanted) {
    bits.visit_others(wanted, [&](const Holding& other) {
      if (states_[wanted.signal].comparisons++ >= kMostComparisons) return false;
      enter({wanted.word, wanted.mask & other.mask, wanted.signal}, other.signal);
      return true;
    });
  }

  /// @param shared  bits of a signal that another one has as well
  void enter(const Holding& shared, std::uint32_t other) {
    const auto [first, second] = std::minmax(shared.signal, other);
    if (has_all_bits(first, second)) return add_part(first, second);
    if (has_all_bits(second, first)) return add_part(second, first);
    if (!states_[second].is_reported) report(first, second, shared);
    states_[second].is_reported = true;
  }

  /// Whether a signal has all bits of the other one, and more.
  bool has_all_bits(std::uint32_t outer, std::uint32_t inner) const {
    const sigblk& whole = *signals_[outer].record;
    const sigblk& part = *signals_[inner].record;
    if (whole.length <= part.length) return false;
    std::uint64_t missing = 0;
    for_each_word(part, words_, [&](std::uint32_t word, std::uint64_t mask) {
      missing |= mask & ~mask_of(whole, word);
    });
    return missing == 0;
  }

  void add_part(std::uint32_t outer, std::uint32_t inner) {
    if (std::exchange(states_[inner].is_part, true)) return;
    parts_[outer].push_back(inner);
  }

  void report(std::uint32_t first, std::uint32_t second, const Holding& shared) const {
    const PlacedSignal& there = signals_[first];
    const std::uint32_t bit =
        shared.word * kWordBits + static_cast<std::uint32_t>(std::countr_zero(shared.mask));
    context_.report(kOverlap, signals_[second].statement, Role::kStart, [&](Finding& finding) {
      finding.message = join("the signal overlaps ", view(there.record->name), ": both have byte ",
                             bit / 8, " bit ", bit % 8);
      finding.related.push_back({context_.span_of(there.statement, Role::kStart),
                                 join("signal ", view(there.record->name))});
    });
  }

  /// Once for each whole.
  void report_parts() const {
    constexpr std::size_t kMostShown = 3;
    for (const auto& part : parts_) {
      const auto& inner = part.second;
      context_.report(kNested, signals_[part.first].statement, Role::kStart, [&](Finding& finding) {
        finding.message = join("within the signal ", inner.size() > 1 ? "lie " : "lies ");
        for (std::size_t i = 0; i < inner.size() && i < kMostShown; ++i)
          append(finding.message, join(i > 0 ? ", " : "", view(signals_[inner[i]].record->name)));
        if (inner.size() > kMostShown)
          append(finding.message, join(" and ", inner.size() - kMostShown, " more"));
      });
    }
  }

  struct State {
    std::uint32_t comparisons = 0;
    bool is_reported = false;
    bool is_part = false;
  };

  const LintContext& context_;
  const std::span<const PlacedSignal> signals_;
  const std::uint32_t words_;
  std::vector<std::vector<std::uint32_t>> children_;  ///< signals that a multiplexor selects
  std::vector<std::vector<Holding>> below_;           ///< bits that those have, and all below them
  std::vector<State> states_;
  std::map<std::uint32_t, std::vector<std::uint32_t>> parts_;  ///< by the signal around them
};

void check_message(const LintContext& context, const PlacedMessage& message) {
  if (is_pseudo(*message.record)) return;
  const auto signals = context.places.signals(message);
  const std::uint32_t words = words_of(*message.record);
  if (shares_bits(signals, words)) OverlapSearch(context, signals, words).run();
}

constexpr const Rule* kRules[] = {&kOverlap, &kNested};

}  // namespace

const RuleGroup kOverlapRules = {kRules, check_message, nullptr};

}  // namespace zelk::check

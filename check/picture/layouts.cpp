#include "check/picture/layouts.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <set>
#include <unordered_map>

#include "base/escaping.hpp"
#include "base/multiplexing.hpp"
#include "base/text_view.hpp"
#include "check/objects/record_words.hpp"
#include "zelk/query.h"

namespace zelk::check {

namespace {

constexpr std::size_t kMaxLayouts = 256;

using Signals = std::vector<const sigblk*>;

struct Range {
  std::uint64_t low;
  std::uint64_t high;  // inclusive
};

/// The values that select one and the same set of signals.
struct Selection {
  Signals signals;
  std::vector<Range> ranges;
};

/// Where the set of selected signals changes: at `value`, `signal` (an index) begins or ceases to
/// be there.
struct Change {
  std::uint64_t value;
  std::size_t signal;
  bool begins;
};

std::vector<Change> changes_of(const Signals& dependants) {
  std::vector<Change> changes;
  for (std::size_t i = 0; i < dependants.size(); ++i) {
    for (const muxor_val_range& range : each(dependants[i]->mux_ranges)) {
      if (range.low > range.high) continue;
      changes.push_back({range.low, i, true});
      changes.push_back({std::uint64_t{range.high} + 1, i, false});
    }
  }
  std::ranges::sort(changes, {}, &Change::value);
  return changes;
}

/// Gathers the stretches of values between changes by the set of signals that they select.
class SelectionList {
 public:
  void add(const std::multiset<std::size_t>& present, Range range, const Signals& dependants) {
    std::vector<std::size_t> set;
    std::ranges::unique_copy(present, std::back_inserter(set));
    const auto [entry, is_new] = index_of_.try_emplace(std::move(set), selections_.size());
    if (is_new) {
      selections_.emplace_back();
      for (const std::size_t i : entry->first) selections_.back().signals.push_back(dependants[i]);
    }
    std::vector<Range>& ranges = selections_[entry->second].ranges;
    if (!ranges.empty() && ranges.back().high + 1 == range.low) {
      ranges.back().high = range.high;
    } else {
      ranges.push_back(range);
    }
  }

  std::size_t size() const { return selections_.size(); }
  std::vector<Selection> take() { return std::move(selections_); }

 private:
  std::vector<Selection> selections_;
  std::map<std::vector<std::size_t>, std::size_t> index_of_;
};

/// At most `limit` + 1 selections, ordered by their lowest value.
std::vector<Selection> selections_of(const Signals& dependants, std::size_t limit) {
  SelectionList list;
  std::multiset<std::size_t> present;
  const std::vector<Change> changes = changes_of(dependants);
  for (std::size_t i = 0; i < changes.size() && list.size() <= limit; ++i) {
    const Change& change = changes[i];
    if (change.begins) {
      present.insert(change.signal);
    } else {
      present.erase(present.find(change.signal));  // every end has its beginning at a lower value
    }
    const bool stretch_follows = i + 1 < changes.size() && changes[i + 1].value != change.value;
    if (stretch_follows && !present.empty())
      list.add(present, {change.value, changes[i + 1].value - 1}, dependants);
  }
  return list.take();
}

class LayoutBuilder {
 public:
  LayoutBuilder(const msgblk& message, Encoding encoding) : encoding_(encoding) {
    for (const sigblk& signal : each(message.signals)) {
      if (is_multiplexed(signal)) {
        dependants_[signal.mux_signal].push_back(&signal);
      } else {
        always_.push_back(&signal);
      }
    }
  }

  Layouts build() {
    if (dependants_.contains(nullptr)) expand(nullptr, "", 0, always_);
    for (const sigblk* signal : always_) expand(signal, "", 0, always_);
    if (result_.layouts.empty()) result_.layouts.push_back({"", always_, "", 0, always_.size()});
    return std::move(result_);
  }

 private:
  /// Adds the layouts of one multiplexor inside `context`, and those of the multiplexors that it
  /// selects. Every step down leaves a signal that depends on the one above it, so a cycle is never
  /// entered.
  void expand(const sigblk* multiplexor, const std::string& condition, std::size_t depth,
              const Signals& context) {
    const auto found = dependants_.find(multiplexor);
    if (found == dependants_.end() || !result_.complete) return;
    for (const Selection& selection : selections_of(found->second, kMaxLayouts)) {
      result_.complete = result_.complete && result_.layouts.size() < kMaxLayouts;
      if (!result_.complete) return;
      const std::string step = condition_of(multiplexor, selection);
      std::string all = condition;
      all.append(all.empty() ? "" : ", ").append(step);
      Layout layout{all, context, step, depth, context.size()};
      layout.signals.insert(layout.signals.end(), selection.signals.begin(),
                            selection.signals.end());
      result_.layouts.push_back(layout);
      for (const sigblk* signal : selection.signals)
        expand(signal, layout.condition, depth + 1, layout.signals);
    }
  }

  /// "Mux = 3, 5..7"; a single value is followed by what it is called.
  std::string condition_of(const sigblk* multiplexor, const Selection& selection) const {
    std::string text =
        multiplexor ? escaped(to_utf8(view(multiplexor->name), encoding_)) : "(no multiplexor)";
    const char* separator = " = ";
    for (const Range& range : selection.ranges) {
      text += separator + range_text(range.low, range.high);
      separator = ", ";
    }
    const Range& first = selection.ranges.front();
    if (!multiplexor || selection.ranges.size() > 1 || first.low != first.high) return text;
    const char* called =
        zelk_get_sig_enumsymbol(multiplexor, static_cast<std::uint32_t>(first.low));
    return called ? text + " " + in_quotes(to_utf8(called, encoding_)) : text;
  }

  Encoding encoding_;
  Signals always_;
  std::unordered_map<const sigblk*, Signals>
      dependants_;  // by multiplexor; null: those without one
  Layouts result_;
};

}  // namespace

Layouts layouts_of(const msgblk& message, Encoding encoding) {
  return LayoutBuilder(message, encoding).build();
}

}  // namespace zelk::check

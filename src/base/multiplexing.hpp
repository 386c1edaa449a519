/// \file
/// Multiplexing: multiplexors are signals whose values select other signals of their message.
///
/// A multiplexor may be selected by another one. Records can make multiplexors select each other in
/// a circle; no signal in a circle or below one is ever present. Walks upwards notice circles by
/// the two classes here. Walks downwards from the signals that are always present never enter one.

#ifndef ZELK_BASE_MULTIPLEXING_HPP
#define ZELK_BASE_MULTIPLEXING_HPP

#include <algorithm>
#include <cstdint>
#include <unordered_map>

#include "base/list.hpp"
#include "zelk/records.h"

namespace zelk {

inline bool is_multiplexor(const sigblk& signal) {
  return (signal.flags & ZELK_SIGNAL_MULTIPLEXOR) != 0;
}

/// Whether a value selects the signal; others are always present.
inline bool is_multiplexed(const sigblk& signal) { return signal.mux_signal || signal.mux_ranges; }

/// Whether the multiplexor's `value` is one of those that select the signal.
inline bool is_selected_by(const sigblk& signal, std::uint32_t value) {
  return find_first(signal.mux_ranges, [value](const muxor_val_range& range) {
    return range.low <= value && value <= range.high;
  });
}

/// Whether the signal is present for more than one value of its multiplexor.
inline bool has_several_values(const sigblk& signal) {
  const muxor_val_range* const first = signal.mux_ranges;
  return find_first(first, [first](const muxor_val_range& range) {
    return range.low != first->low || range.high != first->low;
  });
}

/// Whether "SG_MUL_VAL_" has to say what selects the signal: of the only multiplexor in a message,
/// a single value stands in the "SG_" line already.
///
/// @param is_extended  the message has several multiplexors
inline bool has_range_statement(const sigblk& signal, bool is_extended) {
  return signal.mux_signal && signal.mux_ranges && (is_extended || has_several_values(signal));
}

inline std::size_t count_multiplexors(const msgblk& message) {
  const auto signals = each<const sigblk>(message.signals);
  return static_cast<std::size_t>(std::count_if(signals.begin(), signals.end(), is_multiplexor));
}

/// The multiplexors above a signal, from its own one up. Needs no memory: a second walk at half the
/// pace is met in a circle, after each signal of the circle was given at least once.
class MultiplexorsAbove {
 public:
  explicit MultiplexorsAbove(const sigblk& signal) : at_(&signal), behind_(&signal) {}

  /// Null above the topmost multiplexor, and when the walk has gone round a circle.
  const sigblk* next() {
    at_ = at_->mux_signal;
    if (follows_) behind_ = behind_->mux_signal;
    follows_ = !follows_;
    return at_ == behind_ ? nullptr : at_;
  }

 private:
  const sigblk* at_;
  const sigblk* behind_;
  bool follows_ = false;
};

/// Finds circles of multiplexors among many signals; passes each signal once.
class CircleSearch {
 public:
  /// The signal that a walk up from `start` meets again; null when there is none, or when an
  /// earlier walk has been there.
  const sigblk* circle_above(const sigblk& start) {
    for (const sigblk* signal = &start; signal; signal = signal->mux_signal) {
      const auto [passed, is_new] = passed_from_.try_emplace(signal, &start);
      if (!is_new) return passed->second == &start ? signal : nullptr;
    }
    return nullptr;
  }

 private:
  std::unordered_map<const sigblk*, const sigblk*> passed_from_;  ///< the start of the walk
};

}  // namespace zelk

#endif

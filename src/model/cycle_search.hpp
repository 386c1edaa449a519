/// \file
/// Multiplexors that select each other in a circle.

#ifndef ZELK_MODEL_CYCLE_SEARCH_HPP
#define ZELK_MODEL_CYCLE_SEARCH_HPP

#include <unordered_map>

#include "zelk/records.h"

namespace zelk {

/// Follows multiplexors, over each signal once: one that an earlier walk has passed leads to no
/// circle.
class CycleSearch {
 public:
  bool finds_cycle_from(const sigblk& start) {
    ++walk_;
    for (const sigblk* signal = &start; signal; signal = signal->mux_signal) {
      const auto [passed, is_new] = walks_.try_emplace(signal, walk_);
      if (!is_new) return passed->second == walk_;
    }
    return false;
  }

 private:
  std::unordered_map<const sigblk*, int> walks_;  ///< the walk that passed a signal
  int walk_ = 0;
};

}  // namespace zelk

#endif

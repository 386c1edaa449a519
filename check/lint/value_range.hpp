/// \file
/// Which values the bits of a signal can have.

#ifndef ZELK_CHECK_LINT_VALUE_RANGE_HPP
#define ZELK_CHECK_LINT_VALUE_RANGE_HPP

#include <algorithm>
#include <cmath>

#include "base/signal_bits.hpp"

namespace zelk::check {

struct ValueRange {
  double low;
  double high;
};

/// Raw values of an integer signal.
inline ValueRange raw_range(const sigblk& signal) {
  const double count = std::ldexp(1.0, signal.length);
  return is_signed(signal) ? ValueRange{-count / 2, count / 2 - 1} : ValueRange{0, count - 1};
}

/// Physical values of an integer signal.
inline ValueRange physical_range(const sigblk& signal) {
  const ValueRange raw = raw_range(signal);
  const double a = raw.low * signal.factor + signal.offset;
  const double b = raw.high * signal.factor + signal.offset;
  return {std::min(a, b), std::max(a, b)};
}

}  // namespace zelk::check

#endif

/// \file
/// Mends of multiplexor indicators, segments, and multiplexors.

#ifndef ZELK_CHECK_REPAIR_SIGNAL_MENDS_HPP
#define ZELK_CHECK_REPAIR_SIGNAL_MENDS_HPP

#include <span>

#include "check/repair/mender.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// @param fault  of kind `kIndicator` or `kSegments`; others are left alone
void mend_signal(Mender& mender, const Fault& fault);

/// Breaks circles of multiplexors: drops what selects the signal at which one closes.
///
/// @param faults  those of kind `kCircle` are mended
void mend_circles(Mender& mender, std::span<const Fault> faults);

}  // namespace zelk::check

#endif

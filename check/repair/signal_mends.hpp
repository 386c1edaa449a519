/// \file
/// Mends of multiplexor indicators, segments, and multiplexors.

#ifndef ZELK_CHECK_REPAIR_SIGNAL_MENDS_HPP
#define ZELK_CHECK_REPAIR_SIGNAL_MENDS_HPP

#include "check/repair/mender.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// @param fault  of kind `kIndicator`, `kSegments` or `kCircle`; others are left alone
void mend_signal(Mender& mender, const Fault& fault);

}  // namespace zelk::check

#endif

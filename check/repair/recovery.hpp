/// \file
/// Makes statements that cannot be read into ones that can.

#ifndef ZELK_CHECK_REPAIR_RECOVERY_HPP
#define ZELK_CHECK_REPAIR_RECOVERY_HPP

#include <cstdint>

#include "check/repair/mender.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// Rewrites a message, a signal, value descriptions or a list of nodes with what can be made out of
/// it, and with plain values for what cannot: no scaling, no range, no receivers. Statements of
/// other kinds are dropped. A message without an identifier and a signal without a place stay as
/// they are, since nothing can be made of them; but at the end of a text that is cut off they are
/// dropped.
///
/// @param fault  of kind `kUnreadable` or `kStray`
void recover(Mender& mender, const Fault& fault);

}  // namespace zelk::check

#endif

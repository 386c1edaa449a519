/// \file
/// Mends of what is missing, surplus or misspelled in the forms of statements.

#ifndef ZELK_CHECK_REPAIR_FORM_MENDS_HPP
#define ZELK_CHECK_REPAIR_FORM_MENDS_HPP

#include "check/repair/mender.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// Mends one of the faults from `kNoFinalLineFeed` to `kCommentObject`, but for names, unreadable
/// statements and stray text.
///
/// @return false for other faults
bool mend_form(Mender& mender, const Fault& fault);

}  // namespace zelk::check

#endif

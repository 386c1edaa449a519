/// \file
/// New names for what has one that the format does not take.

#ifndef ZELK_CHECK_REPAIR_RENAMES_HPP
#define ZELK_CHECK_REPAIR_RENAMES_HPP

#include <span>

#include "check/repair/mender.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// Renames objects whose names are odd or keywords, wherever they are named. The new name is the
/// only one of its kind; the old one goes into the comment of the object.
void mend_names(Mender& mender, std::span<const Fault> faults);

}  // namespace zelk::check

#endif

/// \file
/// Statements that say again what another one says.

#ifndef ZELK_CHECK_REPAIR_DOUBLES_HPP
#define ZELK_CHECK_REPAIR_DOUBLES_HPP

#include <span>

#include "check/repair/mender.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// Drops messages with all their signals, signals of a message, and other statements that stand in
/// the text already, word for word and blanks aside. What the reader makes of the rest does not
/// change: where an object is spoken of differently in between, or where the number of definitions
/// and defaults of an attribute counts, all stay.
///
/// @param faults  all of the text
void drop_doubles(Mender& mender, std::span<const Fault> faults);

}  // namespace zelk::check

#endif

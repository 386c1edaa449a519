/// \file
/// The order of a file's statements, and the sections that there must be once.

#ifndef ZELK_CHECK_REPAIR_LAYOUT_HPP
#define ZELK_CHECK_REPAIR_LAYOUT_HPP

#include <vector>

#include "check/repair/mender.hpp"
#include "check/statements/edits.hpp"

namespace zelk::check {

/// Merges "VERSION", "NS_", "BS_" and "BU_" where they stand more than once, and adds "BS_" and
/// "BU_" where they are missing.
///
/// @param nodes  names for a list of nodes that is missing
void mend_sections(Mender& mender, const std::vector<std::string>& nodes);

/// The text's statements in their order, as few as can be moved, with the additions at their
/// places. Space and comments between statements go with the one behind them; those on the rest of
/// a line with the one in front.
std::vector<Part> ordered(Mender& mender);

}  // namespace zelk::check

#endif

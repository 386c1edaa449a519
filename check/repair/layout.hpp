/// \file
/// The order of a file's statements, and the sections that there must be once.

#ifndef ZELK_CHECK_REPAIR_LAYOUT_HPP
#define ZELK_CHECK_REPAIR_LAYOUT_HPP

#include <span>
#include <string_view>
#include <vector>

#include "check/repair/mender.hpp"
#include "check/statements/edits.hpp"

namespace zelk::check {

/// Merges "VERSION", "NS_", "BS_" and "BU_" where they stand more than once, and adds "BS_" and
/// "BU_" where they are missing; a missing list of nodes gets the names of all that are linked.
///
/// @param nodes  further names for the list of nodes
void mend_sections(Mender& mender, std::span<const std::string_view> nodes);

/// Gives signals in front of all messages a message.
void adopt_signals(Mender& mender);

/// The text's statements in their order, as few as can be moved, with the additions at their
/// places. Space and comments between statements go with the one behind them; those on the rest of
/// a line with the one in front.
std::vector<Part> ordered(Mender& mender);

}  // namespace zelk::check

#endif

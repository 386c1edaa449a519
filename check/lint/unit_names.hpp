/// \file
/// Units under their usual spellings.

#ifndef ZELK_CHECK_LINT_UNIT_NAMES_HPP
#define ZELK_CHECK_LINT_UNIT_NAMES_HPP

#include <string>
#include <string_view>

namespace zelk::check {

/// The same text for all spellings of a unit that surely mean the same. Blanks never count; case
/// does, but for the units that are known: "Km/H" is "km/h", "MA" is not "mA".
std::string unit_of(std::string_view spelling);

}  // namespace zelk::check

#endif

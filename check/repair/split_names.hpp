/// \file
/// Names of signals that have two words.

#ifndef ZELK_CHECK_REPAIR_SPLIT_NAMES_HPP
#define ZELK_CHECK_REPAIR_SPLIT_NAMES_HPP

#include <span>
#include <vector>

#include "check/repair/mender.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// In "SG_ Engine Speed : ..." the reader takes the second word for a multiplexor indicator, even
/// though none looks like that. The two are one odd name, unless something refers to the first word
/// alone.
///
/// @param faults  all of the text
/// @return a fault for each such name
std::vector<Fault> split_names(const Mender& mender, std::span<const Fault> faults);

}  // namespace zelk::check

#endif

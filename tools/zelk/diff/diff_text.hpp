/// \file
/// Differences as text.

#ifndef ZELK_TOOL_DIFF_DIFF_TEXT_HPP
#define ZELK_TOOL_DIFF_DIFF_TEXT_HPP

#include <string>

#include "check/diff/differences.hpp"
#include "term/output.hpp"

namespace zelk::tool {

/// A line for the object, "~ message 0x123 Speed", with + for an added object, - for a removed and
/// ~ for a changed one; and an indented one for each change, "length: 8 -> 16".
void print_difference(const check::Difference& difference, Output& out);

/// The same in one line: "~ message 0x123 Speed: length: 8 -> 16, ...".
std::string difference_line(const check::Difference& difference);

/// What has changed of an object: "length", "attribute "Cycle" with Dash", "value 3".
std::string field_text(const check::Change& change);

}  // namespace zelk::tool

#endif

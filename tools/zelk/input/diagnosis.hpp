/// \file
/// What the checks find in a file that was opened.

#ifndef ZELK_TOOL_INPUT_DIAGNOSIS_HPP
#define ZELK_TOOL_INPUT_DIAGNOSIS_HPP

#include <cstdint>
#include <optional>
#include <string>

#include "check/findings/finding.hpp"
#include "check/statements/source.hpp"
#include "input/opening.hpp"

namespace zelk::tool {

struct Diagnosis {
  check::Source source;
  check::Findings findings;
};

/// Reads the file again and looks for all of its faults. The library's word holds: a file that it
/// has read has no errors, and for one that it refuses its own line is the finding of last resort.
///
/// @param opened  of the library's own format
/// @param limit   of findings; 0 for any
/// @return none for what is no regular file, or cannot be read any more
std::optional<Diagnosis> diagnose(const OpenedDatabase& opened, const std::string& path,
                                  std::uint64_t limit);

/// Prints on standard error why a file is refused, in a few findings, and what can be done.
///
/// @return false when the library's own lines say more: the file is very large, or is no file
bool print_refusal(const OpenedDatabase& opened, const std::string& path);

}  // namespace zelk::tool

#endif

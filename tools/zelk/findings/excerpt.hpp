/// \file
/// A line of a file with a place in it underlined.

#ifndef ZELK_TOOL_FINDINGS_EXCERPT_HPP
#define ZELK_TOOL_FINDINGS_EXCERPT_HPP

#include <string>

#include "check/findings/finding.hpp"
#include "check/statements/source.hpp"

namespace zelk::tool {

struct Excerpt {
  std::string line;  ///< in UTF-8, fit for the terminal; of a long line the part around the place
  std::string underline;  ///< blanks, then "^~~~" below the place
};

/// @param span  of which the part on its first line is underlined
Excerpt excerpt_of(const check::Source& source, const check::Span& span);

}  // namespace zelk::tool

#endif

/// \file
/// Converting a database file to another format.

#ifndef ZELK_TOOL_CONVERT_CONVERSION_HPP
#define ZELK_TOOL_CONVERT_CONVERSION_HPP

#include <string>

#include "input/formats.hpp"
#include "input/opening.hpp"

namespace zelk::tool {

/// What to convert, and how.
struct Conversion {
  std::string in;
  std::string out;
  Format from;
  Format to;
  std::string option;  ///< for the modules, in their own words
  std::string import_function = "zelk_import";
  std::string export_function = "zelk_export";
  Mending mending;
};

/// Reads one file and writes the other, which must not exist. Faults and warnings are printed on
/// standard error.
///
/// @return whether the file is written
bool convert(const Conversion& conversion);

}  // namespace zelk::tool

#endif

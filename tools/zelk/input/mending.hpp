/// \file
/// Making files readable that the library refuses.

#ifndef ZELK_TOOL_INPUT_MENDING_HPP
#define ZELK_TOOL_INPUT_MENDING_HPP

#include <string>

#include "check/includes/mend.hpp"
#include "input/opening.hpp"

namespace zelk::tool {

/// Reads a file and mends its text.
///
/// @throws RequestError when it cannot be read, or is too large
check::MendedFile mend_file(const std::string& path, const check::MendOptions& options);

/// "FILE:3:14: ... [unknown-message]", `escaped`.
std::string mend_line(const check::Source& source, const check::Finding& finding);

/// `import_database` for a mended file of the library's own format. The reports say how many mends
/// there were, or what each did.
OpenedDatabase import_mended(ZelkWriteManager& manager, const std::string& path, const char* name,
                             const Mending& mending);

}  // namespace zelk::tool

#endif

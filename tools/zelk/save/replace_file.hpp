/// \file
/// Putting bytes into a file, as they are.

#ifndef ZELK_TOOL_SAVE_REPLACE_FILE_HPP
#define ZELK_TOOL_SAVE_REPLACE_FILE_HPP

#include <string>
#include <string_view>

namespace zelk::tool {

/// Puts `bytes` into the file at `path`, all of them or none: with the care of
/// `ZelkDatabase::Write` for the old file, its permissions and its links, and with the signals held
/// back that end a program. What the user should know beside is printed on standard error.
///
/// @throws RequestError that says why when the file is not written
void replace_file(const std::string& path, std::string_view bytes);

}  // namespace zelk::tool

#endif

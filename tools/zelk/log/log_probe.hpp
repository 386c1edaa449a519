/// \file
/// Tells logs from other files.

#ifndef ZELK_TOOL_LOG_LOG_PROBE_HPP
#define ZELK_TOOL_LOG_LOG_PROBE_HPP

#include <optional>
#include <string>
#include <vector>

namespace zelk::tool {

/// Looks for a frame at the beginning of the regular file `path`.
///
/// Anything else than a regular file is not touched: what is taken from a pipe cannot be read
/// again.
///
/// @return why the file is no log, for standard error; nothing when there is a frame
/// @throws ZelkLogError when the file cannot be read
std::optional<std::string> why_no_log(const std::string& path);

/// @param path  none for standard input
/// @throws RequestError when standard output leads into the log, where what is written would be
/// read again
void check_is_not_output(const std::optional<std::string>& path);

/// @param output  a path; what it leads to may not exist
/// @param inputs  paths that are read
/// @throws RequestError when the output would take the place of what is read
void check_is_no_input(const std::string& output, const std::vector<std::string>& inputs);

}  // namespace zelk::tool

#endif

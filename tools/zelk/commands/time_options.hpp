/// \file
/// The options by which commands that read logs choose frames by their times.

#ifndef ZELK_TOOL_COMMANDS_TIME_OPTIONS_HPP
#define ZELK_TOOL_COMMANDS_TIME_OPTIONS_HPP

#include <CLI/CLI.hpp>

#include "log/time_window.hpp"

namespace zelk::tool {

/// Adds --start, --stop and --relative.
///
/// @param options  must outlive the parsing
void add_time_options(CLI::App& command, TimeOptions& options);

}  // namespace zelk::tool

#endif

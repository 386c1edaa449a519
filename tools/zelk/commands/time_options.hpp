/// \file
/// The options about times of commands that read logs.

#ifndef ZELK_TOOL_COMMANDS_TIME_OPTIONS_HPP
#define ZELK_TOOL_COMMANDS_TIME_OPTIONS_HPP

#include <CLI/CLI.hpp>

#include "log/time_window.hpp"

namespace zelk::tool {

/// Adds --start, --stop, --relative and --times.
///
/// @param options  must outlive the parsing
void add_time_options(CLI::App& command, TimeOptions& options);

}  // namespace zelk::tool

#endif

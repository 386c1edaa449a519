/// \file
/// The options about times of commands that read logs.

#ifndef ZELK_TOOL_COMMANDS_TIME_OPTIONS_HPP
#define ZELK_TOOL_COMMANDS_TIME_OPTIONS_HPP

#include <CLI/CLI.hpp>

#include "zelk/logs/reader.hpp"
#include "zelk/logs/time_window.hpp"

namespace zelk::tool {

struct TimeOptions {
  ZelkTimeOptions window{};
  ZelkLogTimes kind = ZelkLogTimes::kDetect;  ///< what the times of a log of candump are
};

/// Adds --start, --stop, --relative and --times.
///
/// @param options  must outlive the parsing
void add_time_options(CLI::App& command, TimeOptions& options);

}  // namespace zelk::tool

#endif

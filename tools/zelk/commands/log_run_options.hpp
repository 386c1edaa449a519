/// \file
/// The options of commands that decode or convert whole logs.

#ifndef ZELK_TOOL_COMMANDS_LOG_RUN_OPTIONS_HPP
#define ZELK_TOOL_COMMANDS_LOG_RUN_OPTIONS_HPP

#include <CLI/CLI.hpp>
#include <string>

#include "commands/time_options.hpp"
#include "zelk/logs/pipeline.hpp"

namespace zelk::tool {

struct LogRunOptions {
  TimeOptions times;
  bool strict = false;     ///< lines that are not frames are an error
  bool stats = false;      ///< counts are printed at the end
  bool transport = false;  ///< messages of the J1939 transport protocol are put together
  unsigned threads = 0;    ///< 0: by the size of the log
};

/// Adds --match-pgn.
///
/// @param match_groups  must outlive the parsing, as all that options are stored in
void add_match_pgn_option(CLI::App& command, bool& match_groups);

/// Adds --j1939-tp and --match-pgn.
void add_j1939_options(CLI::App& command, LogRunOptions& options, bool& match_groups);

/// What --threads says of the number that is taken when none is given.
inline constexpr char kByCores[] = "as many as there are cores for a large file";

/// Adds the options about times, and --strict, --stats and --threads.
///
/// @param threads  what their number is, unless it is given
void add_log_run_options(CLI::App& command, LogRunOptions& options,
                         const std::string& threads = kByCores);

ZelkPipelineOptions pipeline_options(const LogRunOptions& options);

}  // namespace zelk::tool

#endif

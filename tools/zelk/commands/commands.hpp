/// \file
/// The subcommands of the program.

#ifndef ZELK_TOOL_COMMANDS_COMMANDS_HPP
#define ZELK_TOOL_COMMANDS_COMMANDS_HPP

#include <CLI/CLI.hpp>
#include <functional>

#include "term/output.hpp"

namespace zelk::tool {

/// Exit codes of the program.
enum ExitCode {
  kExitSuccess = 0,
  kExitFailure = 1,  ///< a file cannot be read or converted, an object is not found, a value cannot
                     ///< be encoded, an edit cannot be made, or the output cannot be written
  kExitUsage = 2,    ///< the command line is wrong
  kExitInterrupted = 130,  ///< the user ended the reading of a log; results up to there are whole

  // Those of a comparison, which are the system's usual ones for it.
  kExitDifferent = 1,
  kExitTrouble = 2  ///< a file cannot be read, or the output cannot be written
};

/// What the command line asks for. Results go to the output, failures to standard error.
using Action = std::function<ExitCode(Output&)>;

// Each adds one subcommand to `app`. Parsing a command line that names it sets `action`, which must
// outlive `app`. `failure` is set to what the program ends with when the action throws, unless that
// is `kExitFailure`; it must outlive `app` too.

void add_check_command(CLI::App& app, Action& action);
void add_lint_command(CLI::App& app, Action& action, ExitCode& failure);
void add_show_command(CLI::App& app, Action& action);
void add_list_command(CLI::App& app, Action& action);
void add_find_command(CLI::App& app, Action& action);
void add_rewrite_command(CLI::App& app, Action& action);
void add_decode_command(CLI::App& app, Action& action);
void add_log_command(CLI::App& app, Action& action);
void add_monitor_command(CLI::App& app, Action& action);
void add_encode_command(CLI::App& app, Action& action);
void add_plot_command(CLI::App& app, Action& action);
void add_diff_command(CLI::App& app, Action& action, ExitCode& failure);
void add_edit_command(CLI::App& app, Action& action);
void add_convert_command(CLI::App& app, Action& action);
void add_report_command(CLI::App& app, Action& action);
void add_repair_command(CLI::App& app, Action& action, ExitCode& failure);

}  // namespace zelk::tool

#endif

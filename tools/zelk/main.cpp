#include <cerrno>
#include <cstdio>
#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "commands/commands.hpp"
#include "input/lookup.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr const char* kExitCodes =
    "Exit codes:\n"
    "  0  success\n"
    "  1  a file cannot be read or converted, an object is not found, a value cannot be encoded, "
    "an\n"
    "     edit cannot be made, or the output cannot be written\n"
    "  2  the command line is wrong\n"
    "Interrupted (130 in a shell), decode and log still end with a whole line and their "
    "statistics.";

constexpr const char* kHelpHint = "Run with --help for more information.";

/// Prints what is wrong with the command line.
void complain(std::string_view text) {
  std::string_view lead = "zelk: ";
  for (const std::string& line : escaped_lines(text)) {
    print_error(fmt::format("{}{}", lead, line));
    lead = "";
  }
}

/// Names the option or subcommand that comes nearest to one that there is not.
///
/// @return empty when what is wrong is something else
std::string complaint_about_misspelling(const CLI::App& app) {
  const std::vector<std::string> surplus = app.remaining(true);
  if (surplus.empty()) return "";
  const std::string word = surplus.front().substr(0, surplus.front().find('='));
  const auto given = app.get_subcommands();
  NameSuggestion names(word);
  if (word.starts_with("-")) {
    const CLI::App& command = given.empty() ? app : *given.front();
    for (const CLI::Option* option : command.get_options())
      for (const std::string& name : option->get_lnames()) names.add("--" + name);
    return fmt::format("there is no option {}{}", in_quotes(word), names.text());
  }
  if (!given.empty()) return "";
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
    names.add(command->get_name());
  return fmt::format("there is no subcommand {}{}", in_quotes(word), names.text());
}

/// Help and version are answers on standard output; everything else that ends the parsing is wrong
/// usage.
ExitCode answer_parse_end(const CLI::App& app, const CLI::ParseError& end, Output& out) {
  std::ostringstream answer;
  std::ostringstream complaint;
  const int code = app.exit(end, answer, complaint);
  out.raw(answer.str());
  out.flush();
  if (code == 0) return kExitSuccess;
  const bool is_surplus = dynamic_cast<const CLI::ExtrasError*>(&end) != nullptr;
  const std::string misspelling = is_surplus ? complaint_about_misspelling(app) : "";
  complain(misspelling.empty() ? complaint.str() : misspelling + '\n' + kHelpHint);
  return kExitUsage;
}

/// @param failure  what to end with when this throws
ExitCode run(int argc, char** argv, Output& out, ExitCode& failure) {
  Action action;
  CLI::App app(
      "Reads, compares, edits and converts CAN network databases in the DBC text format. KCD and\n"
      "JSON files are read as well, by their extensions.",
      "zelk");
  app.allow_windows_style_options(false);  // "/" begins a path
  app.set_version_flag("--version", "zelk " ZELK_TOOL_VERSION, "Print the version and exit");
  app.require_subcommand(0, 1);  // `run` reports a missing one, as a misspelt one is reported
  app.footer(kExitCodes);        // subcommands added from here on take it over
  add_check_command(app, action);
  add_lint_command(app, action, failure);
  add_show_command(app, action);
  add_list_command(app, action);
  add_find_command(app, action);
  add_rewrite_command(app, action);
  add_decode_command(app, action);
  add_log_command(app, action);
  add_plot_command(app, action);
  add_monitor_command(app, action);
  add_encode_command(app, action);
  add_diff_command(app, action, failure);
  add_edit_command(app, action);
  add_convert_command(app, action);
  add_report_command(app, action);
  add_repair_command(app, action, failure);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& end) {
    return answer_parse_end(app, end, out);
  }
  if (!action) {
    complain(std::string("A subcommand is required\n") + kHelpHint);
    return kExitUsage;
  }
  const ExitCode code = action(out);
  out.flush();
  return code;
}

/// Takes no memory, which may be what is missing.
void print_failure(const char* what) {
  static_cast<void>(std::fputs("zelk: ", stderr));
  print_error(what);
}

}  // namespace

/// `run`, with a message on standard error for everything that is thrown.
int guarded_main(int argc, char** argv) {
  Output out(stdout);
  ExitCode failure = kExitFailure;
  try {
    return run(argc, argv, out, failure);
  } catch (const std::system_error& error) {
    // A reader that has seen enough, such as a pager that was left, needs no message.
    if (error.code() != std::errc::broken_pipe) print_failure(error.what());
  } catch (const std::bad_alloc&) {
    print_failure("out of memory");
  } catch (const std::exception& error) {
    print_failure(error.what());
  }
  return failure;
}

}  // namespace zelk::tool

int main(int argc, char** argv) {
  zelk::tool::prepare_process();
  return zelk::tool::guarded_main(argc, argv);
}

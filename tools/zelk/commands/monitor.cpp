#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "log/log_databases.hpp"
#include "log/log_reports.hpp"
#include "monitor/bus_state.hpp"
#include "monitor/state_table.hpp"
#include "term/system.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::tool {

namespace {

struct Arguments {
  std::vector<std::string> databases;
  std::optional<std::string> replay;
  BusState::Options state;
  StateFormat format = StateFormat::kText;
  bool once = false;
  Mending mending;
};

StateFormat format_of(const std::string& name) {
  if (name == "json") return StateFormat::kJson;
  return name == "csv" ? StateFormat::kCsv : StateFormat::kText;
}

ExitCode monitor(const Arguments& arguments, Output& out) {
  LogDatabases databases(arguments.mending);
  bool all = true;
  for (const std::string& argument : arguments.databases) all &= databases.open(argument);
  if (!all || !databases.check_filter(arguments.state.filter)) return kExitFailure;
  const NotedStop stop;
  BusState state(databases, arguments.state);
  ZelkLogReader reader(arguments.replay, {.stop = &NotedStop::is_requested()});
  LogReport report(reader.Name(), false);
  ZelkLogBlock block;
  while (reader.Next(block)) {
    state.add(block.frames);
    report.add(block);
  }
  StateTable(arguments.format, out).write(state);
  out.flush();
  report.print_rest();
  if (NotedStop::is_requested()) return kExitInterrupted;
  return report.is_of_a_log() ? kExitSuccess : kExitFailure;
}

}  // namespace

void add_monitor_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("monitor", "Show what is on a bus");
  const auto arguments = std::make_shared<Arguments>();
  command
      ->add_option("DATABASE", arguments->databases,
                   "Databases to read; INTERFACE=FILE for the frames of one interface only. The\n"
                   "first one with a frame's identifier counts.")
      ->required()
      ->option_text("...");
  command->add_option("--replay", arguments->replay, "Log to show, else standard input")
      ->type_name("LOG");
  command->add_flag("--once", arguments->once,
                    "Read to the end, print the last state once and exit");
  command
      ->add_option_function<std::string>(
          "--format", [arguments](const std::string& name) { arguments->format = format_of(name); },
          "text (tables), csv (a line for each value) or json (an object in a line for each\n"
          "message)")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"text", "json", "csv"}).description(""));
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, &action] {
    action = [arguments](Output& out) { return monitor(*arguments, out); };
  });
}

}  // namespace zelk::tool

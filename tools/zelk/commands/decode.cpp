#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "commands/log_run_options.hpp"
#include "commands/mending_options.hpp"
#include "commands/name_filter_options.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "log/log_databases.hpp"
#include "log/log_probe.hpp"
#include "log/log_run.hpp"
#include "log/wide_output.hpp"
#include "term/system.hpp"
#include "term/text.hpp"
#include "zelk/logs/texts.hpp"

namespace zelk::tool {

namespace {

struct DecodeArguments {
  std::vector<std::string> databases;
  std::optional<std::string> log;
  ZelkTextOptions text;
  WideArguments wide;
  NameFilter filter;
  LogRunOptions run;
  Mending mending;
};

ZelkTextFormat format_of(const std::string& name) {
  if (name == "json") return ZelkTextFormat::kJson;
  return name == "csv" ? ZelkTextFormat::kCsv : ZelkTextFormat::kText;
}

void decode_lines(const DecodeArguments& arguments, const LogDatabases& databases, LogRun& run,
                  Output& out) {
  ZelkTextDecoder decoder(arguments.text);
  databases.choose(decoder, arguments.filter);
  decoder.Prepare();
  out.raw(decoder.Heading());
  run.run<ZelkTextLines>(decoder,
                         [&](const ZelkTextLines& lines) { out.write_through(lines.Text()); });
}

void decode_wide(const DecodeArguments& arguments, const LogDatabases& databases, LogRun& run,
                 Output& out) {
  ZelkWideChoice choice;
  databases.choose(choice, arguments.filter);
  WideArguments wide = arguments.wide;
  wide.options.raw = arguments.text.raw;
  wide.options.numbers = arguments.text.numbers;
  wide.options.match_groups = arguments.text.match_groups;
  if (is_folder(wide.path)) return decode_into_folder(choice, wide, run);
  decode_into_timeline(choice, wide, run, out);
}

bool take_log(std::optional<std::string>& log, const std::string& path) {
  if (log) {
    print_error(fmt::format("zelk: {} and {} are logs, and only one can be decoded at a time",
                            escaped(*log), escaped(path)));
    return false;
  }
  log = path;
  return true;
}

/// @throws RequestError when the output would take the place of what is read, or be read
void check_output(const DecodeArguments& arguments, const std::vector<std::string>& databases,
                  const std::optional<std::string>& log) {
  check_is_not_output(log);
  std::vector<std::string> inputs = databases;
  if (log) inputs.push_back(*log);
  const std::string& output = arguments.wide.path;
  check_is_no_input(output, inputs);
  if (!log && identity_of(output) && identity_of_input() == identity_of(output))
    throw RequestError("standard input is both read and the output");
}

ExitCode decode(const DecodeArguments& arguments, Output& out) {
  LogDatabases databases(arguments.mending);
  std::optional<std::string> log = arguments.log;
  bool all = true;
  for (const std::string& argument : arguments.databases) {
    std::optional<std::string> found;
    all &= databases.open_unless_log(argument, found) || (found && take_log(log, *found));
  }
  if (!all) return kExitFailure;
  if (databases.empty()) {
    print_error(fmt::format("zelk: {} is a log, and no database is given", escaped(*log)));
    return kExitFailure;
  }
  if (!databases.check_filter(arguments.filter)) return kExitFailure;
  check_output(arguments, databases.paths(), log);
  const NotedStop stop;
  ZelkLogReader reader(log,
                       {.times = arguments.run.times.kind, .stop = &NotedStop::is_requested()});
  LogRun run(reader, pipeline_options(arguments.run), arguments.run.strict);
  (arguments.wide.is_wanted ? decode_wide : decode_lines)(arguments, databases, run, out);
  out.flush();
  const bool is_log = run.finish(arguments.run.stats);
  if (NotedStop::is_requested()) return kExitInterrupted;
  return is_log ? kExitSuccess : kExitFailure;
}

void add_wide_options(CLI::App& command, const std::shared_ptr<DecodeArguments>& arguments) {
  WideArguments& wide = arguments->wide;
  CLI::Option* const flag = command.add_flag(
      "--wide", wide.is_wanted,
      "A table with a column for each signal, as csv: of the signals chosen, with the last\n"
      "value of each kept, or with -o DIR/ one of each message");
  command
      .add_option(
          "-o,--output", wide.path,
          "With --wide: a folder for a file MESSAGE.csv of each message that has frames, or\n"
          "a file; files that are there are replaced once all is written")
      ->type_name("DIR/")
      ->needs(flag);
  command
      .add_option_function<std::string>(
          "--every", [&wide](const std::string& text) { wide.step = parse_step(text).value_or(0); },
          "With --wide: rows at even times, such as each 100ms (ns, us, ms, s, min)")
      ->type_name("TIME")
      ->needs(flag)
      ->check(CLI::Validator(
          [](const std::string& text) {
            return parse_step(text)
                       ? ""
                       : "a time above 0 such as 100ms is wanted, not " + in_quotes(text);
          },
          ""));
  command.add_flag("--units", wide.options.units, "With --wide: units in the headings")
      ->needs(flag);
}

/// @throws CLI::ValidationError when options do not go together
void check_wide_options(const CLI::App& command, const DecodeArguments& arguments) {
  const WideArguments& wide = arguments.wide;
  if (!wide.is_wanted) return;
  if (command.count("--format") > 0 && arguments.text.format != ZelkTextFormat::kCsv)
    throw CLI::ValidationError("--wide", "its form is csv, no other");
  const bool is_chosen = arguments.filter.is_choice();
  if (!is_folder(wide.path)) {
    if (is_chosen) return;
    throw CLI::ValidationError(
        "--wide", "one table needs --signal or --message; -o DIR/ makes one of each message");
  }
  if (wide.step > 0)
    throw CLI::ValidationError("--every", "it is for one table, and not for those of a folder");
}

}  // namespace

void add_decode_command(CLI::App& app, Action& action) {
  CLI::App* command =
      app.add_subcommand("decode", "Turn a recorded log of frames into named physical values");
  const auto arguments = std::make_shared<DecodeArguments>();
  command
      ->add_option("DATABASE", arguments->databases,
                   "Databases to read; INTERFACE=FILE for the frames of one interface only. The\n"
                   "first one with a frame's identifier counts. A file that is no database but\n"
                   "begins like a log is taken for the log.")
      ->required()
      ->option_text("...");
  command
      ->add_option(
          "--log", arguments->log,
          "Log to decode: lines as candump writes them or of frames alone such as\n"
          "123#DEADBEEF, a .trc trace or a capture, compressed or not; else it comes from\n"
          "standard input")
      ->type_name("FILE");
  command
      ->add_option_function<std::string>(
          "--format",
          [arguments](const std::string& name) { arguments->text.format = format_of(name); },
          "text (a line for each frame), json (an object in a line for each frame) or\n"
          "csv (a line for each signal)")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"text", "json", "csv"}).description(""));
  command->add_flag("--raw", arguments->text.raw, "Raw values instead of physical ones");
  command->add_flag("--numbers", arguments->text.numbers, "No value descriptions");
  add_name_filter_options(*command, arguments->filter);
  add_wide_options(*command, arguments);
  add_j1939_options(*command, arguments->run, arguments->text.match_groups);
  add_log_run_options(*command, arguments->run);
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, command, &action] {
    check_wide_options(*command, *arguments);
    action = [arguments](Output& out) { return decode(*arguments, out); };
  });
}

}  // namespace zelk::tool

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "commands/time_options.hpp"
#include "input/opening.hpp"
#include "log/log_databases.hpp"
#include "log/log_probe.hpp"
#include "log/log_reports.hpp"
#include "term/progress.hpp"
#include "term/system.hpp"
#include "term/text.hpp"
#include "zelk/logs/pipeline.hpp"

namespace zelk::tool {

namespace {

struct Arguments {
  std::vector<std::string> databases;
  std::optional<std::string> log;
  ZelkTextOptions text;
  NameFilter filter;
  TimeOptions times;
  Mending mending;
  bool strict = false;
  bool stats = false;
  bool transport = false;
  unsigned threads = 0;  // 0: by the size of the log
};

ZelkTextFormat format_of(const std::string& name) {
  if (name == "json") return ZelkTextFormat::kJson;
  return name == "csv" ? ZelkTextFormat::kCsv : ZelkTextFormat::kText;
}

ExitCode decode_log(const Arguments& arguments, const ZelkTextDecoder& decoder, ZelkLogReader& log,
                    Output& out) {
  LogReport report(log.Name(), arguments.strict);
  ProgressBar progress(log.SizeBytes().value_or(0));
  ZelkPipelineOptions options;
  options.threads = arguments.threads;
  options.times = arguments.times.window;
  options.transport = arguments.transport;
  options.read = read_until_stop;
  options.report = [&](const ZelkLogBlock& block) {
    if (!block.malformed.empty()) progress.clear();
    report.add(block);
  };
  out.raw(decoder.Heading());
  const ZelkLogSummary summary = ZelkDecodeLog(log, decoder, options, [&](std::string_view lines) {
    out.write_through(lines);
    progress.update(log.BytesRead());
  });
  progress.clear();
  out.flush();
  report.print_rest();
  if (arguments.stats) print_summary(summary, options);
  if (NotedStop::is_requested()) return kExitInterrupted;
  return report.is_of_a_log() ? kExitSuccess : kExitFailure;
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

/// Opens a database, or takes the argument for the log. A file that begins like a log is still a
/// database when it can be read as one; a file that is neither is reported with both reasons.
bool take_argument(const std::string& argument, LogDatabases& databases,
                   std::optional<std::string>& log) {
  if (!exists(argument)) return databases.open(argument);
  const std::optional<std::string> why_not = why_no_log(argument);
  if (!why_not && !DatabaseFile().open(argument)) return take_log(log, argument);
  if (databases.open(argument)) return true;
  if (why_not) print_error(fmt::format("{}: nor a log for --log: {}", escaped(argument), *why_not));
  return false;
}

ExitCode decode(const Arguments& arguments, Output& out) {
  LogDatabases databases(arguments.mending);
  std::optional<std::string> log = arguments.log;
  bool all = true;
  for (const std::string& argument : arguments.databases)
    all &= take_argument(argument, databases, log);
  if (!all) return kExitFailure;
  if (databases.empty()) {
    print_error(fmt::format("zelk: {} is a log, and no database is given", escaped(*log)));
    return kExitFailure;
  }
  if (!databases.check_filter(arguments.filter)) return kExitFailure;
  ZelkTextDecoder decoder(arguments.text);
  databases.choose(decoder, arguments.filter);
  decoder.Prepare();
  const NotedStop stop;
  ZelkLogReader reader(log, {.times = arguments.times.kind, .stop = &NotedStop::is_requested()});
  return decode_log(arguments, decoder, reader, out);
}

void add_filter_options(CLI::App& command, NameFilter& filter) {
  command
      .add_option("--message", filter.messages,
                  "Only messages of this name, in which * stands for any characters and ? for\n"
                  "one; may be given several times")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command
      .add_option("--signal", filter.signals,
                  "Only signals of this name, or of this message and name \"M.S\"; likewise")
      ->type_name("NAME")
      ->allow_extra_args(false);
}

}  // namespace

void add_decode_command(CLI::App& app, Action& action) {
  CLI::App* command =
      app.add_subcommand("decode", "Turn a recorded log of frames into named physical values");
  const auto arguments = std::make_shared<Arguments>();
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
  add_filter_options(*command, arguments->filter);
  command->add_flag("--j1939-tp", arguments->transport,
                    "Put messages of the J1939 transport protocol together (BAM, RTS/CTS)");
  command->add_flag("--match-pgn", arguments->text.match_groups,
                    "Match extended identifiers by their J1939 parameter group also where the\n"
                    "databases do not say that their messages have any");
  add_time_options(*command, arguments->times);
  command->add_flag("--strict", arguments->strict, "Lines that are not frames are an error");
  command->add_flag("--stats", arguments->stats,
                    "Tell at the end, on standard error, what was met");
  command
      ->add_option("--threads", arguments->threads,
                   "Threads to decode with; else as many as there are cores for a large file")
      ->type_name("N")
      ->check(CLI::Range(1u, 256u).description(""));
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, &action] {
    action = [arguments](Output& out) { return decode(*arguments, out); };
  });
}

}  // namespace zelk::tool

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "commands/time_options.hpp"
#include "input/opening.hpp"
#include "log/frame_catalog.hpp"
#include "log/log_pipeline.hpp"
#include "log/log_probe.hpp"
#include "log/log_reports.hpp"
#include "term/system.hpp"
#include "term/text.hpp"
#include "zelk/logs/reader.hpp"
#include "zelk/logs/transport.hpp"

namespace zelk::tool {

namespace {

struct Arguments {
  std::string format = "text";
  std::vector<std::string> databases;
  std::optional<std::string> log;
  FrameOptions options;
  TimeOptions times;
  Mending mending;
  bool strict = false;
  bool stats = false;
  bool transport = false;
  unsigned threads = 0;  // 0: by the size of the log
};

const FrameFormat& format_of(const std::string& name) {
  if (name == "json") return json_frames();
  return name == "csv" ? csv_frames() : text_frames();
}

/// A pipe is decoded as it comes; a small file is done before a thread has started.
unsigned threads_for(const ZelkLogReader& log, unsigned wanted) {
  constexpr std::uint64_t kWorthThreads = 4'000'000;  // bytes
  if (wanted > 0) return wanted;
  if (log.SizeBytes().value_or(0) < kWorthThreads) return 1;
  return std::max(1u, std::thread::hardware_concurrency());
}

ExitCode decode_log(const Arguments& arguments, const FrameCatalog& catalog, ZelkLogReader& log,
                    Output& out) {
  out.raw(arguments.options.format->heading());
  LogReport report(log.Name(), arguments.strict);
  ZelkTransport transport;
  ZelkTransport* const wanted_transport = arguments.transport ? &transport : nullptr;
  LogPipeline pipeline(catalog, arguments.times, log, out, report, wanted_transport);
  pipeline.run(threads_for(log, arguments.threads));
  out.flush();
  report.print_rest();
  transport.End();
  if (arguments.stats) {
    report.print_counts(pipeline.unknown(), TimeWindow(arguments.times).cuts(), wanted_transport);
  }
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
bool take_argument(const std::string& argument, FrameCatalog& catalog,
                   std::optional<std::string>& log) {
  if (!exists(argument)) return catalog.open(argument);
  const std::optional<std::string> why_not = why_no_log(argument);
  if (!why_not && !DatabaseFile().open(argument)) return take_log(log, argument);
  if (catalog.open(argument)) return true;
  if (why_not) print_error(fmt::format("{}: nor a log for --log: {}", escaped(argument), *why_not));
  return false;
}

ExitCode decode(const Arguments& arguments, Output& out) {
  FrameCatalog catalog(arguments.options, arguments.mending);
  std::optional<std::string> log = arguments.log;
  bool all = true;
  for (const std::string& argument : arguments.databases)
    all &= take_argument(argument, catalog, log);
  if (!all) return kExitFailure;
  if (catalog.empty()) {
    print_error(fmt::format("zelk: {} is a log, and no database is given", escaped(*log)));
    return kExitFailure;
  }
  if (!catalog.check_filter()) return kExitFailure;
  const NotedStop stop;
  ZelkLogReader reader(log, {.times = arguments.times.kind, .stop = &NotedStop::is_requested()});
  return decode_log(arguments, catalog, reader, out);
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
      ->add_option("--format", arguments->format,
                   "text (a line for each frame), json (an object in a line for each frame) or\n"
                   "csv (a line for each signal)")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"text", "json", "csv"}).description(""));
  command->add_flag("--raw", arguments->options.raw, "Raw values instead of physical ones");
  command->add_flag("--numbers", arguments->options.numbers, "No value descriptions");
  add_filter_options(*command, arguments->options.filter);
  command->add_flag("--j1939-tp", arguments->transport,
                    "Put messages of the J1939 transport protocol together (BAM, RTS/CTS)");
  command->add_flag("--match-pgn", arguments->options.match_groups,
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
    arguments->options.format = &format_of(arguments->format);
    action = [arguments](Output& out) { return decode(*arguments, out); };
  });
}

}  // namespace zelk::tool

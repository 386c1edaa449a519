#include <charconv>
#include <chrono>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "commands/log_run_options.hpp"
#include "commands/mending_options.hpp"
#include "commands/name_filter_options.hpp"
#include "input/lookup.hpp"
#include "log/log_databases.hpp"
#include "log/log_reports.hpp"
#include "log/wide_output.hpp"
#include "monitor/bus_state.hpp"
#include "monitor/plain.hpp"
#include "monitor/screen/screen.hpp"
#include "monitor/session.hpp"
#include "monitor/state_table.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr const char* kAsFastAsPossible = "max";

struct MonitorArguments {
  std::vector<std::string> databases;
  std::optional<std::string> replay;
  double speed = 1;  // 0: as fast as it can be read
  std::vector<std::string> interfaces;
  std::string record;  // empty: nothing
  BusState::Options state;
  StateFormat format = StateFormat::kText;
  bool once = false;
  bool plain = false;
  std::int64_t every = 1'000'000'000;  // nanoseconds
  Mending mending;
};

StateFormat format_of(const std::string& name) {
  if (name == "json") return StateFormat::kJson;
  return name == "csv" ? StateFormat::kCsv : StateFormat::kText;
}

/// Above 0; 0 stands for "max".
std::optional<double> parse_speed(const std::string& text) {
  if (text == kAsFastAsPossible) return 0;
  double speed = 0;
  const char* const end = text.data() + text.size();
  const auto [behind, fault] = std::from_chars(text.data(), end, speed);
  const bool is_speed = fault == std::errc() && behind == end && speed > 0 && std::isfinite(speed);
  return is_speed ? std::optional(speed) : std::nullopt;
}

std::unique_ptr<FrameSource> open_source(const MonitorArguments& arguments) {
  if (!arguments.interfaces.empty()) return open_interfaces(arguments.interfaces);
  if (!arguments.replay || arguments.once || arguments.speed == 0)
    return read_log(arguments.replay);
  return replay_log(*arguments.replay, arguments.speed);
}

/// @throws RequestError when frames would be written to the log that they are read from
void check_recording(const MonitorArguments& arguments) {
  if (arguments.record.empty() || !arguments.interfaces.empty()) return;
  const auto log = arguments.replay ? identity_of(*arguments.replay) : identity_of_input();
  if (log && log == identity_of(arguments.record))
    throw RequestError(escaped(arguments.record) + " is both the log to read and the recording");
}

/// Reads to the end. What was read in front of a fault is shown, too.
ZelkLogBlock read_all(const MonitorArguments& arguments, FrameSource& source, BusState& state) {
  std::optional<Recording> recording;
  if (!arguments.record.empty()) recording.emplace(arguments.record);
  source.set_notice([](const std::string& notice) { print_error(notice); });
  ZelkLogBlock block;
  ZelkLogBlock summary;
  while (!NotedStop::is_requested() && read_until_stop([&] { return source.next(block); })) {
    if (recording) recording->write(block.frames, kZelkNoTime);
    state.add(block.frames);
    add_lines(block, summary);
  }
  return summary;
}

ZelkLogBlock show_once(const MonitorArguments& arguments, FrameSource& source, BusState& state,
                       Output& out) {
  StateTable table(arguments.format, out);
  ZelkLogBlock summary;
  try {
    summary = read_all(arguments, source, state);
  } catch (const std::runtime_error&) {
    table.write(state);
    out.flush();
    throw;
  }
  table.write(state);
  out.flush();
  return summary;
}

/// The full screen, unless it is not wanted or the terminal cannot show it, which is told.
bool is_shown_on_screen(const MonitorArguments& arguments, Session& session) {
  if (arguments.plain || !is_terminal(stdout)) return false;
  const std::optional<std::string> why_not = show_on_screen(session);
  if (why_not) print_error(fmt::format("zelk: no full screen: {}", escaped(*why_not)));
  return !why_not;
}

ExitCode show_running(const MonitorArguments& arguments, std::unique_ptr<FrameSource> source,
                      BusState& state, Output& out, ZelkLogBlock& summary) {
  Session session(std::move(source), state, arguments.record);
  if (!is_shown_on_screen(arguments, session)) {
    StateTable table(arguments.format, out);
    show_plain(session, std::chrono::nanoseconds(arguments.every), table, out);
  }
  const bool is_interrupted = NotedStop::is_requested();
  session.finish();
  summary = session.summary();
  if (is_interrupted) return kExitInterrupted;
  return session.has_lost_frames() ? kExitFailure : kExitSuccess;
}

ExitCode monitor(const MonitorArguments& arguments, Output& out) {
  LogDatabases databases(arguments.mending);
  bool all = true;
  for (const std::string& argument : arguments.databases) all &= databases.open(argument);
  if (!all || !databases.check_filter(arguments.state.filter)) return kExitFailure;
  if (!arguments.replay && arguments.interfaces.empty() && is_terminal(stdin)) {
    print_error(
        "zelk: standard input is a terminal, and no frames come from there: try\n"
        "  candump -L any | zelk monitor DATABASE, zelk monitor DATABASE --replay LOG,\n"
        "  or --interface can0 on Linux");
    return kExitUsage;
  }
  check_recording(arguments);
  const NotedStop stop;
  BusState state(databases, arguments.state);
  std::unique_ptr<FrameSource> source = open_source(arguments);
  LogReport report(source->name(), false);
  ExitCode code = kExitSuccess;
  ZelkLogBlock summary;
  if (arguments.once) {
    summary = show_once(arguments, *source, state, out);
    if (NotedStop::is_requested()) code = kExitInterrupted;
  } else {
    code = show_running(arguments, std::move(source), state, out, summary);
  }
  report.add(summary);
  report.print_rest();
  for (const std::string& name : state.silent_interfaces())
    print_error(fmt::format("zelk: warning: no frame is from {}", in_quotes(name)));
  return code == kExitSuccess && !report.is_of_a_log() ? kExitFailure : code;
}

std::string complaint_unless(bool is_right, const char* wanted, const std::string& text) {
  return is_right ? "" : std::string(wanted) + " is wanted, not " + in_quotes(text);
}

void add_source_options(CLI::App& command, const std::shared_ptr<MonitorArguments>& arguments) {
  CLI::Option* const replay =
      command
          .add_option(
              "--replay", arguments->replay,
              "Frames of a log of any form that decode reads, at the times that it has for\n"
              "them; else they come from standard input, as lines of candump or the like")
          ->type_name("LOG");
  command
      .add_option_function<std::string>(
          "--speed",
          [arguments](const std::string& text) { arguments->speed = *parse_speed(text); },
          "How much faster than recorded a log is replayed, or max")
      ->type_name("FACTOR")
      ->needs(replay)
      ->check(CLI::Validator(
          [](const std::string& text) {
            return complaint_unless(parse_speed(text).has_value(),
                                    "a number above 0, such as 10 or 0.5, or max", text);
          },
          ""));
  command
      .add_option("--interface", arguments->interfaces,
                  "Frames of a CAN interface of this machine, by SocketCAN on Linux; may be given\n"
                  "several times")
      ->type_name("NAME")
      ->allow_extra_args(false)
      ->excludes(replay);
  command
      .add_option("--from", arguments->state.interfaces,
                  "Only frames of this interface, whatever brings them; may be given several times")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command
      .add_option("--record", arguments->record,
                  "File to which all frames are appended as candump -l writes them")
      ->type_name("FILE");
}

void add_output_options(CLI::App& command, const std::shared_ptr<MonitorArguments>& arguments) {
  command.add_flag("--once", arguments->once,
                   "Read to the end without a wait, print the last state once and exit");
  command.add_flag("--plain", arguments->plain,
                   "No full screen: print what came, at even times and at the end");
  command
      .add_option_function<std::string>(
          "--every",
          [arguments](const std::string& text) { arguments->every = parse_step(text).value_or(0); },
          "Time between two prints, 1s unless given (ns, us, ms, s, min)")
      ->type_name("TIME")
      ->check(CLI::Validator(
          [](const std::string& text) {
            return complaint_unless(parse_step(text).has_value(), "a time above 0 such as 500ms",
                                    text);
          },
          ""));
  command
      .add_option_function<std::string>(
          "--format",
          [arguments](const std::string& name) {
            arguments->format = format_of(name);
            arguments->plain = true;
          },
          "Of what is printed: text (tables), csv (a line for each value) or json (an object in\n"
          "a line for each message)")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"text", "json", "csv"}).description(""));
}

}  // namespace

void add_monitor_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand(
      "monitor", "Show the last values of each message on a bus, and how regularly it comes");
  const auto arguments = std::make_shared<MonitorArguments>();
  command
      ->add_option("DATABASE", arguments->databases,
                   "Databases to read; INTERFACE=FILE for the frames of one interface only. The\n"
                   "first one with a frame's identifier counts.")
      ->required()
      ->option_text("...");
  add_source_options(*command, arguments);
  add_name_filter_options(*command, arguments->state.filter);
  add_match_pgn_option(*command, arguments->state.match_groups);
  command
      ->add_option("--cycle-time", arguments->state.cycle_attribute,
                   "Attribute of messages that states their cycle time in milliseconds,\n"
                   "GenMsgCycleTime unless given")
      ->type_name("ATTRIBUTE");
  add_output_options(*command, arguments);
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, &action] {
    action = [arguments](Output& out) { return monitor(*arguments, out); };
  });
}

}  // namespace zelk::tool

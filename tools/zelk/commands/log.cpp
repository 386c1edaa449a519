#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "commands/log_run_options.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "log/frame_filter.hpp"
#include "log/log_copy.hpp"
#include "log/log_merge.hpp"
#include "log/log_run.hpp"
#include "save/replace_file.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

struct LogArguments {
  std::vector<std::string> logs;
  std::string out = kStandardStream;
  FrameFilter filter;
  LogRunOptions run;

  bool has_lines() const { return out == kStandardStream && is_terminal(stdout); }
};

/// None for standard input.
std::optional<std::string> path_of(const std::string& log) {
  return log == kStandardStream ? std::nullopt : std::optional(log);
}

std::optional<FileIdentity> identity_of_log(const std::string& log) {
  return log == kStandardStream ? identity_of_input() : identity_of(log);
}

/// By whatever names they go, links among them.
///
/// @throws RequestError when a log is given twice, or would be read while it is written
void check_logs(const LogArguments& arguments) {
  const auto output =
      arguments.out == kStandardStream ? identity_of_output() : identity_of(arguments.out);
  std::set<std::string> names;
  std::set<FileIdentity> identities;
  for (const std::string& log : arguments.logs) {
    const std::string name = log == kStandardStream ? "standard input" : escaped(log);
    const auto identity = identity_of_log(log);
    const bool is_new =
        names.insert(log).second && (!identity || identities.insert(*identity).second);
    if (!is_new) throw RequestError(name + " is given twice");
    if (identity && identity == output)
      throw RequestError(name + " is both a log to read and the output");
  }
}

/// Where the lines go: standard output, or a file that is replaced in the end.
class Target {
 public:
  /// @throws RequestError when the file cannot be written, as all
  Target(const std::string& path, Output& out)
      : path_(path),
        out_(out),
        is_replacing_(path != kStandardStream &&
                      file_type(path) == std::filesystem::file_type::regular) {
    if (path != kStandardStream) about_file([&] { file_.emplace(path); });
  }

  void write(std::string_view text) {
    if (!file_) return out_.write_through(text);
    about_file([&] { file_->write(text); });
  }

  /// An interrupted conversion does not take the place of an older file, whose content may be all
  /// that there is of it; but what came of a recording into a new one is kept.
  void finish(bool is_interrupted) {
    if (!file_) return;
    if (is_interrupted && is_replacing_)
      return print_error(behind_path(path_, "interrupted, and left as it was"));
    const HeldSignals held;
    about_file([&] { file_->take_place(); });
  }

 private:
  template <typename Act>
  void about_file(const Act& act) const {
    try {
      act();
    } catch (const RequestError& error) {
      throw RequestError(behind_path(path_, error.what()));
    }
  }

  std::string path_;
  Output& out_;
  bool is_replacing_;
  std::optional<ReplacedFile> file_;
};

/// What came of the logs.
struct Outcome {
  bool are_logs = true;
  ZelkLogCounts counts{};
  std::uint64_t written = 0;  // frames
};

Outcome copy_log(const LogArguments& arguments, Output& out, std::optional<Target>& target) {
  ZelkLogReader reader(path_of(arguments.logs.front()),
                       {.times = arguments.run.times.kind, .stop = &NotedStop::is_requested()});
  LogRun run(reader, pipeline_options(arguments.run), arguments.run.strict, arguments.has_lines());
  target.emplace(arguments.out, out);
  run.run<CopiedLines>(LineCopier(arguments.filter),
                       [&](const CopiedLines& lines) { target->write(lines.text()); });
  const bool is_log = run.finish(false);
  return {is_log, run.summary().log, run.summary().frames.decoded};
}

/// Prints what is left to say about a log that was merged.
void report(const MergedLog& log) {
  log.report().print_rest();
  if (!log.ran_backwards()) return;
  print_error(fmt::format("{}: warning: its times run backwards, and its frames keep their order",
                          escaped(log.reader().Name())));
}

Outcome merge_logs(const LogArguments& arguments, Output& out, std::optional<Target>& target) {
  std::vector<std::optional<std::string>> paths;
  std::ranges::transform(arguments.logs, std::back_inserter(paths), path_of);
  LogMerge logs(paths, {.strict = arguments.run.strict,
                        .times = arguments.run.times.kind,
                        .threads = arguments.run.threads,
                        .has_lines = arguments.has_lines()});
  target.emplace(arguments.out, out);
  MergeCopy copy(logs, arguments.filter, arguments.run.times.window,
                 [&target](std::string_view text) { target->write(text); });
  copy.run();
  Outcome outcome;
  for (const auto& log : logs.logs()) {
    report(*log);
    outcome.are_logs &= log->report().is_of_a_log();
    outcome.counts += log->report().counts();
  }
  outcome.written = copy.written();
  return outcome;
}

void print_counts(const Outcome& outcome) {
  print_count("lines", outcome.counts.lines);
  print_count("frames", outcome.counts.frames);
  print_count("  written", outcome.written);
  print_count("malformed lines", outcome.counts.malformed);
}

ExitCode convert_logs(const LogArguments& arguments, Output& out) {
  check_logs(arguments);
  const NotedStop stop;
  std::optional<Target> target;  // opened once the logs are
  const Outcome outcome =
      (arguments.logs.size() == 1 ? copy_log : merge_logs)(arguments, out, target);
  if (outcome.are_logs || NotedStop::is_requested()) target->finish(NotedStop::is_requested());
  if (arguments.run.stats) print_counts(outcome);
  if (NotedStop::is_requested()) return kExitInterrupted;
  return outcome.are_logs ? kExitSuccess : kExitFailure;
}

std::string check_ids(const std::string& text) {
  return IdSet().add(text) ? ""
                           : "an identifier or a range of them is wanted, not " + in_quotes(text);
}

void add_filter_options(CLI::App& command, FrameFilter& filter) {
  command
      .add_option(
          "--interface", filter.interfaces,
          "Only frames of this interface, can0 for those whose log names none; may be given\n"
          "several times")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command
      .add_option_function<std::vector<std::string>>(
          "--id",
          [&filter](const std::vector<std::string>& ids) {
            for (const std::string& id : ids) filter.ids.add(id);
          },
          "Only frames with one of these identifiers, decimal or hexadecimal behind 0x, or\n"
          "ranges A-B of them. Above 0x7FF or with an x behind it, an identifier is extended.")
      ->type_name("ID,...")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->check(CLI::Validator(check_ids, ""));
}

}  // namespace

void add_log_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand(
      "log", "Convert, cut and merge recorded logs of any form to lines as candump -l writes them");
  const auto arguments = std::make_shared<LogArguments>();
  command
      ->add_option("IN", arguments->logs,
                   "Logs to read, - for standard input; several are merged by time. What is known\n"
                   "of their forms is told from their content; gzip and zstd are undone.")
      ->required()
      ->option_text("...");
  command
      ->add_option(
          "-o,--output", arguments->out,
          "File to write, else standard output; one that is there is replaced once all is\n"
          "written, or stays")
      ->type_name("OUT");
  add_filter_options(*command, arguments->filter);
  add_log_run_options(*command, arguments->run,
                      kByCores + std::string(", and\none for each of several logs"));
  command->callback([arguments, &action] {
    action = [arguments](Output& out) { return convert_logs(*arguments, out); };
  });
}

}  // namespace zelk::tool

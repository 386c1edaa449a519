#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/quoting.hpp"
#include "commands/commands.hpp"
#include "commands/log_run_options.hpp"
#include "commands/mending_options.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "log/log_databases.hpp"
#include "log/log_probe.hpp"
#include "log/log_run.hpp"
#include "plot/gather.hpp"
#include "plot/html.hpp"
#include "plot/png.hpp"
#include "plot/svg.hpp"
#include "plot/terminal.hpp"
#include "save/replace_file.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

struct PlotArguments {
  std::vector<std::string> words;
  std::string output;  // empty: standard output, in characters
  bool ascii = false;  // in these alone
  PlotChoice choice;
  PictureOptions picture;
  double scale = 1;  // of a PNG
  LogRunOptions run;
  Mending mending;
};

/// What the words of the command line are.
struct Words {
  std::vector<std::string> logs{};
  std::vector<std::string> signals{};
};

/// What follows "INTERFACE=" in a word, or all of it.
std::string path_in(const std::string& word) {
  const std::size_t mark = word.find('=');
  return mark == std::string::npos || exists(word) ? word : word.substr(mark + 1);
}

bool ends_in(const std::string& path, std::string_view extension) {
  return lowered(path).ends_with(extension);
}

/// @return false when a file is neither database nor log; it is reported
bool sort_words(const PlotArguments& arguments, LogDatabases& databases, Words& words) {
  bool all = true;
  for (const std::string& word : arguments.words) {
    if (word == kStandardStream) {
      words.logs.push_back(word);
    } else if (!exists(path_in(word))) {
      words.signals.push_back(word);
    } else {
      std::optional<std::string> log;
      all &= databases.open_unless_log(word, log) || log;
      if (log) words.logs.push_back(*log);
    }
  }
  return all;
}

/// Why what was named cannot be plotted; empty when it can.
std::string complaint_about(const PlotArguments& arguments, const LogDatabases& databases,
                            const Words& words) {
  if (databases.empty()) return "no database is given";
  if (words.signals.empty() && arguments.choice.jitter.empty())
    return "no signal is named; --jitter MESSAGE shows the times between frames";
  if (words.logs.empty() && is_terminal(stdin)) return "no log is given";
  std::set<FileIdentity> identities;
  for (const std::string& log : words.logs) {
    const auto identity = log == kStandardStream ? identity_of_input() : identity_of(log);
    if (identity && !identities.insert(*identity).second) return escaped(log) + " is given twice";
  }
  return "";
}

/// The name of a log, without its folders.
std::string title_of(const std::string& log) {
  if (log == kStandardStream) return "standard input";
  const std::filesystem::path path(std::u8string(log.begin(), log.end()));
  const std::u8string name = path.filename().u8string();
  return {name.begin(), name.end()};
}

/// @return whether the log is one
bool gather(const PlotArguments& arguments, const std::string& log, PlotGatherer& gatherer) {
  ZelkLogReader reader(log == kStandardStream ? std::nullopt : std::optional(log),
                       {.times = arguments.run.times.kind, .stop = &NotedStop::is_requested()});
  LogRun run(reader, pipeline_options(arguments.run), arguments.run.strict, false);
  gatherer.begin_log(title_of(log));
  run.run<PlotRows>(gatherer, [&gatherer](PlotRows& rows) { gatherer.put(rows); });
  gatherer.end_log();
  return run.finish(arguments.run.stats);
}

void report(const PlotGatherer& gatherer) {
  for (const std::string& pattern : gatherer.missing())
    print_error(fmt::format("zelk: warning: no frame has {}", in_quotes(pattern)));
  for (const std::string& pattern : gatherer.missing_messages())
    print_error(fmt::format("zelk: warning: no two frames are of {}", in_quotes(pattern)));
  if (gatherer.ran_backwards()) {
    print_error(
        "zelk: warning: times run backwards, and points are put in the order of their times");
  }
}

/// The bytes of the file.
std::string encoded(const PlotArguments& arguments, const Figure& figure) {
  if (ends_in(arguments.output, ".html")) return plot_page(figure);
  const Picture picture = plot_svg(figure, arguments.picture);
  if (ends_in(arguments.output, ".svg")) return picture.svg;
  return png_of(picture.svg, picture.size, arguments.scale);
}

void write(const PlotArguments& arguments, const Figure& figure) {
  const std::string bytes = encoded(arguments, figure);
  try {
    replace_file(arguments.output, bytes);
  } catch (const RequestError& error) {
    throw RequestError(behind_path(arguments.output, error.what()));
  }
}

void draw(const PlotArguments& arguments, const Figure& figure, Output& out) {
  TerminalForm form = terminal_form(stdout);
  form.has_unicode &= !arguments.ascii;
  out.raw(draw_in_terminal(figure, form));
}

ExitCode plot(const PlotArguments& arguments, Output& out) {
  if (kWhyNoPng && ends_in(arguments.output, ".png"))
    throw RequestError(behind_path(arguments.output, kWhyNoPng));
  LogDatabases databases(arguments.mending);
  Words words;
  if (!sort_words(arguments, databases, words)) return kExitFailure;
  const std::string complaint = complaint_about(arguments, databases, words);
  if (!complaint.empty()) throw RequestError(complaint);
  if (!databases.check_filter({{}, words.signals}, ", nor is there such a file") ||
      !databases.check_filter({arguments.choice.jitter, {}}))
    return kExitFailure;
  if (words.logs.empty()) words.logs.emplace_back(kStandardStream);
  std::vector<std::string> inputs = databases.paths();
  inputs.insert(inputs.end(), words.logs.begin(), words.logs.end());
  if (!arguments.output.empty()) check_is_no_input(arguments.output, inputs);

  const NotedStop stop;
  PlotChoice choice = arguments.choice;
  choice.signals = words.signals;
  choice.relative = arguments.run.times.window.relative;
  PlotGatherer gatherer(databases, choice, words.logs.size());
  for (const std::string& log : words.logs)
    if (!NotedStop::is_requested() && !gather(arguments, log, gatherer)) return kExitFailure;
  if (gatherer.is_empty()) throw RequestError("no frame has any of the signals");
  report(gatherer);
  if (arguments.output.empty()) {
    draw(arguments, gatherer.figure(), out);
  } else {
    write(arguments, gatherer.figure());
  }
  return NotedStop::is_requested() ? kExitInterrupted : kExitSuccess;
}

std::string check_output(const std::string& path) {
  if (ends_in(path, ".html") && !can_plot_pages())
    return "this build has no plots as pages: uPlot was missing when it was made";
  if (ends_in(path, ".html") || ends_in(path, ".svg") || ends_in(path, ".png")) return "";
  return "a plot is written as .html, .svg or .png, not as " + in_quotes(path);
}

void add_picture_options(CLI::App& command, PictureOptions& options) {
  command
      .add_option_function<std::string>(
          "--size",
          [&options](const std::string& text) { options.size = parse_picture_size(text); },
          "Width and height of the picture in pixels; else 1200 wide, and as high as it takes")
      ->type_name("WIDTHxHEIGHT")
      ->check(CLI::Validator(
          [](const std::string& text) {
            return parse_picture_size(text) ? ""
                                            : "a size such as 1200x700 is wanted, of 200 to 20000 "
                                              "pixels, not " +
                                                  in_quotes(text);
          },
          ""));
}

}  // namespace

void add_plot_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("plot", "Draw the signals of recorded logs over time");
  const auto arguments = std::make_shared<PlotArguments>();
  command
      ->add_option(
          "FILE_OR_SIGNAL", arguments->words,
          "Databases, logs and signals in any order: a file is told by its content, - is\n"
          "a log on standard input, and what is no file is the name of signals, SIGNAL or\n"
          "MESSAGE.SIGNAL with * for any characters and ? for one. INTERFACE=FILE is a\n"
          "database for the frames of one interface only.")
      ->option_text("...");
  command
      ->add_option("-o,--output", arguments->output,
                   "File to write: .html to zoom and to read values, .svg, or .png with the same\n"
                   "picture in pixels; else the plot is drawn in characters, as many as the\n"
                   "terminal has")
      ->type_name("FILE")
      ->check(CLI::Validator(check_output, ""));
  command
      ->add_option("--jitter", arguments->choice.jitter,
                   "Also the times between the frames of the messages of this name, in which *\n"
                   "and ? stand for characters; may be given several times")
      ->type_name("MESSAGE")
      ->allow_extra_args(false);
  command
      ->add_option("--cycle-time", arguments->choice.cycle_attribute,
                   "With --jitter: the attribute of messages that states their cycle time in\n"
                   "milliseconds, GenMsgCycleTime unless given")
      ->type_name("ATTRIBUTE");
  command->add_flag("--ascii", arguments->ascii, "Draw with characters of ASCII alone");
  add_picture_options(*command, arguments->picture);
  command
      ->add_option("--scale", arguments->scale,
                   "Pixels of a .png for each one of --size, such as 2 for a fine print")
      ->type_name("N")
      ->check(CLI::Range(0.1, 8.0).description(""));
  add_j1939_options(*command, arguments->run, arguments->choice.match_groups);
  add_log_run_options(*command, arguments->run);
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, &action] {
    action = [arguments](Output& out) { return plot(*arguments, out); };
  });
}

}  // namespace zelk::tool

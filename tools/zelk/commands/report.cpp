#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "input/formats.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "report/changes_page.hpp"
#include "report/report_page.hpp"
#include "save/replace_file.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

struct ReportArguments {
  std::vector<std::string> paths;
  std::string out = kStandardStream;
  Mending mending;
  BitRates rates;
};

/// @throws RequestError when the page cannot go where it is wanted
void check_output(const ReportArguments& arguments) {
  if (arguments.out == kStandardStream) {
    if (is_terminal(stdout))
      throw RequestError("a page is not for a terminal: name a file with -o");
    return;
  }
  if (format_of_file(arguments.out))
    throw RequestError(escaped(arguments.out) + " is named as a database: a page ends in .html");
  const auto output = identity_of(arguments.out);
  for (const std::string& path : arguments.paths) {
    if (output && identity_of(path) == output)
      throw RequestError(escaped(path) + " is both a database to read and the output");
  }
}

void write_page(const std::string& path, const std::string& page, Output& out) {
  if (path == kStandardStream) return out.write_through(page);
  try {
    replace_file(path, page);
  } catch (const RequestError& error) {
    throw RequestError(behind_path(path, error.what()));
  }
}

/// The name of a file without its folders.
std::string file_name(const std::string& path) {
  const std::filesystem::path native(std::u8string(path.begin(), path.end()));
  const std::u8string name = native.filename().u8string();
  return {name.begin(), name.end()};
}

ExitCode compare(const ReportArguments& arguments, const DatabaseFile& before, Output& out) {
  const std::string& path = arguments.paths.back();
  DatabaseFile after(arguments.mending);
  if (!after.open_and_report(path)) return kExitFailure;
  const std::string page = changes_page({before.encoded(), file_name(arguments.paths.front())},
                                        {after.encoded(), file_name(path)});
  write_page(arguments.out, page, out);
  return kExitSuccess;
}

FileFindings findings_in(const std::string& path, const ZelkDatabase& database,
                         const Mending& mending) {
  try {
    return find_in_file(path, database, mending);
  } catch (const RequestError& error) {
    throw RequestError(behind_path(path, error.what()));
  }
}

void add_rate_option(CLI::App& command, const char* name, std::optional<double>& rate,
                     const char* help) {
  constexpr double kSlowest = 1000;
  constexpr double kFastest = 20e6;
  command.add_option(name, rate, help)
      ->type_name("RATE")
      ->transform(CLI::AsNumberWithUnit(std::map<std::string, double>{{"k", 1e3}, {"M", 1e6}},
                                        CLI::AsNumberWithUnit::CASE_SENSITIVE, "RATE"))
      ->check(CLI::Range(kSlowest, kFastest));
}

ExitCode report(const ReportArguments& arguments, Output& out) {
  check_output(arguments);
  const std::string& path = arguments.paths.front();
  DatabaseFile file(arguments.mending);
  if (!file.open_and_report(path)) return kExitFailure;
  if (arguments.paths.size() == 2) return compare(arguments, file, out);
  const FileFindings findings = findings_in(path, *file.opened().database, arguments.mending);
  write_page(arguments.out, report_page(file.encoded(), file_name(path), findings, arguments.rates),
             out);
  return kExitSuccess;
}

}  // namespace

void add_report_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand(
      "report", "Make a page of all that a database says, to be seen in a browser");
  const auto arguments = std::make_shared<ReportArguments>();
  command
      ->add_option("FILE", arguments->paths,
                   "Database to read; with two of them, the page tells what differs")
      ->required()
      ->option_text("...");
  command
      ->add_option("-o,--output", arguments->out,
                   "Page to write, else standard output unless that is a terminal; one that is\n"
                   "there is replaced once the new one is whole")
      ->type_name("OUT");
  add_rate_option(*command, "--bitrate", arguments->rates.nominal,
                  "Bit rate, of which the overview tells the part that cyclic messages take, in\n"
                  "bit/s: 500k, 1M; otherwise what the database says, else 500k");
  add_rate_option(*command, "--data-bitrate", arguments->rates.data,
                  "Bit rate of data in CAN FD frames, likewise; else 2M");
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, &action] {
    if (arguments->paths.size() > 2)
      throw CLI::ValidationError("FILE", "a report is of one database, or compares two");
    action = [arguments](Output& out) { return report(*arguments, out); };
  });
}

}  // namespace zelk::tool

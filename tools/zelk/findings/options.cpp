#include "findings/options.hpp"

#include <fmt/format.h>

#include <string>

#include "base/escaping.hpp"
#include "base/numbers.hpp"

namespace zelk::tool {

namespace {

/// What is wrong with a number of findings; empty when nothing is. The parser of the command line
/// takes "-1" for the largest number, and "010" for 8.
std::string fault_of_count(const std::string& text) {
  if (parse_whole<std::uint64_t>(text)) return "";
  return fmt::format("{} is no whole number from 0 up", in_quotes(text));
}

}  // namespace

void add_report_options(CLI::App& command, FindingsOptions& options) {
  CLI::Option* const json =
      command.add_flag("--json", options.json, "An array of JSON objects, one in a line");
  command
      .add_flag("--sarif", options.sarif, "A SARIF 2.1.0 log, as code reviews and editors read it")
      ->excludes(json);
  const auto set_most = [&options](const std::string& text) {
    options.max_errors = parse_whole<std::uint64_t>(text).value_or(options.max_errors);
  };
  command
      .add_option_function<std::string>("--max-errors", set_most,
                                        "Findings to show of each file; 0 for all (default 100)")
      ->option_text("N")
      ->check(CLI::Validator(fault_of_count, ""));
}

void add_findings_options(CLI::App& command, FindingsOptions& options) {
  add_report_options(command, options);
  command
      .add_option("--fail-on", options.fail_on,
                  "Least severity that makes the command fail: note, warning or error\n"
                  "(default error)")
      ->option_text("SEVERITY")
      ->check(CLI::IsMember({"note", "warning", "error"}));
}

}  // namespace zelk::tool

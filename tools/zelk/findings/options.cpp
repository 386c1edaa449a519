#include "findings/options.hpp"

namespace zelk::tool {

void add_report_options(CLI::App& command, FindingsOptions& options) {
  CLI::Option* const json =
      command.add_flag("--json", options.json, "An array of JSON objects, one in a line");
  command
      .add_flag("--sarif", options.sarif, "A SARIF 2.1.0 log, as code reviews and editors read it")
      ->excludes(json);
  command
      .add_option("--max-errors", options.max_errors,
                  "Findings to show of each file; 0 for all (default 100)")
      ->option_text("N");
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

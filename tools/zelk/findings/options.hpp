/// \file
/// The options of all commands that report findings.

#ifndef ZELK_TOOL_FINDINGS_OPTIONS_HPP
#define ZELK_TOOL_FINDINGS_OPTIONS_HPP

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>

#include "check/findings/finding.hpp"
#include "findings/report.hpp"

namespace zelk::tool {

struct FindingsOptions {
  bool json = false;
  bool sarif = false;
  std::uint64_t max_errors = 100;  ///< findings that are shown of a file; 0 for all
  std::string fail_on = "error";   ///< name of a severity

  FindingsForm form() const {
    if (json) return FindingsForm::kJson;
    return sarif ? FindingsForm::kSarif : FindingsForm::kText;
  }
  /// Whether the findings make the command fail.
  bool fail_with(const check::Findings& findings) const {
    return findings.count != 0 && findings.worst >= check::severity_named(fail_on);
  }
};

/// Adds `--json`, `--sarif` and `--max-errors`.
///
/// @param options  must outlive the parsing
void add_report_options(CLI::App& command, FindingsOptions& options);

/// Adds these and `--fail-on`.
void add_findings_options(CLI::App& command, FindingsOptions& options);

}  // namespace zelk::tool

#endif

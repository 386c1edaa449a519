/// \file
/// Findings as text, JSON and SARIF, for all commands that check files.

#ifndef ZELK_TOOL_FINDINGS_REPORT_HPP
#define ZELK_TOOL_FINDINGS_REPORT_HPP

#include <memory>
#include <string>
#include <string_view>

#include "check/findings/finding.hpp"
#include "check/statements/source.hpp"
#include "term/output.hpp"

namespace zelk::tool {

enum class FindingsForm { kText, kJson, kSarif };

/// What a rule is about, in one sentence, for the list of rules in SARIF; in UTF-8.
using RuleSentence = std::string (*)(std::string_view rule);

/// Prints the findings of one file after the other.
class FindingsReport {
 public:
  FindingsReport() = default;
  FindingsReport(const FindingsReport&) = delete;
  FindingsReport& operator=(const FindingsReport&) = delete;
  virtual ~FindingsReport() = default;

  /// Prints those of the list.
  ///
  /// @param source  of all places in them
  virtual void add(const check::Source& source, const check::Findings& findings) = 0;
  /// Ends the output; nothing is added behind it.
  virtual void finish() = 0;
};

/// @param out  must outlive the report
std::unique_ptr<FindingsReport> make_report(FindingsForm form, Output& out, RuleSentence sentence);

/// A finding as lines of text, each ended by a line feed:
///
///     FILE:LINE:COLUMN: error: expected ':' behind the message's name, found "8" [missing]
///         7 | BO_ 100 EngineData 8 Gateway
///           |                   ^
///           = in message 100 EngineData
///     FILE:LINE:COLUMN: note: of each related place
std::string finding_text(const check::Source& source, const check::Finding& finding);

/// `finding_text` of those of the list, on standard error.
void print_findings(const check::Source& source, const check::Findings& findings);

/// The line on standard error about findings beyond the limit of the list; nothing without any.
void print_more(const check::Source& source, const check::Findings& findings);

}  // namespace zelk::tool

#endif

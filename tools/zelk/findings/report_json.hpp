/// \file
/// What JSON and SARIF say alike.

#ifndef ZELK_TOOL_FINDINGS_REPORT_JSON_HPP
#define ZELK_TOOL_FINDINGS_REPORT_JSON_HPP

#include "findings/report.hpp"

namespace zelk::tool {

/// Where a place ends, if it does so in the file in which it begins; else where it begins.
inline std::uint32_t end_in_file(const check::Source& source, const check::Span& span) {
  const bool is_same = &source.path_at(span.begin) == &source.path_at(span.end);
  return is_same ? span.end : span.begin;
}

std::unique_ptr<FindingsReport> make_json_report(Output& out);
std::unique_ptr<FindingsReport> make_sarif_report(Output& out, RuleSentence sentence);

}  // namespace zelk::tool

#endif

#include "input/diagnosis.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "base/escaping.hpp"
#include "check/faults/diagnose.hpp"
#include "check/repair/judge.hpp"
#include "files/files.hpp"
#include "findings/report.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// A log that is taken for a database must not fill the memory.
constexpr std::uintmax_t kMostBytesOfRefusal = 64 << 20;
constexpr std::uint64_t kMostOfRefusal = 5;

/// Guesses of errors that the library's reader has refuted. What it passes over stays as a warning.
void keep_warnings(check::Findings& findings) {
  const std::string_view end_byte = name_of(check::FaultKind::kEndByte);
  const auto is_refuted = [&](const check::Finding& finding) {
    return finding.severity == check::Severity::kError && finding.rule != end_byte;
  };
  findings.count -= std::erase_if(findings.list, is_refuted);
  for (check::Finding& finding : findings.list)
    finding.severity = std::min(finding.severity, check::Severity::kWarning);
  findings.worst = std::min(findings.worst, check::Severity::kWarning);
}

void add_last_resort(const check::Source& source, check::Findings& findings) {
  const check::Verdict verdict = check::judge(source.text());
  const std::uint32_t begin = source.begin_of_line(verdict.line_feeds);
  findings.add({check::Severity::kError,
                name_of(check::FaultKind::kRefused),
                {begin, begin},
                "the file is refused",
                "",
                verdict.message});
}

}  // namespace

std::optional<Diagnosis> diagnose(const OpenedDatabase& opened, const std::string& path,
                                  std::uint64_t limit) try {
  if (file_type(path) != std::filesystem::file_type::regular) return std::nullopt;
  std::string bytes = files::read_all(path.c_str());
  if (bytes.size() > check::Source::kLongest) return std::nullopt;
  check::Document document = check::read_document(check::Source(path, std::move(bytes)));
  Diagnosis diagnosis{{"", ""}, check::diagnose(document, limit)};
  diagnosis.source = std::move(document.source);
  check::Findings& findings = diagnosis.findings;
  if (opened.database) keep_warnings(findings);
  if (!opened.database && findings.worst != check::Severity::kError)
    add_last_resort(diagnosis.source, findings);
  return diagnosis;
} catch (const std::system_error&) {
  return std::nullopt;
}

bool print_refusal(const OpenedDatabase& opened, const std::string& path) {
  const std::filesystem::path native(std::u8string(path.begin(), path.end()));
  std::error_code fault;
  const std::uintmax_t size = std::filesystem::file_size(native, fault);
  if (fault || size > kMostBytesOfRefusal) return false;
  const std::optional<Diagnosis> diagnosis = diagnose(opened, path, kMostOfRefusal);
  if (!diagnosis) return false;
  const check::Findings& findings = diagnosis->findings;
  print_findings(diagnosis->source, findings);
  const std::uint64_t more = findings.count - findings.list.size();
  const std::string rest =
      more == 0 ? "" : fmt::format("; zelk check shows {} more", counted(more, "finding"));
  print_error(
      fmt::format("{}: cannot be read; zelk repair mends what can be mended, --repair on the way{}",
                  escaped(path), rest));
  return true;
}

}  // namespace zelk::tool

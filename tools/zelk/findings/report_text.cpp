#include <fmt/format.h>

#include "base/escaping.hpp"
#include "base/quoting.hpp"
#include "findings/excerpt.hpp"
#include "findings/report.hpp"
#include "findings/report_json.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// "FILE:LINE:COLUMN: "
std::string place_text(const check::Source& source, std::uint32_t offset) {
  const auto [line, column] = source.position(offset);
  return fmt::format("{}:{}:{}: ", escaped(source.path_at(offset)), line, column);
}

std::string fit(const std::string& text) { return escaped(utf8(text)); }

class TextReport : public FindingsReport {
 public:
  explicit TextReport(Output& out) : out_(out) {}

  void add(const check::Source& source, const check::Findings& findings) override {
    for (const check::Finding& finding : findings.list) {
      const std::string text = finding_text(source, finding);
      out_.line("{}", std::string_view(text).substr(0, text.size() - 1));
    }
  }
  void finish() override {}

 private:
  Output& out_;
};

}  // namespace

std::unique_ptr<FindingsReport> make_report(FindingsForm form, Output& out, RuleSentence sentence) {
  if (form == FindingsForm::kJson) return make_json_report(out);
  if (form == FindingsForm::kSarif) return make_sarif_report(out, sentence);
  return std::make_unique<TextReport>(out);
}

std::string finding_text(const check::Source& source, const check::Finding& finding) {
  constexpr int kNumberWidth = 5;
  const std::uint32_t at = finding.span.begin;
  const Excerpt excerpt = excerpt_of(source, finding.span);
  const std::string number = fmt::format("{:>{}}", source.position(at).line, kNumberWidth);
  const std::string margin(number.size(), ' ');
  std::string text = fmt::format("{}{}: {} [{}]\n{} | {}\n{} | {}\n", place_text(source, at),
                                 name_of(finding.severity), fit(finding.message), finding.rule,
                                 number, excerpt.line, margin, excerpt.underline);
  if (!finding.statement.empty())
    text += fmt::format("{} = in {}\n", margin, fit(finding.statement));
  if (!finding.cause.empty()) text += fmt::format("{} = {}\n", margin, fit(finding.cause));
  for (const check::RelatedPlace& place : finding.related)
    text += fmt::format("{}note: {}\n", place_text(source, place.span.begin), fit(place.message));
  return text;
}

void print_findings(const check::Source& source, const check::Findings& findings) {
  for (const check::Finding& finding : findings.list) {
    const std::string text = finding_text(source, finding);
    print_error(std::string_view(text).substr(0, text.size() - 1));
  }
}

void print_more(const check::Source& source, const check::Findings& findings) {
  const std::uint64_t more = findings.count - findings.list.size();
  if (more != 0) {
    print_error(fmt::format("{}: {} more; see --max-errors", escaped(source.path()),
                            counted(more, "finding")));
  }
}

}  // namespace zelk::tool

#include "findings/report_json.hpp"

#include <nlohmann/json.hpp>

#include "base/quoting.hpp"
#include "term/json_array.hpp"

namespace zelk::tool {

namespace {

Json json_of(const check::Source& source, const check::RelatedPlace& place) {
  const auto [line, column] = source.position(place.span.begin);
  return {{"file", utf8(source.path_at(place.span.begin))},
          {"line", line},
          {"column", column},
          {"message", utf8(place.message)}};
}

Json json_of(const check::Source& source, const check::Finding& finding) {
  const auto [line, column] = source.position(finding.span.begin);
  const auto [end_line, end_column] = source.position(end_in_file(source, finding.span));
  Json object = {{"file", utf8(source.path_at(finding.span.begin))},
                 {"line", line},
                 {"column", column},
                 {"endLine", end_line},
                 {"endColumn", end_column},
                 {"severity", name_of(finding.severity)},
                 {"rule", finding.rule},
                 {"message", utf8(finding.message)}};
  if (!finding.statement.empty()) object["statement"] = utf8(finding.statement);
  if (!finding.cause.empty()) object["cause"] = utf8(finding.cause);
  for (const check::RelatedPlace& place : finding.related)
    object["related"].push_back(json_of(source, place));
  return object;
}

/// An array of all findings, whatever file they are of.
class JsonReport : public FindingsReport {
 public:
  explicit JsonReport(Output& out) : array_(out) {}

  void add(const check::Source& source, const check::Findings& findings) override {
    for (const check::Finding& finding : findings.list) array_.element(json_of(source, finding));
  }
  void finish() override { array_.finish(); }

 private:
  JsonArray array_;
};

}  // namespace

std::unique_ptr<FindingsReport> make_json_report(Output& out) {
  return std::make_unique<JsonReport>(out);
}

}  // namespace zelk::tool

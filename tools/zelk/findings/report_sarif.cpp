/// SARIF 2.1.0, the format in which code reviews and editors take findings (OASIS, 2020):
///
///     {"version": "2.1.0", "runs": [{"columnKind": "utf16CodeUnits",
///       "results": [RESULT, ...], "tool": {"driver": {"name": "zelk", "rules": [...]}}}]}
///
/// The results come first, so that they can be written one by one: which rules there are shows only
/// behind them.

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>

#include "base/characters.hpp"
#include "base/quoting.hpp"
#include "findings/report_json.hpp"
#include "term/json_array.hpp"

namespace zelk::tool {

namespace {

bool is_plain_in_uri(char c) {
  const bool is_letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return is_letter || is_digit(c) || std::string_view("-._~/").find(c) != std::string_view::npos;
}

/// A path as a reference (RFC 3986): relative ones stay so, absolute ones begin with "file://".
std::string uri_of(const std::string& path) {
  const std::string text = utf8(path);
  const std::filesystem::path native(std::u8string(text.begin(), text.end()));
  std::string uri;
  for (const char8_t unit : native.generic_u8string()) {
    const char c = static_cast<char>(unit);
    uri += is_plain_in_uri(c) ? std::string(1, c)
                              : fmt::format("%{:02X}", static_cast<unsigned char>(c));
  }
  if (!native.is_absolute()) return uri;
  return (uri.starts_with('/') ? "file://" : "file:///") + uri;
}

Json location_of(const check::Source& source, const check::Span& span) {
  const std::uint32_t end = end_in_file(source, span);
  const Json region = {{"startLine", source.position(span.begin).line},
                       {"startColumn", source.utf16_column(span.begin)},
                       {"endLine", source.position(end).line},
                       {"endColumn", source.utf16_column(end)}};
  const Json artifact = {{"uri", uri_of(source.path_at(span.begin))}};
  return {{"physicalLocation", {{"artifactLocation", artifact}, {"region", region}}}};
}

std::string text_of(const check::Finding& finding) {
  std::string text = utf8(finding.message);
  if (!finding.statement.empty()) text += " (in " + utf8(finding.statement) + ")";
  if (!finding.cause.empty()) text += "; " + utf8(finding.cause);
  return text;
}

Json result_of(const check::Source& source, const check::Finding& finding) {
  Json result = {{"ruleId", finding.rule},
                 {"level", name_of(finding.severity)},
                 {"message", {{"text", text_of(finding)}}},
                 {"locations", Json::array({location_of(source, finding.span)})}};
  for (const check::RelatedPlace& place : finding.related) {
    Json location = location_of(source, place.span);
    location["message"] = {{"text", utf8(place.message)}};
    result["relatedLocations"].push_back(std::move(location));
  }
  return result;
}

class SarifReport : public FindingsReport {
 public:
  SarifReport(Output& out, RuleSentence sentence) : out_(out), sentence_(sentence), results_(out) {
    out_.line(R"({{"$schema": "https://json.schemastore.org/sarif-2.1.0.json",)");
    out_.line(R"("version": "2.1.0",)");
    out_.line(R"("runs": [{{"columnKind": "utf16CodeUnits",)");
    out_.line(R"("results":)");
  }

  void add(const check::Source& source, const check::Findings& findings) override {
    for (const check::Finding& finding : findings.list) {
      rules_.insert(finding.rule);
      results_.element(result_of(source, finding));
    }
  }

  void finish() override {
    results_.finish();
    Json rules = Json::array();
    for (const std::string_view rule : rules_)
      rules.push_back({{"id", rule}, {"shortDescription", {{"text", sentence_(rule)}}}});
    const Json driver = {{"name", "zelk"}, {"version", ZELK_TOOL_VERSION}, {"rules", rules}};
    const Json tool = {{"driver", driver}};
    out_.line(R"(,"tool": {}}}]}})", tool.dump());
  }

 private:
  Output& out_;
  RuleSentence sentence_;
  JsonArray results_;
  std::set<std::string_view> rules_;
};

}  // namespace

std::unique_ptr<FindingsReport> make_sarif_report(Output& out, RuleSentence sentence) {
  return std::make_unique<SarifReport>(out, sentence);
}

}  // namespace zelk::tool

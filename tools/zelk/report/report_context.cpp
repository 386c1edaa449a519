#include "report/report_context.hpp"

#include <utility>

namespace zelk::tool {

using nlohmann::json;

ReportContext::ReportContext(EncodedDatabase encoded, const FileFindings& file_findings,
                             std::size_t most_messages)
    : database(encoded),
      findings(file_findings),
      ids(encoded, most_messages),
      traffic(encoded.records, most_messages),
      groups(encoded.records),
      known({encoded.records.nodes, encoded.records.messages, encoded.records.env_vars,
             encoded.records.attr_defs, encoded.records.attr_values}) {}

json ReportContext::findings_of(const void* record) const {
  const auto found = findings.by_record.find(record);
  if (found == findings.by_record.end()) return nullptr;
  json list = json::array();
  for (const std::size_t index : found->second) {
    const ShownFinding& finding = findings.list[index];
    list.push_back({{"severity", name_of(finding.severity)},
                    {"rule", finding.rule},
                    {"message", finding.message},
                    {"place", finding.place}});
  }
  return {{"list", std::move(list)}};
}

}  // namespace zelk::tool

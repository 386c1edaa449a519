#include "report/report_context.hpp"

#include <utility>

#include "base/list.hpp"
#include "report/bus_load.hpp"

namespace zelk::tool {

using nlohmann::json;

namespace {

std::unordered_set<const sigblk*> linked_signals(const msgblk* messages) {
  std::unordered_set<const sigblk*> linked;
  for (const msgblk& message : each(messages)) {
    for (const sigblk& signal : each(message.signals))
      if (signal.mux_signal) linked.insert(signal.mux_signal);
    for (const siggroupblk& group : each(message.siggroups))
      for (const siglistblk& member : each(group.signals)) linked.insert(member.signal);
  }
  return linked;
}

}  // namespace

ReportContext::ReportContext(EncodedDatabase encoded, const FileFindings& file_findings,
                             std::size_t most_messages)
    : database(encoded),
      findings(file_findings),
      ids(encoded, most_messages),
      traffic(encoded.records, most_messages),
      value_lists(encoded, most_messages),
      linked(linked_signals(encoded.records.messages)),
      groups(encoded.records),
      cycle_time(zelk::tool::cycle_time(encoded.records)) {}

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

#include "report/report_page.hpp"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

#include "base/list.hpp"
#include "check/objects/record_words.hpp"
#include "page/page.hpp"
#include "report/bus_load.hpp"
#include "report/layout_data.hpp"
#include "report/message_data.hpp"
#include "report/object_data.hpp"
#include "report/page_frame.hpp"
#include "report/record_data.hpp"
#include "report/texts.hpp"

namespace zelk::tool {

using nlohmann::json;

namespace {

constexpr std::size_t kMostMessages = 10000;
constexpr std::size_t kMostSignals = 100000;

PageParts parts() {
  return {{"layout", report_texts::layout_mustache},
          {"comment", report_texts::comment_mustache},
          {"attributes", report_texts::attributes_mustache},
          {"values", report_texts::values_mustache},
          {"findings", report_texts::findings_mustache}};
}

/// Messages and signals, of which the first ones are on the page.
struct Extent {
  explicit Extent(const msgblk* head) {
    for (const msgblk& message : each(head)) {
      ++messages;
      signals += each(message.signals).size();
      if (messages <= kMostMessages && signals <= kMostSignals) shown = messages;
    }
  }

  std::size_t messages = 0;
  std::size_t signals = 0;
  std::size_t shown = 0;  ///< messages

  std::string note() const {
    if (shown == messages) return "";
    return fmt::format(
        "Of {} messages with {} signals the first {} are here: a browser takes no more.", messages,
        signals, shown);
  }
};

/// Fills in the rows and the sections of the messages that are on the page.
void add_messages(const ReportContext& context, const Extent& extent, json& data) {
  const PageTemplate section(report_texts::message_mustache, parts());
  json rows = json::array();
  std::string sections;
  bool has_cycles = false;
  bool has_groups = false;
  for (const msgblk& message : each(context.database.records.messages)) {
    if (rows.size() == extent.shown) break;
    json row = message_row(context, message);
    has_cycles |= !row["cycle"].get_ref<const std::string&>().empty();
    has_groups |= !row["group"].get_ref<const std::string&>().empty();
    rows.push_back(std::move(row));
    sections += section.fill(message_section(context, message));
  }
  data["has_cycles"] = has_cycles;
  data["has_groups"] = has_groups;
  data["has_rows"] = !rows.empty();
  data["messages"] = std::move(rows);
  data["sections"] = std::move(sections);
  data["note"] = extent.note();
}

json timings_data(const ZelkDatabase& database) {
  json list = json::array();
  for (const btlblk& timing : each(database.bit_timings)) {
    list.push_back({{"rate", timing.baudrate},
                    {"btr1", check::hex_text(timing.btr1, 2)},
                    {"btr2", check::hex_text(timing.btr2, 2)}});
  }
  return list;
}

void add_findings(const ReportContext& context, json& data) {
  const FileFindings& findings = context.findings;
  json list = json::array();
  for (const ShownFinding& finding : findings.list) {
    const std::string element = finding.record ? context.ids.of(finding.record) : "";
    list.push_back({{"severity", name_of(finding.severity)},
                    {"rule", finding.rule},
                    {"message", finding.message},
                    {"place", finding.place},
                    {"element", element}});
  }
  json mends = json::array();
  for (const ShownFinding& mend : findings.mends)
    mends.push_back({{"rule", mend.rule}, {"message", mend.message}, {"place", mend.place}});
  std::uint64_t count = 0;
  for (const std::uint64_t each : findings.counts) count += each;
  const std::uint64_t rest = count - list.size();
  data["finding_count"] = count;
  data["has_list"] = !list.empty();
  data["list"] = std::move(list);
  data["why_none"] = findings.why_none;
  data["more_findings"] = rest == 0 ? json(nullptr) : json(rest);
  data["mend_count"] = findings.mend_count == 0 ? json(nullptr) : json(findings.mend_count);
  data["mends"] = std::move(mends);
}

/// A section of the page.
struct Section {
  const char* element;
  const char* heading;
  json count;  ///< of its objects; null when it has no number
  bool is_there;
};

/// Says which sections there are, fills in the figures, and returns the contents.
json add_sections(const std::vector<Section>& sections, json& data) {
  json contents = json::array();
  json figures = json::array();
  for (const auto& [element, heading, count, is_there] : sections) {
    data[std::string("has_") + element] = is_there;
    if (!is_there) continue;
    contents.push_back({{"element", element}, {"heading", heading}, {"count", count}});
    if (!count.is_null()) figures.push_back(contents.back());
  }
  data["figures"] = std::move(figures);
  return contents;
}

json contents_of(const Extent& extent, json& data) {
  const auto counted_section = [&data](const char* element, const char* heading) {
    const std::size_t count = data[element].size();
    return Section{element, heading, count, count > 0};
  };
  return add_sections({{"overview", "Overview", nullptr, true},
                       {"messages", "Messages", extent.messages, true},
                       {"signals", "Signals", extent.signals, extent.signals > 0},
                       {"details", "Messages in detail", nullptr, extent.messages > 0},
                       counted_section("nodes", "Nodes"),
                       {"matrix", "Senders and receivers", nullptr, !data["matrix"].is_null()},
                       counted_section("tables", "Value tables"),
                       counted_section("variables", "Environment variables"),
                       counted_section("types", "Signal types"),
                       counted_section("definitions", "Attributes"),
                       counted_section("categories", "Categories"),
                       {"findings", "Findings", data["finding_count"], true}},
                      data);
}

}  // namespace

std::string report_page(EncodedDatabase database, const std::string& name,
                        const FileFindings& findings, const BitRates& rates) {
  const ZelkDatabase& records = database.records;
  const Extent extent(records.messages);
  const ReportContext context(database, findings, extent.shown);
  json data = {
      {"version", text_data(view(records.user_data), database.encoding)},
      {"comment", text_data(view(records.comment), database.encoding)},
      {"attributes", attributes_data(records.attr_values, database.encoding)},
      {"timings", timings_data(records)},
      {"load", render(report_texts::bus_load_mustache,
                      bus_load_data(bus_load(records, rates), database.encoding, context.ids))},
      {"layout_parts", layout_parts()},
      {"nodes", nodes_data(context)},
      {"matrix", matrix_data(context)},
      {"variables", variables_data(context)},
      {"tables", tables_data(context)},
      {"types", types_data(context)},
      {"definitions", definitions_data(context)},
      {"categories", categories_data(context)}};
  add_messages(context, extent, data);
  add_findings(context, data);
  PageFrame frame{.title = name, .main = {}};
  frame.contents = contents_of(extent, data);
  frame.main = render(report_texts::report_mustache, data, parts());
  return framed_page(frame);
}

}  // namespace zelk::tool

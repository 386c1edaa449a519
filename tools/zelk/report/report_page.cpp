#include "report/report_page.hpp"

#include "base/list.hpp"
#include "page/page.hpp"
#include "report/bus_load.hpp"
#include "report/layout_data.hpp"
#include "report/message_data.hpp"
#include "report/page_frame.hpp"
#include "report/texts.hpp"

namespace zelk::tool {

using nlohmann::json;

namespace {

json contents_entry(const char* element, const char* heading, std::size_t count) {
  return {{"element", element}, {"heading", heading}, {"count", count}};
}

}  // namespace

std::string report_page(EncodedDatabase database, const std::string& name) {
  const ElementIds ids(database);
  const MessageData data(database, ids);
  const PageTemplate section(report_texts::message_mustache,
                             {{"layout", report_texts::layout_mustache}});
  json rows = json::array();
  std::string sections;
  for (const msgblk& message : each(database.records.messages)) {
    rows.push_back(data.row(message));
    sections += section.fill(data.section(message));
  }
  PageFrame frame{.title = name, .main = {}};
  frame.contents.push_back({{"element", "overview"}, {"heading", "Overview"}, {"count", nullptr}});
  frame.contents.push_back(contents_entry("messages", "Messages", rows.size()));
  const std::string load =
      render(report_texts::bus_load_mustache,
             bus_load_data(bus_load(database.records, {}), database.encoding, ids));
  frame.main = render(report_texts::report_mustache, {{"comment", nullptr},
                                                      {"figures", json::array()},
                                                      {"load", load},
                                                      {"layout_parts", layout_parts()},
                                                      {"messages", std::move(rows)},
                                                      {"sections", std::move(sections)}});
  return framed_page(frame);
}

}  // namespace zelk::tool

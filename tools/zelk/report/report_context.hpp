/// \file
/// What everything on the page of a database looks things up in.

#ifndef ZELK_TOOL_REPORT_REPORT_CONTEXT_HPP
#define ZELK_TOOL_REPORT_REPORT_CONTEXT_HPP

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <unordered_set>

#include "base/encoded_database.hpp"
#include "base/enum_items.hpp"
#include "check/lint/known_attributes.hpp"
#include "report/element_ids.hpp"
#include "report/file_findings.hpp"
#include "report/traffic.hpp"
#include "report/value_lists.hpp"
#include "words/j1939.hpp"

namespace zelk::tool {

struct ReportContext {
  /// The records and the findings must outlive the object.
  ///
  /// @param most_messages  of which, the first ones, the page tells
  ReportContext(EncodedDatabase encoded, const FileFindings& file_findings,
                std::size_t most_messages);

  std::string text(std::string_view record_text) const {
    return to_utf8(record_text, database.encoding);
  }
  /// {"element", "name"} of a named record of the database.
  nlohmann::json link(const void* record, std::string_view name) const {
    return {{"element", ids.of(record)}, {"name", text(name)}};
  }
  /// {"list": [{"severity", "rule", "message", "place"}]}; null when there is none about the
  /// record.
  nlohmann::json findings_of(const void* record) const;

  EncodedDatabase database;
  IndexedEnumItems items;  ///< keeps looking up values quick while the page is made
  const FileFindings& findings;
  ElementIds ids;
  Traffic traffic;
  ValueLists value_lists;
  /// Signals that others name: multiplexors, and members of groups.
  std::unordered_set<const sigblk*> linked;
  ParameterGroups groups;
  check::KnownAttribute cycle_time;  ///< of messages, in ms
};

}  // namespace zelk::tool

#endif

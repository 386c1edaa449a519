/// \file
/// What the page shows of messages.

#ifndef ZELK_TOOL_REPORT_MESSAGE_DATA_HPP
#define ZELK_TOOL_REPORT_MESSAGE_DATA_HPP

#include <nlohmann/json.hpp>

#include "base/encoded_database.hpp"
#include "report/element_ids.hpp"
#include "words/j1939.hpp"

namespace zelk::tool {

/// Gathers the data of templates from the records of one database, which must outlive the object.
class MessageData {
 public:
  MessageData(EncodedDatabase database, const ElementIds& ids);

  /// For a row of the table of messages.
  nlohmann::json row(const msgblk& message) const;
  /// For message.mustache.
  nlohmann::json section(const msgblk& message) const;

 private:
  nlohmann::json signal(const sigblk& signal) const;
  std::string text(std::string_view record_text) const;

  EncodedDatabase database_;
  const ElementIds& ids_;
  ParameterGroups groups_;
};

}  // namespace zelk::tool

#endif

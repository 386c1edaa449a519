/// \file
/// Identifiers of elements in a page: what links lead to.

#ifndef ZELK_TOOL_REPORT_ELEMENT_IDS_HPP
#define ZELK_TOOL_REPORT_ELEMENT_IDS_HPP

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "base/encoded_database.hpp"

namespace zelk::tool {

/// The elements of a database's objects. They stay the same while the objects keep their names and
/// identifiers, so that links from elsewhere last: "message-100", "message-100.Speed",
/// "node-Gateway". Doubled ones have "~2", "~3", ... behind them.
class ElementIds {
 public:
  explicit ElementIds(EncodedDatabase database);

  /// Of a record of the database: a message, signal, node, value table, variable or signal type.
  const std::string& of(const void* record) const { return elements_.at(record); }

 private:
  void add(const void* record, std::string element);
  void add_message(const msgblk& message);
  std::string text(std::string_view name) const;

  Encoding encoding_;
  std::unordered_map<const void*, std::string> elements_;
  std::unordered_map<std::string, unsigned> uses_;
};

}  // namespace zelk::tool

#endif

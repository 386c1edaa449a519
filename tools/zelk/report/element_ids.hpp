/// \file
/// Identifiers of elements in a page: what links lead to.

#ifndef ZELK_TOOL_REPORT_ELEMENT_IDS_HPP
#define ZELK_TOOL_REPORT_ELEMENT_IDS_HPP

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/encoded_database.hpp"
#include "base/seeded_hash.hpp"

namespace zelk::tool {

/// The elements of a database's objects. They stay the same while the objects keep their names and
/// identifiers, so that links from elsewhere last: "message-100", "100.Speed" for a
/// signal, which there are many of, "node-Gateway". Doubled ones have "~2", "~3", ... behind them.
class ElementIds {
 public:
  /// @param most_messages  of which, the first ones, the page has elements
  explicit ElementIds(EncodedDatabase database, std::size_t most_messages = SIZE_MAX);

  /// Of a record of the database: a message, signal, node, value table, variable or signal type;
  /// empty when the page has no element for it.
  std::string of(const void* record) const {
    const auto found = elements_.find(record);
    return found == elements_.end() ? "" : found->second;
  }

 private:
  void add(const void* record, std::string element);
  void add_message(const msgblk& message);
  static std::string text(std::string_view name);

  std::unordered_map<const void*, std::string> elements_;
  std::unordered_map<std::string, unsigned, SeededHash> uses_;
};

}  // namespace zelk::tool

#endif

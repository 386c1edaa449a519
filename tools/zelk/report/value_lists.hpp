/// \file
/// Value descriptions that several objects have alike: a page writes them once.

#ifndef ZELK_TOOL_REPORT_VALUE_LISTS_HPP
#define ZELK_TOOL_REPORT_VALUE_LISTS_HPP

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <unordered_map>

#include "base/encoded_database.hpp"
#include "zelk/records.h"

namespace zelk::tool {

class ValueLists {
 public:
  /// Finds equal lists of signals. The records must outlive the object.
  ///
  /// @param most_messages  of which, the first ones, the page has the signals
  ValueLists(EncodedDatabase database, std::size_t most_messages);

  /// For values.mustache: the descriptions as `values_data` has them, with a "number" when others
  /// refer to them; {"same", "count"} for a list that stands with an earlier signal, the number and
  /// the length of that; null for none.
  nlohmann::json data(const val* values) const;

 private:
  struct Use {
    unsigned number;
    std::size_t count;
    bool is_first;
  };

  Encoding encoding_;
  std::unordered_map<const val*, Use> uses_;  // of lists that several signals have
};

}  // namespace zelk::tool

#endif

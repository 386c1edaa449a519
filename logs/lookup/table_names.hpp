/// \file
/// Names of the tables of messages.

#ifndef ZELK_LOGS_LOOKUP_TABLE_NAMES_HPP
#define ZELK_LOGS_LOOKUP_TABLE_NAMES_HPP

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/list.hpp"
#include "base/seeded_hash.hpp"
#include "logs/lookup/named_database.hpp"
#include "logs/lookup/unique_names.hpp"

namespace zelk::logs {

/// A table has the name of its message, with the database in front where several databases have a
/// message of that name, chosen or not; what is equal then gets a number.
class TableNames {
 public:
  /// @param separator  between database and message
  TableNames(const std::vector<NamedDatabase>& databases, std::string_view separator)
      : separator_(separator) {
    for (const NamedDatabase& database : databases) {
      for (const msgblk& message : each<const msgblk>(database.content.records.messages))
        owners_[database.text_of(message.name)].insert(&database);
    }
  }

  /// The name of the next table.
  std::string next(const std::string& database, const std::string& message) {
    const bool is_shared = owners_[message].size() > 1;
    return names_.unique(is_shared ? database + separator_ + message : message);
  }

 private:
  std::string separator_;
  std::unordered_map<std::string, std::unordered_set<const NamedDatabase*>, SeededHash> owners_;
  UniqueNames names_;
};

}  // namespace zelk::logs

#endif

/// \file
/// Finds the message of a frame by its identifier or, for J1939, by its parameter group.

#ifndef ZELK_LOGS_COLUMNS_MESSAGE_FINDER_HPP
#define ZELK_LOGS_COLUMNS_MESSAGE_FINDER_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/encoded_database.hpp"
#include "base/hash_table.hpp"
#include "base/j1939_groups.hpp"
#include "zelk/database.hpp"

namespace zelk::logs {

/// What frames make rows of: the index of a table, or none.
inline constexpr std::uint32_t kNoTable = UINT32_MAX;

/// A database that was added. The same one may be added several times, for several channels.
struct NamedDatabase {
  EncodedDatabase content;
  std::string name;
  std::string channel;                                           ///< empty for all
  std::unordered_map<const msgblk*, std::uint32_t> tables = {};  ///< of the messages that have one

  bool counts_for(std::string_view of) const { return channel.empty() || channel == of; }
  std::uint32_t table_of(const msgblk& message) const {
    const auto found = tables.find(&message);
    return found == tables.end() ? kNoTable : found->second;
  }
};

/// Finds messages of one database by their parameter group.
class GroupFinder {
 public:
  /// @param match_any  whether all messages count, and not only those of J1939
  GroupFinder(const NamedDatabase& database, bool match_any);

  const NamedDatabase& database() const { return database_; }
  /// Whether identifiers are numbers of groups.
  bool has_group_numbers() const { return has_group_numbers_; }
  bool has_groups() const { return has_groups_ || all_; }
  /// @param id  of an extended frame
  const msgblk* find(std::uint32_t id) const;

 private:
  const NamedDatabase& database_;
  bool has_group_numbers_;
  bool has_groups_;  ///< the database says which messages are of J1939
  std::optional<const J1939Groups> all_;
};

/// The search among several databases, in their order.
class MessageFinder {
 public:
  /// What was found of late.
  class Cache {
   public:
    void clear() { entries_.fill({}); }

   private:
    friend class MessageFinder;
    static constexpr std::size_t kEntries = 1024;
    struct Entry {
      std::uint32_t id = 0;
      std::uint32_t route = UINT32_MAX;  ///< of nothing that was found
      std::uint32_t table = kNoTable;
    };
    std::array<Entry, kEntries> entries_;
  };

  /// @param databases  must outlive the object
  MessageFinder(const std::vector<NamedDatabase>& databases, bool match_groups);

  /// The databases that count for a channel; channels of one route find the same messages.
  std::uint32_t route_of(std::string_view channel) const;

  /// The table of a frame; `kNoTable` when its message has none, or it has no message.
  std::uint32_t find(std::uint32_t route, std::uint32_t id, Cache& cache) const {
    Cache::Entry& entry = cache.entries_[(id ^ id >> 8 ^ id >> 16) % Cache::kEntries];
    if (entry.id != id || entry.route != route) entry = {id, route, search(route, id)};
    return entry.table;
  }

 private:
  /// Tables by identifiers, counted from `kFirstTable`; the number in front is for messages without
  /// one, and 0 for no message.
  using Tables = HashTable<std::uint32_t, std::uint32_t>;
  static constexpr std::uint32_t kFirstTable = 2;

  struct Route {
    Tables by_id;
    std::vector<const GroupFinder*> groups;
  };

  void add_route(const std::string& channel, const std::vector<NamedDatabase>& databases);
  static void add_messages(const GroupFinder& groups, Tables& tables);
  std::uint32_t search(std::uint32_t route, std::uint32_t id) const;

  std::vector<std::unique_ptr<const GroupFinder>> groups_;  ///< one for each database
  std::vector<Route> routes_;  ///< the first one is for channels that no database names
  std::unordered_map<std::string, std::uint32_t, SeededHash> named_routes_;
};

}  // namespace zelk::logs

#endif

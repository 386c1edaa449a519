/// \file
/// Finds the message of a frame by its identifier or, for J1939, by its parameter group.

#ifndef ZELK_LOGS_LOOKUP_MESSAGE_FINDER_HPP
#define ZELK_LOGS_LOOKUP_MESSAGE_FINDER_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/hash_table.hpp"
#include "base/j1939_groups.hpp"
#include "logs/lookup/named_database.hpp"

namespace zelk::logs {

/// Number of a frame's message when there is none.
inline constexpr std::uint32_t kNoMessage = UINT32_MAX;

/// Finds messages of one database by their parameter group.
class GroupFinder {
 public:
  /// @param first      number of its first message
  /// @param match_any  whether all messages count, and not only those of J1939
  GroupFinder(const NamedDatabase& database, std::uint32_t first, bool match_any);

  const NamedDatabase& database() const { return database_; }
  /// Number of its first message; the others follow in the order of the list.
  std::uint32_t first() const { return first_; }
  /// Whether identifiers are numbers of groups.
  bool has_group_numbers() const { return has_group_numbers_; }
  bool has_groups() const { return has_groups_ || all_; }
  /// The number of a message.
  ///
  /// @param id  of an extended frame
  std::uint32_t find(std::uint32_t id) const;

 private:
  const NamedDatabase& database_;
  std::uint32_t first_;
  bool has_group_numbers_;
  bool has_groups_;  ///< the database says which messages are of J1939
  std::optional<const J1939Groups> all_;
  std::unordered_map<const msgblk*, std::uint32_t> numbers_;  ///< where groups are searched
};

/// The search among several databases, in their order: for a message with the identifier, and then
/// for one with the parameter group.
///
/// Messages are numbered: those of the first database in the order of its list, then those of the
/// next one.
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
      std::uint32_t message = kNoMessage;
    };
    std::array<Entry, kEntries> entries_;
  };

  /// @param databases  must outlive the object
  MessageFinder(const std::vector<NamedDatabase>& databases, bool match_groups);

  /// The databases that count for a channel; channels of one route find the same messages.
  std::uint32_t route_of(std::string_view channel) const;

  /// The number of a frame's message.
  std::uint32_t find(std::uint32_t route, std::uint32_t id, Cache& cache) const {
    Cache::Entry& entry = cache.entries_[(id ^ id >> 8 ^ id >> 16) % Cache::kEntries];
    if (entry.id != id || entry.route != route) entry = {id, route, search(route, id)};
    return entry.message;
  }
  /// Likewise, without a cache.
  std::uint32_t search(std::uint32_t route, std::uint32_t id) const;

 private:
  using Numbers = HashTable<std::uint32_t, std::uint32_t>;
  static constexpr std::uint32_t kFirst = 1;  ///< in the tables, where 0 stands for no message

  struct Route {
    Numbers by_id;
    std::vector<const GroupFinder*> groups;
  };

  void add_route(const std::string& channel);
  static void add_messages(const GroupFinder& groups, Numbers& numbers);

  std::vector<std::unique_ptr<const GroupFinder>> groups_;  ///< one for each database
  std::vector<Route> routes_;  ///< the first one is for channels that no database names
  std::unordered_map<std::string, std::uint32_t, SeededHash> named_routes_;
};

}  // namespace zelk::logs

#endif

/// \file
/// The tables by which a manager finds its databases.

#ifndef ZELK_MANAGER_MANAGER_TABLES_HPP
#define ZELK_MANAGER_MANAGER_TABLES_HPP

#include <cstdint>
#include <map>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <unordered_set>

#include "base/seeded_hash.hpp"
#include "zelk/manager.hpp"

namespace zelk {

/// The nodes of a manager's list by each key that lookups use, and the manager's cache.
struct ManagerTables {
  using Node = ZelkManager::DbListNode;

  /// Puts a node into the list that begins with `head`, behind the last one of its priority or a
  /// higher one.
  ///
  /// @throws std::bad_alloc, with nothing changed
  void enter(Node& node, Node*& head);
  void leave(const Node& node, Node*& head) noexcept;
  /// Enters a node under another name.
  ///
  /// @throws std::bad_alloc, with nothing changed
  void rename(Node& node, char* name);

  std::unordered_map<std::string_view, Node*, SeededHash> by_name;
  std::unordered_map<const char*, Node*> by_handle;
  /// A database has one node, except when its file was touched and touched back between two opens.
  std::unordered_multimap<const ZelkDatabase*, Node*> by_database;
  /// The last one in the list of each priority.
  std::map<std::uint32_t, Node*> last_of_priority;
  /// Databases that this manager closed into the cache.
  std::unordered_set<ZelkDatabase*> cache;
  /// The thread that made the manager, or last opened a database in it.
  std::thread::id thread = std::this_thread::get_id();
  bool is_for_writing = false;  ///< the manager is a `ZelkWriteManager`

 private:
  void forget(const Node& node) noexcept;
};

}  // namespace zelk

#endif

/// \file
/// How the write manager finds what it edits.

#ifndef ZELK_EDIT_EDITS_HPP
#define ZELK_EDIT_EDITS_HPP

#include <cstdint>

#include "base/list.hpp"
#include "database/holding.hpp"
#include "model/list_edit.hpp"
#include "model/without_raising.hpp"
#include "zelk/model.h"
#include "zelk/write_manager.hpp"

namespace zelk {

struct ManagerEdits {
  /// The database of a handle, to be changed; null when there is none.
  static ZelkDatabase* database(ZelkWriteManager& manager, const char* db) {
    const ZelkDatabase* const found = manager.FindDatabase(db);
    return found ? found->HandOut(found) : nullptr;
  }

  /// The database of the handle `db`, or for null the one that holds `record`, to be changed; null
  /// also when the named one does not hold it.
  template <typename Record>
  static ZelkDatabase* holder(ZelkWriteManager& manager, const Record& record, const char* db) {
    for (const ZelkManager::DbListNode& node : each(manager.databases_)) {
      if (db && node.name != db) continue;
      if (holds(node.database, record)) return node.database.HandOut(&node.database);
    }
    return nullptr;
  }

  /// Called before a key of `record` changes: forbids the index of the database that holds it. As a
  /// rule that has happened already, when the record was handed out.
  template <typename Record>
  static void begin_change(const ZelkWriteManager& manager, const Record& record) {
    for (const ZelkManager::DbListNode& node : each(manager.databases_)) {
      const ZelkDatabase& database = node.database;
      if (!database.IsHandedOut() && holds(database, record)) database.HandOut(&database);
    }
  }
};

/// Removes every link to a node.
///
/// @param release  gets each link
/// @return how many there were
template <typename Release>
std::uint16_t remove_links(rxblk*& links, const symblk& node, Release release) {
  const auto leads_to_node = [&node](const rxblk& link) { return link.node == &node; };
  return static_cast<std::uint16_t>(remove_if(links, leads_to_node, release));
}

/// Subtracts what was removed from a count. A host may have set the count to anything.
inline void count_off(std::uint16_t& count, std::uint16_t removed) {
  count = static_cast<std::uint16_t>(count > removed ? count - removed : 0);
}

/// Removes a node from a message's transmitters; the first one left takes its place.
///
/// @param release  gets each link
template <typename Release>
void remove_transmitter(msgblk& message, const symblk& node, Release release) {
  remove_links(message.tx_nodes, node, release);
  if (message.transmitter != &node) return;
  message.transmitter = message.tx_nodes ? message.tx_nodes->node : nullptr;
}

/// Removes a signal's entries from a group.
inline void remove_entries(siggroupblk& group, const sigblk& signal) {
  const auto is_entry = [&signal](const siglistblk& entry) { return entry.signal == &signal; };
  remove_if(group.signals, is_entry, zelk_mfree);
}

/// Removes a category's links from a view filter.
inline void remove_links(catlink*& links, const cat& category) {
  const auto leads_to_it = [&category](const catlink& link) { return link.category == &category; };
  remove_if(links, leads_to_it, zelk_mfree);
}

}  // namespace zelk

#endif

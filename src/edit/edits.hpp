/// \file
/// How the write manager finds what it edits.

#ifndef ZELK_EDIT_EDITS_HPP
#define ZELK_EDIT_EDITS_HPP

#include <cstdint>
#include <new>

#include "base/list.hpp"
#include "database/holding.hpp"
#include "model/errors.hpp"
#include "model/list_edit.hpp"
#include "zelk/exception.hpp"
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
    for (ZelkManager::DbListNode* node = manager.databases_; node; node = node->next) {
      if (db && node->name != db) continue;
      if (holds(node->database, record)) return node->database.HandOut(&node->database);
    }
    return nullptr;
  }

  /// Before a key of `record` changes: the database that holds it has been handed out, as a rule,
  /// with the record.
  template <typename Record>
  static void begin_change(const ZelkWriteManager& manager, const Record& record) {
    for (const ZelkManager::DbListNode* node = manager.databases_; node; node = node->next) {
      const ZelkDatabase& database = node->database;
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

/// Counts off what was removed, from a count that a host may have set to anything.
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

/// Makes an edit; one that finds no memory does not happen, and is reported in the error text.
template <typename Edit>
void edit_or_tell(Edit edit) try {
  edit();
} catch (
    const ZelkException&) {  // already reported: whoever raises it appends it to the error text
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, kNoLine, nullptr);
}

}  // namespace zelk

#endif

/// \file
/// The manager that changes databases.

#ifndef ZELK_WRITE_MANAGER_HPP
#define ZELK_WRITE_MANAGER_HPP

#include "zelk/manager.hpp"

namespace zelk {
struct ManagerEdits;

/// What a lookup found in a record that the caller may change.
template <typename Record>
Record* changeable(const Record* record) {
  return const_cast<Record*>(record);
}

}  // namespace zelk

/// A manager that creates databases, edits their records and writes them.
///
/// A file is open in at most one write manager, and beside it in any number of others. Edits change
/// the records in memory, which managers of the same file share; `WriteDatabase` writes them.
///
/// **Locks.** The locks of this manager are write locks. Editing neither takes nor tests one: a
/// host takes it (`LockDatabase`) before the first edit.
///
/// **Edits** return nothing. When there is no such database, definition or value, or no memory
/// (`ZELK_ERR_MEMORY` in the error text), everything stays as it was. Names and values are stored
/// as they are given, whether or not a file can hold them. A parameter `db` is a handle as in
/// `ZelkManager`; texts are copied. A given record must belong to an open database of this manager;
/// when an edit links two records, nothing tests that both are of the same database.
///
/// **Lookups** of this class give records to be changed: from the first one in a database on,
/// lookups there walk the lists (`ZelkDatabase`). To keep them fast, call those of the other class:
/// `manager.ZelkManager::GetMessage(id, db)`.
class ZELK_API ZelkWriteManager : public ZelkManager {
 public:
  explicit ZelkWriteManager(void* thread);  ///< as `ZelkManager`
  explicit ZelkWriteManager(HWND window);

  bool LockDatabase(const char* db, const char* reason) override;
  bool LockAllDatabases(const char* reason) override;
  /// `ZelkErrorOpenForWrite` when any write manager has the file open, this one included; else
  /// `ZelkErrorOk`. Of managers that another thread uses only the write managers count,
  /// and their `OwnsDatabaseForWrite` is not called. Without memory to compare paths
  /// `ZelkErrorOpenForWrite`.
  ZelkError CheckForWriteOpen(const char* path) const override;
  /// Whether one of this manager's databases is that of the file (`ZelkDatabase::IsPathEqual`);
  /// true without memory to compare paths.
  bool OwnsDatabaseForWrite(const char* path) const override;

  // --- Whole databases ---

  /// Opens a new, empty database, with priority 0. Nothing is written.
  ///
  /// @param db    its name
  /// @param name  receives the handle on success; may be null
  /// @param path  its file, which must not exist yet; null for none. Two databases may have the
  /// same such file: the one that is written first gets it (`ZelkDatabase::Write`)
  /// @return tested in this order: `ZelkErrorInvalidName`, `ZelkErrorNameUsed`,
  /// `ZelkErrorFileBelongs` when the file exists, `ZelkErrorNoDatabase` when the heap is exhausted;
  /// or `ZelkErrorOk`
  ZelkError CreateDatabase(const char* db, const char** name, const char* path);
  /// Writes a database (`ZelkDatabase::Write`) and announces it to all managers that have it.
  ///
  /// @param db    null: every database, each to its own file ("None and all" in `ZelkManager`)
  /// @param path  null: the own file; ignored without `db`
  /// @return `ZelkErrorNotWritten` when there is no such database; `ZelkErrorLocked` when another
  /// manager holds a lock on it, which is shown to the user; else as `ZelkDatabase::Write`. For all
  /// databases: `ZelkErrorLocked` when any of them is locked, and none is written; else the first
  /// error met, and the others are written
  ZelkError WriteDatabase(const char* db, const char* path);
  /// Copies a database over another instance of the same file, whose unwritten edits are lost
  /// (`ZelkDatabase::Commit`), and announces it, whether or not there was such an instance.
  ///
  /// @param db  null: every database ("None and all" in `ZelkManager`)
  void CommitDatabase(const char* db);
  /// Empties a database (`ZelkDatabase::Clear`) without announcing it; null: every database ("None
  /// and all" in `ZelkManager`).
  void ClearDatabase(const char* db);
  /// Sets whether extended multiplexing is written.
  ///
  /// @return false when there is no such database
  bool WriteExtendedMultiplexing(const char* db, bool on);

  // --- Creating and deleting ---
  //
  // Creation: a record with the values of model.h, linked in front of the one at position `index`
  // of its list (0: the first), behind the last one when there are fewer. Null when there is no
  // such database, or the heap is exhausted.
  //
  // Deletion: releases the record and all that it owns. Before that the database that holds it is
  // freed of references to it: links to a node or category, entries of a signal in groups and
  // values of an attribute are deleted, references to a type, table or category become null, and
  // signals that a deleted multiplexor selected are always present. A record that the database does
  // not hold stays as it is.
  //
  // `db` null: the database of this manager that holds the record.

  symblk* CreateNode(const char* db, unsigned index);
  void DeleteNode(symblk& node, const char* db = nullptr);
  msgblk* CreateMessage(const char* db, unsigned index);
  void DeleteMessage(msgblk& message, const char* db = nullptr);
  env_var_blk* CreateEnvvar(const char* db, unsigned index);
  void DeleteEnvvar(env_var_blk& variable, const char* db = nullptr);
  btlblk* CreateBitTiming(const char* db, unsigned index);
  void DeleteBitTiming(btlblk& bit_timing, const char* db = nullptr);
  cat* CreateCategory(const char* db, unsigned index);
  void DeleteCategory(cat& category, const char* db = nullptr);
  sigtype* CreateSignalType(const char* db, unsigned index);
  void DeleteSignalType(sigtype& type, const char* db = nullptr);
  valtable* CreateValueTable(const char* db, unsigned index);
  void DeleteValueTable(valtable& table, const char* db = nullptr);
  attr_def* CreateAttrDefinition(const char* db, unsigned index);
  void DeleteAttrDefinition(attr_def& definition, const char* db = nullptr);
  /// Also sets the signal's message, and counts it in the message's `signal_count`.
  sigblk* CreateSignal(msgblk& message, unsigned index);
  /// Also decrements the message's `signal_count`. Signals that it selects as a multiplexor lose
  /// their ranges and are always present from then on; to delete them too, delete them first.
  void DeleteSignal(sigblk& signal, const char* db = nullptr);
  siggroupblk* CreateSignalGroup(msgblk& message, unsigned index);
  void DeleteSignalGroup(siggroupblk& group, const char* db = nullptr);

  // --- Names and texts ---

  void SetName(symblk& node, const char* name);  ///< null changes nothing
  void SetName(msgblk& message, const char* name);
  void SetName(env_var_blk& variable, const char* name);
  void SetName(sigblk& signal, const char* name);

  void SetComment(symblk& node, const char* text);  ///< null: no comment
  void SetComment(msgblk& message, const char* text);
  void SetComment(env_var_blk& variable, const char* text);
  void SetComment(sigblk& signal, const char* text);
  void SetComment(sigtype& type, const char* text);
  void SetComment(siggroupblk& group, const char* text);
  void SetDatabaseComment(const char* db, const char* text);  ///< null: no comment
  /// The text of the "VERSION" line; null: the empty text.
  void SetUserData(const char* db, const char* text);

  /// Gives a value description another number (32 bits) and text; a null text is the empty one.
  void SetValueDescription(val& description, long value, const char* text);
  /// Gives the first description with this number another text, or puts a new one in front.
  void SetValueDescription(sigblk& signal, long value, const char* text);
  void SetValueDescription(env_var_blk& variable, long value, const char* text);
  void SetValueDescription(valtable& table, long value, const char* text);

  // --- Links ---
  //
  // Adding puts a new link in front, even if there is one already. Removing releases every link to
  // the record, but not the relation attribute values that hang on a link (`rxblk::attrs`): a host
  // that has added such values releases them first.

  void AddSignal(siggroupblk& group, const sigblk& signal);
  void RemoveSignal(siggroupblk& group, const sigblk& signal);
  /// Receivers are counted in `receiver_count`.
  void AddReceiver(sigblk& signal, const symblk& node);
  void RemoveReceiver(sigblk& signal, const symblk& node);
  /// The node becomes the message's transmitter when it has none.
  void AddTransmitter(msgblk& message, const symblk& node);
  /// When the node was the message's transmitter, the node of the first link left becomes it, or
  /// none.
  void RemoveTransmitter(msgblk& message, const symblk& node);
  /// Access nodes are counted in `access_node_count`.
  void AddAccessNode(env_var_blk& variable, const symblk& node);

  // The view filter. For the placeholders `ZelkNoneFilterCategory()` and `ZelkNoneFilterNode()`,
  // adding stores a null link. Removing compares the record as it is, and so removes no null link.

  void AddFilterCategory(const cat& category, const char* db);
  void RemoveFilterCategory(const cat& category, const char* db);
  void AddFilterNode(const symblk& node, const char* db);
  void RemoveFilterNode(const symblk& node, const char* db);

  // --- Attribute values ---
  //
  // Names are compared on 32 characters. Several definitions may have one name. The one that counts
  // is that of `ZelkManager::GetAttrDefinition` with the object (of the network:
  // `GetNetworkAttrDefinition`), and not the first of that name, which `GetAttrDefinition` with the
  // name alone gives. Its `value_type` says which member of `value` is read: `text` for
  // `ZELK_ATTR_STRING`, else `number` (the index of the item for an ENUM). The text is copied; null
  // is stored as null, and written to a file as an empty text. Neither range nor items are tested.
  //
  // `db` names the database whose definitions count; null: the one that holds the object. When
  // another database holds it, nothing happens.

  /// Replaces the object's value of that name, or puts a new one in front.
  void SetAttrValue(const char* db, const char* name, const zelk_attr_value_t& value);
  void SetAttrValue(symblk& node, const char* name, const zelk_attr_value_t& value,
                    const char* db = nullptr);
  void SetAttrValue(msgblk& message, const char* name, const zelk_attr_value_t& value,
                    const char* db = nullptr);
  void SetAttrValue(env_var_blk& variable, const char* name, const zelk_attr_value_t& value,
                    const char* db = nullptr);
  void SetAttrValue(sigblk& signal, const char* name, const zelk_attr_value_t& value,
                    const char* db = nullptr);

  /// Deletes the object's first value of that name: the default applies again.
  void ResetAttrValue(const char* db, const char* name);
  void ResetAttrValue(symblk& node, const char* name);
  void ResetAttrValue(msgblk& message, const char* name);
  void ResetAttrValue(env_var_blk& variable, const char* name);
  void ResetAttrValue(sigblk& signal, const char* name);

  // --- Lookups and iterators ---

#include "zelk/write_manager/lookups.inc"

 private:
  friend struct zelk::ManagerEdits;

  template <typename Operation>
  void ForNamedOrAll(const char* db, Operation operation);
  /// What the last lookup found, given out to be changed.
  template <typename Record>
  Record* HandOut(const Record* found) const {
    return found ? answered_->HandOut(found) : nullptr;
  }
  attr_def* HandOutDefinition(const attr_def* found);
  ZelkError CheckForLock(const ZelkDatabase& database);
  ZelkError WriteAndNotify(ZelkDatabase& database, const char* path);
  ZelkError WriteAllDatabases();
};

#endif

/// \file
/// The manager that changes databases.

#ifndef ZELK_WRITE_MANAGER_HPP
#define ZELK_WRITE_MANAGER_HPP

#include "zelk/manager.hpp"

namespace zelk {
struct ManagerEdits;

/// What a lookup found in a record that may be changed.
template <typename Record>
Record* changeable(const Record* record) {
  return const_cast<Record*>(record);
}

}  // namespace zelk

/// A manager that creates databases, edits their records and writes them.
///
/// A file is open in at most one write manager, and in any number of others beside it. Edits act on
/// the records in memory, which managers of the same file share; `WriteDatabase` writes them.
///
/// **Locks.** The locks of this manager are write locks. Editing neither takes nor asks for one: a
/// host takes it (`LockDatabase`) before the first edit.
///
/// **Edits** report nothing. When there is no such database, definition or value, or no memory
/// (error 24 enters the error text), everything stays as it was. Names and values are stored as
/// they are given, whether or not a file can hold them. A parameter `db` is a handle as in
/// `ZelkManager`; texts are copied. A record that is given must belong to an open database of this
/// manager; where it refers to another one, nothing tests that both are of the same database.
///
/// Its lookups hand records out to be changed: from the first one in a database on, lookups there
/// walk the lists (`ZelkDatabase`). To look up without that name the other class:
/// `manager.ZelkManager::GetMessage(id, db)`.
class ZELK_API ZelkWriteManager : public ZelkManager {
 public:
  explicit ZelkWriteManager(void* thread);  ///< as `ZelkManager`
  explicit ZelkWriteManager(HWND window);

  bool LockDatabase(const char* db, const char* reason) override;
  bool LockAllDatabases(const char* reason) override;
  /// `ZelkErrorOpenForWrite` when any write manager has the file open, this one included; else
  /// `ZelkErrorOk`. Managers that this thread does not use are not asked by their
  /// `OwnsDatabaseForWrite`: of those the write managers count.
  ZelkError CheckForWriteOpen(const char* path) const override;
  /// Whether one of this manager's databases is that of the file (`ZelkDatabase::IsPathEqual`).
  bool OwnsDatabaseForWrite(const char* path) const override;

  // --- Whole databases ---

  /// Opens a new, empty database, with priority 0. Nothing is written.
  ///
  /// @param db    its name
  /// @param name  receives the handle on success; may be null
  /// @param path  the file that it is for; null for none yet. Another database may be for it too:
  /// the one that is written first gets it (`ZelkDatabase::Write`)
  /// @return tested in this order: `ZelkErrorInvalidName`, `ZelkErrorNameUsed`,
  /// `ZelkErrorFileBelongs` when the file exists, `ZelkErrorNoDatabase` when the heap is exhausted;
  /// or `ZelkErrorOk`
  ZelkError CreateDatabase(const char* db, const char** name, const char* path);
  /// Writes a database (`ZelkDatabase::Write`) and announces it to all managers that have it.
  ///
  /// @param db    null: every database, each to its own file ("None and all" in `ZelkManager`)
  /// @param path  null: the own file; without `db` it does not count
  /// @return `ZelkErrorNotWritten` when there is no such database; `ZelkErrorLocked` when another
  /// manager holds a lock on it, which the user is told; else as `ZelkDatabase::Write`. For all
  /// databases: `ZelkErrorLocked` at the first one that is locked, with none written; else the
  /// first error met, while the others are written
  ZelkError WriteDatabase(const char* db, const char* path);
  /// Copies a database over another instance of the same file (`ZelkDatabase::Commit`, also for
  /// what that does to somebody else's edits), and announces it, whether or not there was one.
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
  // Deletion: releases the record and all that it owns. What refers to it is taken away before, in
  // the database that holds it: links to a node or category, a group's entry of a signal, values of
  // an attribute; references to a type, table or category become null, and a signal whose
  // multiplexor goes is always there. A record that the database does not hold stays as it is.
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
  /// Also counts it off. The signals that it selects as a multiplexor lose their ranges and are
  /// always there from then on: to delete them too, delete them first.
  void DeleteSignal(sigblk& signal, const char* db = nullptr);
  siggroupblk* CreateSignalGroup(msgblk& message, unsigned index);
  void DeleteSignalGroup(siggroupblk& group, const char* db = nullptr);

  // --- Names and texts ---

  void SetName(symblk& node, const char* name);  ///< null: nothing happens
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
  // Adding puts a new link in front, and does not look for one that is there. Removing releases
  // every link to the record, but not the relation attribute values that hang on a link
  // (`rxblk::attrs`): who adds such values takes and releases them before.

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
  // Names are compared on 32 characters. Several definitions may bear one name. The one that counts
  // is that of `ZelkManager::GetAttrDefinition` with the object (of the network:
  // `GetNetworkAttrDefinition`), and not the first of that name, which `GetAttrDefinition` with the
  // name alone gives. Its type selects the member of `value` that is read, and the other one is
  // not: `text` when its `value_type` is `ZELK_ATTR_STRING`, `number` (the index of the item for an
  // ENUM) for every other one. The text is copied; null is stored as no text, which a file tells as
  // an empty one. Neither range nor items are tested.
  //
  // `db` names the database whose definitions count; null: the one that holds the object. With
  // another one than that nothing happens.

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

  /// Takes the object's first value of that name away: the default counts again.
  void ResetAttrValue(const char* db, const char* name);
  void ResetAttrValue(symblk& node, const char* name);
  void ResetAttrValue(msgblk& message, const char* name);
  void ResetAttrValue(env_var_blk& variable, const char* name);
  void ResetAttrValue(sigblk& signal, const char* name);

  // --- Lookups and iterators ---
  //
  // Those of `ZelkManager`, with results that may be changed.

  symblk* GetNode(const char* name, const char* db) {
    return HandOut(ZelkManager::GetNode(name, db));
  }
  symblk* GetNode(const char* name, const char** db_name) {
    return HandOut(ZelkManager::GetNode(name, db_name));
  }
  symblk* GetNode(const char* name, const ZelkSelection& selection) {
    return HandOut(ZelkManager::GetNode(name, selection));
  }
  symblk* GetNode(const char* name, const ZelkSelection& selection, const char** db_name) {
    return HandOut(ZelkManager::GetNode(name, selection, db_name));
  }
  msgblk* GetMessage(const char* name, const char* db) {
    return HandOut(ZelkManager::GetMessage(name, db));
  }
  msgblk* GetMessage(const char* name, const char** db_name) {
    return HandOut(ZelkManager::GetMessage(name, db_name));
  }
  msgblk* GetMessage(const char* name, const ZelkSelection& selection) {
    return HandOut(ZelkManager::GetMessage(name, selection));
  }
  msgblk* GetMessage(const char* name, const ZelkSelection& selection, const char** db_name) {
    return HandOut(ZelkManager::GetMessage(name, selection, db_name));
  }
  msgblk* GetMessage(unsigned long id, const char* db) {
    return HandOut(ZelkManager::GetMessage(id, db));
  }
  msgblk* GetMessage(unsigned long id, const char** db_name) {
    return HandOut(ZelkManager::GetMessage(id, db_name));
  }
  msgblk* GetMessage(unsigned long id, const ZelkSelection& selection) {
    return HandOut(ZelkManager::GetMessage(id, selection));
  }
  msgblk* GetMessage(unsigned long id, const ZelkSelection& selection, const char** db_name) {
    return HandOut(ZelkManager::GetMessage(id, selection, db_name));
  }
  msgblk* GetJ1939Message(unsigned long id, unsigned long flags, const char* db) {
    return HandOut(ZelkManager::GetJ1939Message(id, flags, db));
  }
  msgblk* GetJ1939Message(unsigned long id, unsigned long flags, const char** db_name) {
    return HandOut(ZelkManager::GetJ1939Message(id, flags, db_name));
  }
  msgblk* GetJ1939Message(unsigned long id, unsigned long flags, const ZelkSelection& selection) {
    return HandOut(ZelkManager::GetJ1939Message(id, flags, selection));
  }
  msgblk* GetJ1939Message(unsigned long id, unsigned long flags, const ZelkSelection& selection,
                          const char** db_name) {
    return HandOut(ZelkManager::GetJ1939Message(id, flags, selection, db_name));
  }
  env_var_blk* GetEnvvar(const char* name, const char* db) {
    return HandOut(ZelkManager::GetEnvvar(name, db));
  }
  env_var_blk* GetEnvvar(const char* name, const char** db_name) {
    return HandOut(ZelkManager::GetEnvvar(name, db_name));
  }
  env_var_blk* GetEnvvar(const char* name, const ZelkSelection& selection) {
    return HandOut(ZelkManager::GetEnvvar(name, selection));
  }
  env_var_blk* GetEnvvar(const char* name, const ZelkSelection& selection, const char** db_name) {
    return HandOut(ZelkManager::GetEnvvar(name, selection, db_name));
  }
  btlblk* GetBitTiming(unsigned short baudrate, const char* db) {
    return HandOut(ZelkManager::GetBitTiming(baudrate, db));
  }
  btlblk* GetBitTiming(unsigned short baudrate, const char** db_name) {
    return HandOut(ZelkManager::GetBitTiming(baudrate, db_name));
  }
  btlblk* GetBitTiming(unsigned short baudrate, const ZelkSelection& selection) {
    return HandOut(ZelkManager::GetBitTiming(baudrate, selection));
  }
  btlblk* GetBitTiming(unsigned short baudrate, const ZelkSelection& selection,
                       const char** db_name) {
    return HandOut(ZelkManager::GetBitTiming(baudrate, selection, db_name));
  }
  cat* GetCategory(const char* name, const char* db) {
    return HandOut(ZelkManager::GetCategory(name, db));
  }
  cat* GetCategory(const char* name, const char** db_name) {
    return HandOut(ZelkManager::GetCategory(name, db_name));
  }
  sigtype* GetSignalType(const char* name, const char* db) {
    return HandOut(ZelkManager::GetSignalType(name, db));
  }
  sigtype* GetSignalType(const char* name, const char** db_name) {
    return HandOut(ZelkManager::GetSignalType(name, db_name));
  }
  sigtype* GetSignalType(const char* name, const ZelkSelection& selection) {
    return HandOut(ZelkManager::GetSignalType(name, selection));
  }
  sigtype* GetSignalType(const char* name, const ZelkSelection& selection, const char** db_name) {
    return HandOut(ZelkManager::GetSignalType(name, selection, db_name));
  }
  valtable* GetValueTable(const char* name, const char* db) {
    return HandOut(ZelkManager::GetValueTable(name, db));
  }
  valtable* GetValueTable(const char* name, const char** db_name) {
    return HandOut(ZelkManager::GetValueTable(name, db_name));
  }
  valtable* GetValueTable(const char* name, const ZelkSelection& selection) {
    return HandOut(ZelkManager::GetValueTable(name, selection));
  }
  valtable* GetValueTable(const char* name, const ZelkSelection& selection, const char** db_name) {
    return HandOut(ZelkManager::GetValueTable(name, selection, db_name));
  }
  attr_def* GetAttrDefinition(const char* name, const char* db) {
    return HandOut(ZelkManager::GetAttrDefinition(name, db));
  }
  attr_def* GetAttrDefinition(const char* name, const char** db_name) {
    return HandOut(ZelkManager::GetAttrDefinition(name, db_name));
  }

  /// The definition by which `SetAttrValue` stores the object's value of that name.
  template <zelk::AttributeOwner Object>
  attr_def* GetAttrDefinition(const Object& object, const char* name, const char* db = nullptr) {
    return HandOutDefinition(ZelkManager::GetAttrDefinition(object, name, db));
  }
  template <zelk::AttributeOwner Object>
  attr_def* GetAttrDefinition(const Object* object, const char* name, const char* db = nullptr) {
    return HandOutDefinition(ZelkManager::GetAttrDefinition(object, name, db));
  }
  attr_def* GetNetworkAttrDefinition(const char* db, const char* name) {
    return HandOutDefinition(ZelkManager::GetNetworkAttrDefinition(db, name));
  }

  using ZelkManager::GetMultiplexorSignal;
  using ZelkManager::GetMultiplexorValueRanges;
  using ZelkManager::GetSignal;
  using ZelkManager::GetSignalGroup;
  sigblk* GetSignal(msgblk& message, const char* name) const {
    return zelk::changeable(ZelkManager::GetSignal(message, name));
  }
  sigblk* GetSignal(siggroupblk& group, const char* name) const {
    return zelk::changeable(ZelkManager::GetSignal(group, name));
  }
  siggroupblk* GetSignalGroup(msgblk& message, const char* name) const {
    return zelk::changeable(ZelkManager::GetSignalGroup(message, name));
  }
  static sigblk* GetMultiplexorSignal(sigblk* signal) {
    return zelk::changeable(ZelkManager::GetMultiplexorSignal(signal));
  }
  static muxor_val_range* GetMultiplexorValueRanges(sigblk* signal) {
    return zelk::changeable(ZelkManager::GetMultiplexorValueRanges(signal));
  }

  ZelkIterator<symblk> GetNodeIterator(const char* db) const {
    return {*this, &ZelkDatabase::Walk<symblk>, db};
  }
  ZelkIterator<msgblk> GetMessageIterator(const char* db) const {
    return {*this, &ZelkDatabase::Walk<msgblk>, db};
  }
  ZelkIterator<env_var_blk> GetEnvvarIterator(const char* db) const {
    return {*this, &ZelkDatabase::Walk<env_var_blk>, db};
  }
  ZelkIterator<btlblk> GetBitTimingIterator(const char* db) const {
    return {*this, &ZelkDatabase::Walk<btlblk>, db};
  }
  ZelkIterator<attr_def> GetAttrDefinitionIterator(const char* db) const {
    return {*this, &ZelkDatabase::Walk<attr_def>, db};
  }
  ZelkIterator<cat> GetCategoryIterator(const char* db) const {
    return {*this, &ZelkDatabase::Walk<cat>, db};
  }
  ZelkIterator<sigtype> GetSignalTypeIterator(const char* db) const {
    return {*this, &ZelkDatabase::Walk<sigtype>, db};
  }
  ZelkIterator<valtable> GetValueTableIterator(const char* db) const {
    return {*this, &ZelkDatabase::Walk<valtable>, db};
  }
  ZelkIterator<attr> GetAttributeIterator(const char* db) const {
    return {*this, &ZelkDatabase::Walk<attr>, db};
  }
  ZelkIterator<catlink> GetFilterCategoryIterator(const char* db) const {
    return {*this, &ZelkDatabase::Walk<catlink>, db};
  }
  ZelkIterator<rxblk> GetFilterNodeIterator(const char* db) const {
    return {*this, &ZelkDatabase::Walk<rxblk>, db};
  }

  using ZelkManager::GetAccessNodeIterator;
  using ZelkManager::GetAttributeIterator;
  using ZelkManager::GetMultiplexedSignalIterator;
  using ZelkManager::GetMultiplexorSignalIterator;
  using ZelkManager::GetReceiverIterator;
  using ZelkManager::GetSignalGroupIterator;
  using ZelkManager::GetSignalIterator;
  using ZelkManager::GetSubsignalIterator;
  using ZelkManager::GetTransmitterIterator;
  using ZelkManager::GetValidMultiplexorSignalIterator;
  using ZelkManager::GetValidSignalIterator;
  using ZelkManager::GetValueDescriptionIterator;
  ZelkIterator<sigblk> GetSignalIterator(msgblk& message) const {
    return {*this, message.signals, nullptr};
  }
  ZelkIterator<sigblk> GetValidSignalIterator(msgblk& message,
                                              ValidSignalPredicate& predicate) const;
  ZelkIterator<sigblk> GetValidMultiplexorSignalIterator(
      msgblk& message, ValidMultiplexorPredicate& predicate) const;
  ZelkIterator<sigblk> GetMultiplexedSignalIterator(msgblk& message,
                                                    MultiplexedBySignalPredicate& predicate) const;
  ZelkIterator<sigblk> GetMultiplexorSignalIterator(msgblk& message) const;
  ZelkIterator<siggroupblk> GetSignalGroupIterator(msgblk& message) const {
    return {*this, message.siggroups, nullptr};
  }
  ZelkIterator<siglistblk> GetSubsignalIterator(siggroupblk& group) const {
    return {*this, group.signals, nullptr};
  }
  ZelkIterator<rxblk> GetReceiverIterator(sigblk& signal) const {
    return {*this, signal.receivers, nullptr};
  }
  ZelkIterator<rxblk> GetTransmitterIterator(msgblk& message) const {
    return {*this, message.tx_nodes, nullptr};
  }
  ZelkIterator<rxblk> GetAccessNodeIterator(env_var_blk& variable) const {
    return {*this, variable.access_nodes, nullptr};
  }
  ZelkIterator<val> GetValueDescriptionIterator(sigblk& signal) const {
    return {*this, signal.values, nullptr};
  }
  ZelkIterator<val> GetValueDescriptionIterator(env_var_blk& variable) const {
    return {*this, variable.values, nullptr};
  }
  ZelkIterator<val> GetValueDescriptionIterator(valtable& table) const {
    return {*this, table.values, nullptr};
  }
  ZelkIterator<attr> GetAttributeIterator(symblk& node) const {
    return {*this, node.attrs, nullptr};
  }
  ZelkIterator<attr> GetAttributeIterator(msgblk& message) const {
    return {*this, message.attrs, nullptr};
  }
  ZelkIterator<attr> GetAttributeIterator(sigblk& signal) const {
    return {*this, signal.attrs, nullptr};
  }
  ZelkIterator<attr> GetAttributeIterator(env_var_blk& variable) const {
    return {*this, variable.attrs, nullptr};
  }
  ZelkIterator<attr> GetAttributeIterator(sigtype& type) const {
    return {*this, type.attrs, nullptr};
  }
  ZelkIterator<attr> GetAttributeIterator(rxblk& link) const {
    return {*this, link.attrs, nullptr};
  }

 private:
  friend struct zelk::ManagerEdits;

  template <typename Operation>
  void ForNamedOrAll(const char* db, Operation operation);
  /// What the last lookup found, to be changed.
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

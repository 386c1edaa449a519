// Whole databases: creating, writing, announcing, clearing.

#include "zelk/write_manager.hpp"

#include <new>

#include "database/file.hpp"
#include "database/process_guard.hpp"
#include "manager/manager_tables.hpp"
#include "model/errors.hpp"
#include "zelk/exception.hpp"
#include "zelk/lock.hpp"

ZelkWriteManager::ZelkWriteManager(void* thread) : ZelkManager(thread) {
  const zelk::ProcessGuard guard;
  tables_->is_for_writing = true;
}

ZelkWriteManager::ZelkWriteManager(HWND window) : ZelkManager(window) {
  const zelk::ProcessGuard guard;
  tables_->is_for_writing = true;
}

bool ZelkWriteManager::LockDatabase(const char* db, const char* reason) {
  return ZelkWriteLock::Create(*this, db, reason) != nullptr;
}

bool ZelkWriteManager::LockAllDatabases(const char* reason) {
  return ZelkManager::LockAllDatabases(reason);  // which locks each by `LockDatabase`
}

ZelkError ZelkWriteManager::CheckForWriteOpen(const char* path) const {
  const zelk::ProcessGuard guard;
  for (const ZelkManagerNode* node = GetManagersList(); node; node = node->next) {
    if (OwnsForWrite(node->manager, path)) return ZelkErrorOpenForWrite;
  }
  return ZelkErrorOk;
}

bool ZelkWriteManager::OwnsDatabaseForWrite(const char* path) const try {
  return ListFindPath(path) != nullptr;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return true;  // who cannot tell must not let a second one in
}

ZelkError ZelkWriteManager::CreateDatabase(const char* db, const char** name,
                                           const char* path) try {
  if (!ZelkVerifyDatabaseName(db)) return ZelkErrorInvalidName;
  if (ListFindName(db)) return ZelkErrorNameUsed;
  if (path && zelk::writability(path) != ZelkErrorFileNotFound) return ZelkErrorFileBelongs;
  ZelkDatabase& database = AssignDatabase(nullptr);
  try {
    if (path) database.SetFile(path);
    database.is_file_new_ = path != nullptr;
    const char* const stored = ListInsertDatabase(database, db, 0);
    if (name) *name = stored;
  } catch (...) {
    ReleaseDatabase(database, false);
    throw;
  }
  return ZelkErrorOk;
} catch (const ZelkException&) {  // already reported: raising appends to the error text
  return ZelkErrorNoDatabase;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return ZelkErrorNoDatabase;
}

/// `ZelkErrorLocked` when another manager holds a lock on the database, which the user is told.
ZelkError ZelkWriteManager::CheckForLock(const ZelkDatabase& database) try {
  constexpr bool kWriteLocksOnly = false;
  const bool is_refused = ZelkLock::IsRefused(*this, database, kWriteLocksOnly);
  return is_refused ? ZelkErrorLocked : ZelkErrorOk;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return ZelkErrorNotWritten;
}

ZelkError ZelkWriteManager::WriteAndNotify(ZelkDatabase& database, const char* path) {
  const ZelkError error = database.Write(path);
  if (error == ZelkErrorOk) NotifyChanges(*this, database);
  return error;
}

ZelkError ZelkWriteManager::WriteDatabase(const char* db, const char* path) {
  if (!db) return WriteAllDatabases();
  ZelkDatabase* const database = FindDatabase(db);
  if (!database) return ZelkErrorNotWritten;
  const ZelkError refused = CheckForLock(*database);
  return refused != ZelkErrorOk ? refused : WriteAndNotify(*database, path);
}

ZelkError ZelkWriteManager::WriteAllDatabases() {
  for (DbListNode* node = databases_; node; node = node->next) {
    const ZelkError refused = CheckForLock(node->database);
    if (refused != ZelkErrorOk) return refused;
  }
  ZelkError result = ZelkErrorOk;
  for (DbListNode* node = databases_; node; node = node->next) {
    const ZelkError error = WriteAndNotify(Changeable(*node), nullptr);
    if (result == ZelkErrorOk) result = error;
  }
  return result;
}

void ZelkWriteManager::CommitDatabase(const char* db) {
  const auto commit = [this](ZelkDatabase& database) {
    database.Commit();
    NotifyChanges(*this, database);
  };
  ForNamedOrAll(db, commit);
}

void ZelkWriteManager::ClearDatabase(const char* db) {
  ForNamedOrAll(db, [](ZelkDatabase& database) { database.Clear(); });
}

/// Calls `operation` with the database of a handle, for null with every one in list order.
template <typename Operation>
void ZelkWriteManager::ForNamedOrAll(const char* db, Operation operation) {
  if (db) {
    ZelkDatabase* const database = FindDatabase(db);
    if (database) operation(*database);
    return;
  }
  for (const DbListNode* node = databases_; node; node = node->next) operation(Changeable(*node));
}

bool ZelkWriteManager::WriteExtendedMultiplexing(const char* db, bool on) {
  ZelkDatabase* const database = FindDatabase(db);
  if (database) database->WriteExtendedMultiplexing(on);
  return database != nullptr;
}

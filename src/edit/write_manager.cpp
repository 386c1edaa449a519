// Whole databases: creating, writing, announcing, clearing.

#include "zelk/write_manager.hpp"

#include <memory>

#include "base/list.hpp"
#include "database/file.hpp"
#include "database/process_guard.hpp"
#include "manager/lock_list.hpp"
#include "manager/manager_tables.hpp"
#include "model/without_raising.hpp"
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
  return zelk::without_raising(ZelkErrorOpenForWrite, [path] {
    const zelk::ProcessGuard guard;
    const bool is_owned = zelk::find_first(GetManagersList(), [path](const ZelkManagerNode& node) {
      return OwnsForWrite(node.manager, path);
    });
    return is_owned ? ZelkErrorOpenForWrite : ZelkErrorOk;
  });
}

bool ZelkWriteManager::OwnsDatabaseForWrite(const char* path) const {
  constexpr bool kOwnsWhenUnknown = true;  // two owners would be worse than none
  return zelk::without_raising(kOwnsWhenUnknown, [&] { return ListFindPath(path) != nullptr; });
}

ZelkError ZelkWriteManager::CreateDatabase(const char* db, const char** name, const char* path) {
  if (!ZelkVerifyDatabaseName(db)) return ZelkErrorInvalidName;
  if (ListFindName(db)) return ZelkErrorNameUsed;
  return zelk::without_raising(ZelkErrorNoDatabase, [&] {
    if (path && zelk::writability(path) != ZelkErrorFileNotFound) return ZelkErrorFileBelongs;
    auto give_back = [this](ZelkDatabase* unlisted) { ReleaseDatabase(*unlisted, false); };
    std::unique_ptr<ZelkDatabase, decltype(give_back)> database(&AssignDatabase(nullptr),
                                                                give_back);
    if (path) database->SetFile(path);
    database->is_file_new_ = path != nullptr;
    const char* const stored = ListInsertDatabase(*database, db, 0);
    static_cast<void>(database.release());  // the list's from now on
    if (name) *name = stored;
    return ZelkErrorOk;
  });
}

/// `ZelkErrorLocked` when another manager holds a lock on the database; shows the user its reason.
ZelkError ZelkWriteManager::CheckForLock(const ZelkDatabase& database) {
  return zelk::without_raising(ZelkErrorNotWritten, [&] {
    const bool is_refused = ZelkLock::IsRefused(*this, database, zelk::kAnyLock);
    return is_refused ? ZelkErrorLocked : ZelkErrorOk;
  });
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
  for (const DbListNode& node : zelk::each(databases_)) {
    const ZelkError refused = CheckForLock(node.database);
    if (refused != ZelkErrorOk) return refused;
  }
  ZelkError result = ZelkErrorOk;
  for (const DbListNode& node : zelk::each(databases_)) {
    const ZelkError error = WriteAndNotify(Changeable(node), nullptr);
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
  for (const DbListNode& node : zelk::each(databases_)) operation(Changeable(node));
}

bool ZelkWriteManager::WriteExtendedMultiplexing(const char* db, bool on) {
  ZelkDatabase* const database = FindDatabase(db);
  if (database) database->WriteExtendedMultiplexing(on);
  return database != nullptr;
}

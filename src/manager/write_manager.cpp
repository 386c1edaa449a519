// Whole databases: creating, writing, announcing, clearing.

#include "zelk/write_manager.hpp"

#include <algorithm>
#include <new>

#include "manager/database_list.hpp"
#include "model/errors.hpp"
#include "model/memory.hpp"
#include "platform/platform.hpp"
#include "zelk/exception.hpp"
#include "zelk/lock.hpp"

namespace zelk {
namespace {

/// Whether there is a file, or an open database that is for it: the later one of the two to be
/// written would replace the other.
bool is_taken(const char* path) {
  if (writability(path) != ZelkErrorFileNotFound) return true;
  const auto& list = database_list();
  return std::any_of(list.begin(), list.end(), [path](const ZelkDatabase* database) {
    return database->ref_count > 0 && database->path &&
           platform::is_same_path(database->path, path);
  });
}

}  // namespace
}  // namespace zelk

ZelkWriteManager::ZelkWriteManager(void* thread) : ZelkManager(thread) {}

ZelkWriteManager::ZelkWriteManager(HWND window) : ZelkManager(window) {}

bool ZelkWriteManager::LockDatabase(const char* db, const char* reason) {
  return ZelkWriteLock::Create(*this, db, reason) != nullptr;
}

bool ZelkWriteManager::LockAllDatabases(const char* reason) {
  return ZelkManager::LockAllDatabases(reason);  // which locks each by `LockDatabase`
}

ZelkError ZelkWriteManager::CheckForWriteOpen(const char* path) const {
  for (const ZelkManagerNode* node = GetManagersList(); node; node = node->next) {
    if (node->manager.OwnsDatabaseForWrite(path)) return ZelkErrorOpenForWrite;
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
  if (path && zelk::is_taken(path)) return ZelkErrorFileBelongs;
  ZelkDatabase& database = AssignDatabase(nullptr);
  try {
    if (path) zelk::assign_text(database.path, zelk::copy_text(path));
    const char* const stored = ListInsertDatabase(database, db, 0);
    if (name) *name = stored;
  } catch (...) {
    ReleaseDatabase(database, false);
    throw;
  }
  return ZelkErrorOk;
} catch (const ZelkException&) {  // has told of itself in the error text
  return ZelkErrorNoDatabase;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return ZelkErrorNoDatabase;
}

/// 11 when another manager holds a lock on the database, which the user is told.
ZelkError ZelkWriteManager::CheckForLock(ZelkDatabase& database) try {
  const ZelkLock* const refusing = ZelkWriteLock::GetLock(*this, database);
  if (!refusing) return ZelkErrorOk;
  refusing->ShowMessage();
  return ZelkErrorLocked;
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
    const ZelkError error = WriteAndNotify(node->database, nullptr);
    if (result == ZelkErrorOk) result = error;
  }
  return result;
}

void ZelkWriteManager::CommitDatabase(const char* db) {
  if (db && !FindDatabase(db)) return;
  for (DbListNode* node = databases_; node; node = node->next) {
    if (db && node->name != db) continue;
    node->database.Commit();
    NotifyChanges(*this, node->database);
  }
}

void ZelkWriteManager::ClearDatabase(const char* db) {
  if (db && !FindDatabase(db)) return;
  for (DbListNode* node = databases_; node; node = node->next) {
    if (!db || node->name == db) node->database.Clear();
  }
}

bool ZelkWriteManager::WriteExtendedMultiplexing(const char* db, bool on) {
  ZelkDatabase* const database = FindDatabase(db);
  if (database) database->WriteExtendedMultiplexing(on);
  return database != nullptr;
}

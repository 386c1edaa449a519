// Opening and closing databases.

#include "zelk/manager.hpp"

#include <memory>
#include <new>
#include <utility>

#include "base/list.hpp"
#include "database/file.hpp"
#include "database/process_guard.hpp"
#include "manager/manager_tables.hpp"
#include "model/errors.hpp"
#include "model/memory.hpp"
#include "model/without_raising.hpp"
#include "zelk/exception.hpp"
#include "zelk/lock.hpp"

ZelkManager::ZelkManager(void* thread)
    : thread_(thread), tables_(std::make_unique<zelk::ManagerTables>()) {
  EnterManagersList();
}

ZelkManager::ZelkManager(HWND window)
    : window_(window), tables_(std::make_unique<zelk::ManagerTables>()) {
  EnterManagersList();
}

ZelkManager::~ZelkManager() {
  FlushDatabaseCache();
  CloseDatabase(false);
  LeaveManagersList();
  zelk_mfree(last_open_error_);
}

void ZelkManager::SetHandle(void* thread) {
  const zelk::ProcessGuard guard;
  thread_ = thread;
  window_ = nullptr;
}

void ZelkManager::SetHandle(HWND window) {
  const zelk::ProcessGuard guard;
  window_ = window;
  thread_ = nullptr;
}

// --- Opening ---

ZelkError ZelkManager::GetDatabaseFileInfo(const char* path) const {
  return zelk::without_raising(ZelkErrorNoDatabase, [path] {
    const ZelkError found = path ? zelk::writability(path) : ZelkErrorFileNotFound;
    return found == ZelkErrorReadOnly ? ZelkErrorOk : found;
  });
}

ZelkError ZelkManager::CheckForWriteOpen(const char*) const { return ZelkErrorOk; }

bool ZelkManager::OwnsDatabaseForWrite(const char*) const { return false; }

ZelkError ZelkManager::OpenDatabase(const char* path, const char** name, unsigned priority) {
  return OpenDatabase(path, name, nullptr, priority);
}

ZelkError ZelkManager::OpenDatabase(const char* path, const char** name, const char* wanted_name,
                                    unsigned priority) try {
  if (wanted_name && !ZelkVerifyDatabaseName(wanted_name)) return ZelkErrorInvalidName;
  if (wanted_name && ListFindName(wanted_name)) return ZelkErrorNameUsed;
  const ZelkError missing = GetDatabaseFileInfo(path);
  if (missing != ZelkErrorOk) return missing;
  if (const DbListNode* open = ListFindPath(path)) {
    if (name) *name = open->name;
    return ZelkErrorAlreadyOpen;
  }
  const ZelkError refused = CheckForWriteOpen(path);
  return refused != ZelkErrorOk ? refused : OpenAssigned(path, name, wanted_name, priority);
} catch (const ZelkException&) {  // already reported: raising appends to the error text
  return ZelkErrorNoDatabase;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  KeepErrorText();
  return ZelkErrorNoDatabase;
}

/// Gets the database and lists it; gives it back when it cannot be listed.
ZelkError ZelkManager::OpenAssigned(const char* path, const char** name, const char* wanted_name,
                                    unsigned priority) {
  auto give_back = [this](ZelkDatabase* unlisted) { ReleaseDatabase(*unlisted, false); };
  std::unique_ptr<ZelkDatabase, decltype(give_back)> database(&AssignDatabase(path), give_back);
  const zelk::OwnedText default_name(wanted_name ? nullptr : database->GetDefaultName());
  if (!wanted_name && !default_name) {
    KeepErrorText();
    return ZelkErrorNoDatabase;
  }
  if (!wanted_name && ListFindName(default_name.get())) return ZelkErrorNameUsed;
  const zelk::ProcessGuard guard;
  if (IsWrittenByOtherThread(path)) return ZelkErrorOpenForWrite;
  const char* const stored = wanted_name
                                 ? ListInsertDatabase(*database, wanted_name, 0)
                                 : ListInsertDatabase(*database, default_name.get(), priority);
  static_cast<void>(database.release());  // the list's from now on
  if (name) *name = stored;
  return ZelkErrorOk;
}

ZelkDatabase& ZelkManager::AssignDatabase(const char* path) {
  zelk_clear_error_text();
  try {
    ZelkDatabase& database = ZelkDatabase::CreateDatabase(path);
    RemoveFromCache(database);
    KeepErrorText();
    return database;
  } catch (...) {
    KeepErrorText();
    throw;
  }
}

/// Keeps the error text for `GetLastOpenError`; without memory for it there is none.
void ZelkManager::KeepErrorText() noexcept {
  zelk_mfree(std::exchange(last_open_error_, nullptr));
  zelk::without_raising(
      [this] { last_open_error_ = zelk::copy_text(zelk_get_thread_error_text()).release(); });
}

const char* ZelkManager::GetLastOpenError() const {
  return last_open_error_ ? last_open_error_ : "";
}

ZelkError ZelkManager::ReopenDatabase(const char* db) {
  FlushDatabaseCache();
  if (db) {
    DbListNode* const node = ListFindDatabase(db);
    return node ? Reopen(Changeable(*node)) : ZelkErrorNoDatabase;
  }
  ZelkError result = ZelkErrorOk;
  for (const DbListNode& node : zelk::each(databases_)) {
    const ZelkError error = Reopen(Changeable(node));
    if (error != ZelkErrorOk) result = error;
  }
  return result;
}

ZelkError ZelkManager::Reopen(ZelkDatabase& database) const {
  if (!database.path) return ZelkErrorFileNotFound;
  return zelk::without_raising(ZelkErrorNoDatabase, [&] {
    const ZelkError missing = GetDatabaseFileInfo(database.OwnFile().c_str());
    return missing != ZelkErrorOk ? missing : database.ReopenDatabaseFile();
  });
}

// --- Closing ---

void ZelkManager::CloseDatabase(const char* db, bool keep_in_cache) {
  if (!db) return CloseDatabase(keep_in_cache);
  DbListNode* const node = ListFindDatabase(db);
  if (node) CloseNode(*node, keep_in_cache);
}

void ZelkManager::CloseDatabase(bool keep_in_cache) {
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): each call takes its node out of the list
  while (databases_) CloseNode(*databases_, keep_in_cache);
}

void ZelkManager::CloseNode(DbListNode& node, bool keep_in_cache) {
  ZelkDatabase& database = Changeable(node);
  ListRemoveDatabase(node);
  ReleaseDatabase(database, keep_in_cache);
}

/// Without memory for its place in the cache a database is not kept.
void ZelkManager::ReleaseDatabase(ZelkDatabase& database, bool keep_in_cache) {
  const zelk::ProcessGuard guard;
  ZelkLock::FreeLock(*this, database);
  ZelkDatabase::DestroyDatabase(database, keep_in_cache && PutIntoCache(database));
}

/// @return false when there is no memory for it
bool ZelkManager::PutIntoCache(ZelkDatabase& database) try {
  tables_->cache.insert(&database);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

void ZelkManager::FlushDatabaseCache() {
  const zelk::ProcessGuard guard;
  while (!tables_->cache.empty()) {
    ZelkDatabase& database = **tables_->cache.begin();
    tables_->cache.erase(tables_->cache.begin());
    ++database.ref_count;
    if (database.cache_count > 0) --database.cache_count;
    ZelkDatabase::DestroyDatabase(database, false);
  }
}

void ZelkManager::RemoveFromCache(ZelkDatabase& database) {
  const zelk::ProcessGuard guard;
  tables_->cache.erase(&database);
}

// Opening and closing databases, and the lists that hold them.

#include "zelk/manager.hpp"

#include <memory>
#include <new>
#include <thread>
#include <utility>

#include "base/list.hpp"
#include "database/file.hpp"
#include "database/process_guard.hpp"
#include "database/registry.hpp"
#include "manager/manager_tables.hpp"
#include "model/errors.hpp"
#include "model/memory.hpp"
#include "model/without_raising.hpp"
#include "zelk/exception.hpp"
#include "zelk/lock.hpp"

namespace {

/// The newest manager of the process; the mutex of `ProcessGuard` guards the list.
ZelkManagerNode*& managers() {
  static ZelkManagerNode* head = nullptr;
  return head;
}

}  // namespace

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

void ZelkManager::EnterManagersList() {
  const zelk::ProcessGuard guard;
  ZelkManagerNode*& head = managers();
  head = new ZelkManagerNode{*this, head};
}

void ZelkManager::LeaveManagersList() {
  const zelk::ProcessGuard guard;
  ZelkManagerNode*& head = managers();
  ZelkManagerNode** link = &head;
  while (*link && &(*link)->manager != this) link = &(*link)->next;
  if (*link) delete std::exchange(*link, (*link)->next);
  if (!head) ZelkDatabase::ReleaseCache();
}

const ZelkManagerNode* ZelkManager::GetManagersList() {
  const zelk::ProcessGuard guard;
  return managers();
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
  ZelkDatabase& database = AssignDatabase(path);
  try {
    const zelk::OwnedText default_name(wanted_name ? nullptr : database.GetDefaultName());
    if (!wanted_name && !default_name) throw std::bad_alloc();
    if (!wanted_name && ListFindName(default_name.get())) {
      ReleaseDatabase(database, false);
      return ZelkErrorNameUsed;
    }
    const zelk::ProcessGuard guard;
    if (IsWrittenByOtherThread(path)) {
      ReleaseDatabase(database, false);
      return ZelkErrorOpenForWrite;
    }
    const char* const stored = wanted_name
                                   ? ListInsertDatabase(database, wanted_name, 0)
                                   : ListInsertDatabase(database, default_name.get(), priority);
    if (name) *name = stored;
    return ZelkErrorOk;
  } catch (...) {
    ReleaseDatabase(database, false);
    throw;
  }
}

/// Whether a manager owns a file for writing. The virtual operation of another thread's manager is
/// not called, because it may read what that thread changes.
bool ZelkManager::OwnsForWrite(const ZelkManager& manager, const char* path) {
  const zelk::ProcessGuard guard;
  if (manager.tables_->thread == std::this_thread::get_id())
    return manager.OwnsDatabaseForWrite(path);
  return manager.tables_->is_for_writing && manager.ListFindPath(path) != nullptr;
}

/// Whether a write manager of another thread has opened the file while this one read it.
bool ZelkManager::IsWrittenByOtherThread(const char* path) const {
  if (!tables_->is_for_writing) return false;
  return zelk::find_first(GetManagersList(), [&](const ZelkManagerNode& node) {
    return node.manager.tables_->thread != tables_->thread && OwnsForWrite(node.manager, path);
  });
}

/// Whether a manager that owns `file` for writing has `database`, which is of that file, open.
bool ZelkManager::IsEdited(const ZelkDatabase& database, const char* file) {
  const zelk::ProcessGuard guard;
  return zelk::find_first(GetManagersList(), [&](const ZelkManagerNode& node) {
    return node.manager.tables_->by_database.contains(&database) &&
           OwnsForWrite(node.manager, file);
  });
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

/// Without memory for a copy there is no text.
void ZelkManager::KeepErrorText() noexcept {
  zelk_mfree(std::exchange(last_open_error_, nullptr));
  try {
    last_open_error_ = zelk::copy_text(zelk_get_thread_error_text()).release();
  } catch (const ZelkException&) {  // the open itself goes on
  }
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

void ZelkManager::ForgetCached(ZelkDatabase& database) {
  const zelk::ProcessGuard guard;
  for (const ZelkManagerNode& node : zelk::each(GetManagersList())) {
    node.manager.RemoveFromCache(database);
  }
}

// --- The list of open databases ---

const char* ZelkManager::ListInsertDatabase(ZelkDatabase& database, const char* name,
                                            std::uint32_t priority) {
  zelk::OwnedText copy = zelk::copy_text(name);
  auto node = std::make_unique<DbListNode>(DbListNode{
      copy.get(), database, priority, {}, envvar_handle_base_, nullptr, nullptr, nullptr});
  const zelk::ProcessGuard guard;
  tables_->thread = std::this_thread::get_id();
  tables_->enter(*node, databases_);
  const DbListNode& listed = *node.release();
  envvar_handle_base_ += static_cast<std::uint32_t>(listed.database.GetMaxEnvvarHandle());
  return copy.release();
}

void ZelkManager::ListRemoveDatabase(DbListNode& node) {
  last_found_ = nullptr;
  const zelk::ProcessGuard guard;
  tables_->leave(node, databases_);
  zelk_mfree(node.name);
  delete &node;
  if (!databases_) envvar_handle_base_ = 0;
}

ZelkManager::DbListNode* ZelkManager::ListFindDatabase(const char* db) {
  DbListNode* const found = ListFindNode(db);
  status_ = found ? ZelkStatusOk : ZelkStatusNotFound;
  return found;
}

ZelkManager::DbListNode* ZelkManager::ListFindNode(const char* db) const {
  if (last_found_ && last_found_->name == db) return last_found_;
  const auto found = tables_->by_handle.find(db);
  if (found == tables_->by_handle.end()) return nullptr;
  last_found_ = found->second;
  return last_found_;
}

ZelkManager::DbListNode* ZelkManager::ListFindName(const char* text) const {
  if (!text) return nullptr;
  const auto found = tables_->by_name.find(text);
  return found == tables_->by_name.end() ? nullptr : found->second;
}

/// Any one of several instances of the file: there can be more when a touch was taken back.
ZelkManager::DbListNode* ZelkManager::ListFindPath(const char* path) const {
  if (!path || !databases_) return nullptr;
  const zelk::platform::FilePath file(path);
  const zelk::ProcessGuard guard;
  for (const ZelkDatabase* const database : zelk::registry().of(file)) {
    const auto found = tables_->by_database.find(database);
    if (found != tables_->by_database.end()) return found->second;
  }
  return nullptr;
}

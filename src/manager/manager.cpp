// Opening and closing databases, and the lists that hold them.

#include "zelk/manager.hpp"

#include <new>
#include <utility>

#include "capi/list_walk.hpp"
#include "manager/database_list.hpp"
#include "manager/lock_list.hpp"
#include "manager/names.hpp"
#include "model/errors.hpp"
#include "model/memory.hpp"
#include "zelk/exception.hpp"
#include "zelk/lock.hpp"

namespace {

/// What the process's managers share.
struct Managers {
  ZelkManagerNode* head = nullptr;
  /// The node that was found last, and by whom: lookups tend to ask for the same one again.
  const ZelkManager* finder = nullptr;
  ZelkManager::DbListNode* last_found = nullptr;
};

Managers& managers() {
  static Managers managers;
  return managers;
}

}  // namespace

ZelkManager::ZelkManager(void* thread) : thread_(thread) { EnterManagersList(); }

ZelkManager::ZelkManager(HWND window) : window_(window) { EnterManagersList(); }

ZelkManager::~ZelkManager() {
  FlushDatabaseCache();
  CloseDatabase(false);
  LeaveManagersList();
  zelk_mfree(last_open_error_);
  if (!managers().head) ZelkDatabase::ReleaseCache();
}

void ZelkManager::EnterManagersList() {
  // Made before it, these outlive a manager that lives to the end of the process.
  zelk::error_state();
  zelk::database_list();
  zelk::lock_list();
  managers().head = new ZelkManagerNode{*this, managers().head};
}

void ZelkManager::LeaveManagersList() {
  ZelkManagerNode** link = &managers().head;
  while (*link && &(*link)->manager != this) link = &(*link)->next;
  if (*link) delete std::exchange(*link, (*link)->next);
}

const ZelkManagerNode* ZelkManager::GetManagersList() { return managers().head; }

void ZelkManager::SetHandle(void* thread) {
  thread_ = thread;
  window_ = nullptr;
}

void ZelkManager::SetHandle(HWND window) {
  window_ = window;
  thread_ = nullptr;
}

// --- Opening ---

ZelkError ZelkManager::GetDatabaseFileInfo(const char* path) const try {
  const ZelkError found = path ? zelk::writability(path) : ZelkErrorFileNotFound;
  return found == ZelkErrorReadOnly ? ZelkErrorOk : found;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return ZelkErrorNoDatabase;
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
} catch (const ZelkException&) {  // has told of itself in the error text
  return ZelkErrorNoDatabase;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  KeepErrorText();
  return ZelkErrorNoDatabase;
}

/// Gets the database and lists it; gives it back when that cannot be.
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
    last_open_error_ = zelk::copy_text(zelk_get_error_text()).release();
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
    return node ? Reopen(node->database) : ZelkErrorNoDatabase;
  }
  ZelkError result = ZelkErrorOk;
  for (DbListNode* node = databases_; node; node = node->next) {
    const ZelkError error = Reopen(node->database);
    if (error != ZelkErrorOk) result = error;
  }
  return result;
}

ZelkError ZelkManager::Reopen(ZelkDatabase& database) const {
  const ZelkError missing = GetDatabaseFileInfo(database.path);
  return missing != ZelkErrorOk ? missing : database.ReopenDatabaseFile();
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
  ZelkDatabase& database = node.database;
  ListRemoveDatabase(node);
  ReleaseDatabase(database, keep_in_cache);
}

/// A database that finds no memory for its place in the cache is not kept.
void ZelkManager::ReleaseDatabase(ZelkDatabase& database, bool keep_in_cache) {
  if (keep_in_cache) {
    CacheNode* const node = new (std::nothrow) CacheNode{database, cache_};
    if (node) cache_ = node;
    keep_in_cache = node != nullptr;
  }
  ZelkLock::FreeLock(*this, database);
  ZelkDatabase::DestroyDatabase(database, keep_in_cache);
}

void ZelkManager::FlushDatabaseCache() {
  while (cache_) {
    ZelkDatabase& database = cache_->database;
    delete std::exchange(cache_, cache_->next);
    ++database.ref_count;
    if (database.cache_count > 0) --database.cache_count;
    ZelkDatabase::DestroyDatabase(database, false);
  }
}

void ZelkManager::RemoveFromCache(const ZelkDatabase& database) {
  for (CacheNode** link = &cache_; *link;) {
    if (&(*link)->database == &database) {
      delete std::exchange(*link, (*link)->next);
    } else {
      link = &(*link)->next;
    }
  }
}

void ZelkManager::ForgetCached(const ZelkDatabase& database) {
  for (const ZelkManagerNode* node = managers().head; node; node = node->next) {
    node->manager.RemoveFromCache(database);
  }
}

// --- The list of open databases ---

const char* ZelkManager::ListInsertDatabase(ZelkDatabase& database, const char* name,
                                            std::uint32_t priority) {
  zelk::OwnedText copy = zelk::copy_text(name);
  DbListNode** link = &databases_;
  while (*link && (*link)->priority >= priority) link = &(*link)->next;
  *link = new DbListNode{copy.get(), database, priority, {}, envvar_handle_base_, nullptr, *link};
  envvar_handle_base_ += static_cast<std::uint32_t>(database.GetMaxEnvvarHandle());
  return copy.release();
}

void ZelkManager::ListRemoveDatabase(DbListNode& node) {
  managers().last_found = nullptr;
  DbListNode** link = &databases_;
  while (*link != &node) link = &(*link)->next;
  *link = node.next;
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
  Managers& all = managers();
  if (all.last_found && all.finder == this && all.last_found->name == db) return all.last_found;
  DbListNode* const found =
      zelk::find_first(databases_, [db](const DbListNode& node) { return node.name == db; });
  if (!found) return nullptr;
  all.last_found = found;
  all.finder = this;
  return found;
}

ZelkManager::DbListNode* ZelkManager::ListFindName(const char* text) const {
  return text ? zelk::find_name(databases_, text) : nullptr;
}

ZelkManager::DbListNode* ZelkManager::ListFindPath(const char* path) const {
  return zelk::find_first(
      databases_, [path](const DbListNode& node) { return zelk::is_file_of(node.database, path); });
}

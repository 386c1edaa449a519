#include "zelk/lock.hpp"

#include <algorithm>
#include <forward_list>
#include <memory>
#include <new>
#include <string>

#include "manager/database_list.hpp"
#include "manager/lock_list.hpp"
#include "model/errors.hpp"
#include "model/memory.hpp"
#include "platform/hooks.hpp"
#include "zelk/exception.hpp"

namespace zelk {

std::forward_list<ZelkLock*>& lock_list() {
  static std::forward_list<ZelkLock*> list;
  return list;
}

namespace {

constexpr std::uint32_t kTaskModal = 0x2000;
constexpr std::uint32_t kErrorIcon = 0x10;

/// Destroys every lock that `matches`; each takes itself out of the list.
template <typename Matches>
void destroy_locks(Matches matches) {
  auto& list = lock_list();
  for (auto entry = list.begin(); entry != list.end();) {
    ZelkLock* const lock = *entry++;
    if (matches(*lock)) delete lock;
  }
}

}  // namespace
}  // namespace zelk

ZelkLock::ZelkLock(ZelkManager& manager, ZelkDatabase& database, const char* reason)
    : manager_(manager),
      database_(database),
      reason_(reason ? zelk::copy_text(reason).release() : nullptr) {}

ZelkLock::~ZelkLock() {
  zelk::lock_list().remove(this);
  zelk_mfree(reason_);
}

void ZelkLock::ShowMessage() const {
  const std::string text = std::string("Database access refused!\n") + (reason_ ? reason_ : "");
  zelk::platform::tell_user(text.c_str(), "ZELKMS.DLL", zelk::kTaskModal | zelk::kErrorIcon);
}

void ZelkLock::FreeLock(ZelkManager& manager) { ListRemoveLocks(manager); }

void ZelkLock::FreeLock(ZelkManager& manager, ZelkDatabase& database) {
  ListRemoveLocks(manager, database);
}

void ZelkLock::ListInsertLock(ZelkLock& lock) { zelk::lock_list().push_front(&lock); }

void ZelkLock::ListRemoveLock(ZelkLock& lock) { delete &lock; }

void ZelkLock::ListRemoveLocks(ZelkManager& manager) {
  zelk::destroy_locks([&manager](const ZelkLock& lock) { return &lock.manager_ == &manager; });
}

/// Compared as instances: another one of the same file, read before it was touched, may be open
/// here too and keeps its locks.
void ZelkLock::ListRemoveLocks(ZelkManager& manager, ZelkDatabase& database) {
  zelk::destroy_locks([&manager, &database](const ZelkLock& lock) {
    return &lock.manager_ == &manager && &lock.database_ == &database;
  });
}

ZelkLock* ZelkLock::FindForeign(const ZelkManager& manager, const ZelkDatabase& database,
                                bool write_locks_only) {
  auto& list = zelk::lock_list();
  const auto found = std::find_if(list.begin(), list.end(), [&](const ZelkLock* lock) {
    return &lock->manager_ != &manager && (lock->IsWriteLock() || !write_locks_only) &&
           (&lock->database_ == &database || zelk::is_file_of(lock->database_, database.path));
  });
  return found == list.end() ? nullptr : *found;
}

ZelkLock* ZelkLock::CreateUnlessRefused(ZelkManager& manager, const char* db, const char* reason,
                                        bool is_write_lock) try {
  ZelkDatabase* const database = manager.FindDatabase(db);
  if (!database) return nullptr;
  const bool write_locks_only = !is_write_lock;
  const ZelkLock* const refusing = FindForeign(manager, *database, write_locks_only);
  if (refusing) {
    refusing->ShowMessage();
    return nullptr;
  }
  std::unique_ptr<ZelkLock> lock;
  if (is_write_lock) {
    lock.reset(new ZelkWriteLock(manager, *database, reason));
  } else {
    lock.reset(new ZelkReadLock(manager, *database, reason));
  }
  ListInsertLock(*lock);
  return lock.release();
} catch (const ZelkException&) {  // has told of itself in the error text
  return nullptr;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return nullptr;
}

bool ZelkReadLock::IsWriteLock() const { return false; }

ZelkReadLock* ZelkReadLock::Create(ZelkManager& manager, const char* db, const char* reason) {
  return static_cast<ZelkReadLock*>(CreateUnlessRefused(manager, db, reason, false));
}

ZelkLock* ZelkReadLock::GetLock(ZelkManager& manager, ZelkDatabase& database) {
  constexpr bool kWriteLocksOnly = true;
  return FindForeign(manager, database, kWriteLocksOnly);
}

bool ZelkWriteLock::IsWriteLock() const { return true; }

ZelkWriteLock* ZelkWriteLock::Create(ZelkManager& manager, const char* db, const char* reason) {
  return static_cast<ZelkWriteLock*>(CreateUnlessRefused(manager, db, reason, true));
}

ZelkLock* ZelkWriteLock::GetLock(ZelkManager& manager, ZelkDatabase& database) {
  constexpr bool kWriteLocksOnly = false;
  return FindForeign(manager, database, kWriteLocksOnly);
}

// --- The manager's side ---

bool ZelkManager::LockDatabase(const char* db, const char* reason) {
  return ZelkReadLock::Create(*this, db, reason) != nullptr;
}

bool ZelkManager::LockAllDatabases(const char* reason) {
  for (const DbListNode* node = databases_; node; node = node->next) {
    if (LockDatabase(node->name, reason)) continue;
    UnlockDatabase(nullptr);
    return false;
  }
  return true;
}

void ZelkManager::UnlockDatabase(const char* db) {
  if (!db) return ZelkLock::FreeLock(*this);
  ZelkDatabase* const database = FindDatabase(db);
  if (database) ZelkLock::FreeLock(*this, *database);
}

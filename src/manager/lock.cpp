#include "zelk/lock.hpp"

#include <memory>
#include <optional>
#include <string>

#include "base/list.hpp"
#include "database/process_guard.hpp"
#include "database/registry.hpp"
#include "manager/lock_list.hpp"
#include "model/memory.hpp"
#include "model/without_raising.hpp"
#include "platform/hooks.hpp"

namespace zelk {
namespace {

constexpr std::uint32_t kTaskModal = 0x2000;
constexpr std::uint32_t kErrorIcon = 0x10;

void show(const std::string& message) {
  platform::tell_user(message.c_str(), "ZELKMS.DLL", kTaskModal | kErrorIcon);
}

}  // namespace
}  // namespace zelk

ZelkLock::ZelkLock(ZelkManager& manager, ZelkDatabase& database, const char* reason)
    : manager_(manager), database_(database), reason_(zelk::copy_of(reason).release()) {}

ZelkLock::~ZelkLock() {
  const zelk::ProcessGuard guard;
  zelk::lock_list().remove(*this);
  zelk_mfree(reason_);
}

std::string ZelkLock::Message() const {
  return std::string("Database access refused!\n") + (reason_ ? reason_ : "");
}

void ZelkLock::ShowMessage() const { zelk::show(Message()); }

void ZelkLock::FreeLock(ZelkManager& manager) { ListRemoveLocks(manager); }

void ZelkLock::FreeLock(ZelkManager& manager, ZelkDatabase& database) {
  ListRemoveLocks(manager, database);
}

void ZelkLock::ListInsertLock(ZelkLock& lock) {
  const zelk::ProcessGuard guard;
  zelk::lock_list().insert(lock);
}

void ZelkLock::ListRemoveLock(ZelkLock& lock) { delete &lock; }

void ZelkLock::ListRemoveLocks(ZelkManager& manager) {
  const zelk::ProcessGuard guard;
  zelk::LockList::destroy(zelk::lock_list().all(), manager);
}

/// Frees the locks on this instance alone: the manager may have another instance of the same file
/// open, read before a touch, which keeps its locks.
void ZelkLock::ListRemoveLocks(ZelkManager& manager, ZelkDatabase& database) {
  const zelk::ProcessGuard guard;
  zelk::lock_list().destroy(zelk::lock_list().on(database), manager);
}

ZelkLock* ZelkLock::FindForeign(const ZelkManager& manager, const ZelkDatabase& database,
                                bool write_locks_only) {
  const zelk::ProcessGuard guard;
  const auto newest_on = [&](const ZelkDatabase& instance) -> ZelkLock* {
    for (const auto& entry : zelk::lock_list().on(instance)) {
      ZelkLock* const lock = entry.second;
      if (&lock->manager_ != &manager && (lock->IsWriteLock() || !write_locks_only)) return lock;
    }
    return nullptr;
  };
  ZelkLock* newest = nullptr;
  // Which instances are of the same file, only the file system knows: it is asked of few.
  for (const ZelkDatabase* const instance : zelk::registry().equal_to(database, newest_on)) {
    ZelkLock* const lock = newest_on(*instance);
    if (lock && (!newest || newest->number_ < lock->number_)) newest = lock;
  }
  return newest;
}

std::optional<std::string> ZelkLock::Refusal(const ZelkManager& manager,
                                             const ZelkDatabase& database, bool write_locks_only) {
  const zelk::ProcessGuard guard;
  const ZelkLock* const refusing = FindForeign(manager, database, write_locks_only);
  return refusing ? std::optional(refusing->Message()) : std::nullopt;
}

bool ZelkLock::IsRefused(const ZelkManager& manager, const ZelkDatabase& database,
                         bool write_locks_only) {
  const std::optional<std::string> refusal = Refusal(manager, database, write_locks_only);
  if (refusal) zelk::show(*refusal);
  return refusal.has_value();
}

ZelkLock* ZelkLock::CreateUnlessRefused(ZelkManager& manager, const char* db, const char* reason,
                                        bool is_write_lock) {
  ZelkDatabase* const database = manager.FindDatabase(db);
  if (!database) return nullptr;
  return zelk::without_raising<ZelkLock*>(nullptr, [&]() -> ZelkLock* {
    std::unique_ptr<ZelkLock> lock;
    if (is_write_lock) {
      lock.reset(new ZelkWriteLock(manager, *database, reason));
    } else {
      lock.reset(new ZelkReadLock(manager, *database, reason));
    }
    const std::optional<std::string> refusal = zelk::lock_list().insert_unless_refused(*lock);
    if (!refusal) return lock.release();
    zelk::show(*refusal);
    return nullptr;
  });
}

bool ZelkReadLock::IsWriteLock() const { return false; }

ZelkReadLock* ZelkReadLock::Create(ZelkManager& manager, const char* db, const char* reason) {
  return static_cast<ZelkReadLock*>(CreateUnlessRefused(manager, db, reason, false));
}

ZelkLock* ZelkReadLock::GetLock(ZelkManager& manager, ZelkDatabase& database) {
  return FindForeign(manager, database, zelk::kWriteLocksOnly);
}

bool ZelkWriteLock::IsWriteLock() const { return true; }

ZelkWriteLock* ZelkWriteLock::Create(ZelkManager& manager, const char* db, const char* reason) {
  return static_cast<ZelkWriteLock*>(CreateUnlessRefused(manager, db, reason, true));
}

ZelkLock* ZelkWriteLock::GetLock(ZelkManager& manager, ZelkDatabase& database) {
  return FindForeign(manager, database, zelk::kAnyLock);
}

// --- The manager's side ---

bool ZelkManager::LockDatabase(const char* db, const char* reason) {
  return ZelkReadLock::Create(*this, db, reason) != nullptr;
}

bool ZelkManager::LockAllDatabases(const char* reason) {
  for (const DbListNode& node : zelk::each(databases_)) {
    if (LockDatabase(node.name, reason)) continue;
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

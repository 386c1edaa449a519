#include "manager/lock_list.hpp"

#include "database/process_guard.hpp"
#include "platform/immortal.hpp"

namespace zelk {

LockList& lock_list() {
  static Immortal<LockList> locks;
  return locks.get();
}

void LockList::insert(ZelkLock& lock) {
  const std::uint64_t number = taken_ + 1;
  all_.emplace(number, &lock);
  try {
    by_database_[&lock.database_].emplace(number, &lock);
  } catch (...) {
    all_.erase(number);
    throw;
  }
  lock.number_ = taken_ = number;
}

std::optional<std::string> LockList::insert_unless_refused(ZelkLock& lock) {
  const ProcessGuard guard;
  const bool write_locks_only = lock.IsWriteLock() ? kAnyLock : kWriteLocksOnly;
  auto refusal = ZelkLock::Refusal(lock.manager_, lock.database_, write_locks_only);
  if (!refusal) insert(lock);
  return refusal;
}

void LockList::remove(const ZelkLock& lock) noexcept {
  all_.erase(lock.number_);
  const auto found = by_database_.find(&lock.database_);
  if (found == by_database_.end()) return;
  found->second.erase(lock.number_);
  if (found->second.empty()) by_database_.erase(found);
}

const LockList::Locks& LockList::on(const ZelkDatabase& database) const {
  static const auto* const none = new Locks();
  const auto found = by_database_.find(&database);
  return found == by_database_.end() ? *none : found->second;
}

/// The destructor of a lock removes it from `locks`, and that of the last one may destroy `locks`:
/// so the end is looked for before.
void LockList::destroy(const Locks& locks, const ZelkManager& manager) noexcept {
  auto entry = locks.begin();
  bool is_end = entry == locks.end();
  while (!is_end) {
    const ZelkLock* const lock = entry->second;
    is_end = ++entry == locks.end();
    if (&lock->manager_ == &manager) delete lock;
  }
}

}  // namespace zelk

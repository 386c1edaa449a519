/// \file
/// The process's locks.

#ifndef ZELK_MANAGER_LOCK_LIST_HPP
#define ZELK_MANAGER_LOCK_LIST_HPP

#include <cstdint>
#include <functional>
#include <map>
#include <unordered_map>

#include "zelk/lock.hpp"

namespace zelk {

/// Locks, the newest first; the list owns them.
class LockList {
 public:
  /// By the order in which they were taken.
  using Locks = std::map<std::uint64_t, ZelkLock*, std::greater<>>;

  /// @throws std::bad_alloc, with nothing entered
  void insert(ZelkLock& lock);
  void remove(const ZelkLock& lock) noexcept;

  const Locks& all() const { return all_; }
  /// Those on one instance.
  const Locks& on(const ZelkDatabase& database) const;
  /// Destroys a manager's locks among `locks`, which is one of the above.
  static void destroy(const Locks& locks, const ZelkManager& manager) noexcept;

 private:
  Locks all_;
  std::unordered_map<const ZelkDatabase*, Locks> by_database_;
  std::uint64_t taken_ = 0;
};

/// The process's, guarded by `ProcessGuard`; never destroyed.
LockList& lock_list();

}  // namespace zelk

#endif

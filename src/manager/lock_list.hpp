/// \file
/// The process's locks.

#ifndef ZELK_MANAGER_LOCK_LIST_HPP
#define ZELK_MANAGER_LOCK_LIST_HPP

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>

#include "zelk/lock.hpp"

namespace zelk {

// The locks of other managers that refuse a new one: values of the parameters `write_locks_only`.
inline constexpr bool kWriteLocksOnly = true;  ///< refuse a read lock
inline constexpr bool kAnyLock = false;        ///< refuse a write lock, and a write

/// Locks, the newest first; the list owns them.
class LockList {
 public:
  /// By the order in which they were taken.
  using Locks = std::map<std::uint64_t, ZelkLock*, std::greater<>>;

  /// @throws std::bad_alloc, with nothing entered
  void insert(ZelkLock& lock);
  /// Takes the mutex itself.
  ///
  /// @return what the user is shown when another manager's lock refuses; none when it is entered
  /// @throws std::bad_alloc, with nothing entered
  std::optional<std::string> insert_unless_refused(ZelkLock& lock);
  void remove(const ZelkLock& lock) noexcept;

  const Locks& all() const { return all_; }
  /// The locks on one instance.
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

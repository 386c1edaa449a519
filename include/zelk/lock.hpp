/// \file
/// Advisory locks of the managers of a process.

#ifndef ZELK_LOCK_HPP
#define ZELK_LOCK_HPP

#include <cstdint>
#include <optional>
#include <string>

#include "zelk/manager.hpp"

namespace zelk {
class LockList;
}

/// A manager's announcement that it reads or changes a database. Locks are advisory: they refuse
/// other locks, but no access. They do not synchronise threads, though managers of several threads
/// may take them at once.
///
/// All locks stand in one process-wide list, the newest first, which owns them. A manager takes
/// them by `LockDatabase`; one lives until the manager unlocks or closes the database. Do not
/// follow a pointer to a lock of another thread's manager: that thread may free it at any time. A
/// manager may hold any number of locks on a database; its own locks never refuse it.
class ZELK_API ZelkLock {
 public:
  ZelkLock(const ZelkLock&) = delete;
  ZelkLock& operator=(const ZelkLock&) = delete;

  virtual bool IsWriteLock() const = 0;
  /// Takes the lock out of the list.
  virtual ~ZelkLock();

  /// The reason that the owner gave when it took the lock; may be null. Lives as long as the lock.
  const char* Reason() const { return reason_; }
  /// Shows the user that this lock refuses another one, and the reason (platform.h).
  ///
  /// @throws std::bad_alloc
  void ShowMessage() const;

  static void FreeLock(ZelkManager& manager);  ///< frees all locks of a manager
  /// Frees the manager's locks on this instance of a file.
  static void FreeLock(ZelkManager& manager, ZelkDatabase& database);

 protected:
  ZelkLock(ZelkManager& manager, ZelkDatabase& database, const char* reason);

  static void ListInsertLock(ZelkLock& lock);
  static void ListRemoveLock(ZelkLock& lock);  ///< removes it from the list and destroys it
  static void ListRemoveLocks(ZelkManager& manager);
  static void ListRemoveLocks(ZelkManager& manager, ZelkDatabase& database);

  /// The newest lock of another manager on the same file (`ZelkDatabase::operator==`); null when
  /// there is none.
  ///
  /// @param write_locks_only  read locks do not count
  static ZelkLock* FindForeign(const ZelkManager& manager, const ZelkDatabase& database,
                               bool write_locks_only);

  /// Whether another manager's lock refuses; if so, shows the user the reason.
  ///
  /// @throws std::bad_alloc
  static bool IsRefused(const ZelkManager& manager, const ZelkDatabase& database,
                        bool write_locks_only);

  /// `Create` of both kinds.
  static ZelkLock* CreateUnlessRefused(ZelkManager& manager, const char* db, const char* reason,
                                       bool is_write_lock);

 private:
  friend class ZelkWriteManager;
  friend class zelk::LockList;

  std::string Message() const;
  static std::optional<std::string> Refusal(const ZelkManager& manager,
                                            const ZelkDatabase& database, bool write_locks_only);

  ZelkManager& manager_;
  ZelkDatabase& database_;
  char* reason_;
  std::uint64_t number_ = 0;  ///< larger for newer locks; 0 while it is in no list
};

class ZELK_API ZelkReadLock : public ZelkLock {
 public:
  bool IsWriteLock() const override;

  /// Takes a read lock. Another manager's write lock refuses it, and the reason is shown to the
  /// user.
  ///
  /// @param db      handle of one of the manager's databases
  /// @param reason  copied; may be null
  /// @return the lock, owned by the list; null when it is refused, there is no such database, or
  /// the heap is exhausted
  static ZelkReadLock* Create(ZelkManager& manager, const char* db, const char* reason);
  /// The lock that would refuse a read lock, the newest one of several; null when none would. It
  /// lives until its own manager frees it.
  ///
  /// @throws std::bad_alloc when there is no memory to compare paths
  static ZelkLock* GetLock(ZelkManager& manager, ZelkDatabase& database);

 private:
  friend class ZelkLock;
  using ZelkLock::ZelkLock;
};

class ZELK_API ZelkWriteLock : public ZelkLock {
 public:
  bool IsWriteLock() const override;

  /// Takes a write lock, as `ZelkReadLock::Create`; every lock of another manager refuses it.
  static ZelkWriteLock* Create(ZelkManager& manager, const char* db, const char* reason);
  /// The lock that would refuse a write lock, as `ZelkReadLock::GetLock`.
  static ZelkLock* GetLock(ZelkManager& manager, ZelkDatabase& database);

 private:
  friend class ZelkLock;
  using ZelkLock::ZelkLock;
};

#endif

/// \file
/// What all managers of the process share, and the mutex that guards it.
///
/// The mutex guards the three lists, and of every manager what other threads ask it for: its place
/// in the list of managers, its handles, tables and cache, and the list of its databases. A manager
/// changes that list under the mutex and reads it without: nobody else changes it. Of a database
/// the mutex guards the counts, the path and the file time.
///
/// A thread may take it again, since the lists are walked by functions that take it themselves. It
/// is never held while a file is read or written, nor while a host's notification sink or message
/// box runs: those may wait for other threads.

#ifndef ZELK_DATABASE_PROCESS_LISTS_HPP
#define ZELK_DATABASE_PROCESS_LISTS_HPP

#include <mutex>

#include "database/database_list.hpp"
#include "database/lock_list.hpp"
#include "zelk/manager.hpp"

namespace zelk {

struct ProcessLists {
  std::recursive_mutex mutex;
  ZelkManagerNode* managers = nullptr;
  DatabaseList databases;
  LockList locks;
};

/// Never destroyed: managers that are global objects use it until the process ends.
ProcessLists& process_lists();

/// Holds the mutex while it lives.
class ListGuard {
 public:
  ListGuard() : lock_(process_lists().mutex) {}

 private:
  std::lock_guard<std::recursive_mutex> lock_;
};

}  // namespace zelk

#endif

/// \file
/// The mutex of everything that the managers of a process share.
///
/// It guards the process's databases, locks and managers, and of every manager what other threads
/// ask it for: its handles, tables and cache, and the list of its databases. A manager changes that
/// list under the mutex and reads it without: nobody else changes it. Of a database the mutex
/// guards the counts, the path and the file time.
///
/// A thread may take it again, because what walks the shared lists calls functions that take it
/// themselves. It is never held while a file is read or written, nor while a host's notification
/// sink or message box runs: those may wait for other threads.

#ifndef ZELK_DATABASE_PROCESS_GUARD_HPP
#define ZELK_DATABASE_PROCESS_GUARD_HPP

#include <mutex>

namespace zelk {

/// Holds the mutex while it lives.
class ProcessGuard {
 public:
  ProcessGuard();

 private:
  std::lock_guard<std::recursive_mutex> lock_;
};

}  // namespace zelk

#endif

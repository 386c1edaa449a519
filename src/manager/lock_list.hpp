/// \file
/// The process's locks.

#ifndef ZELK_MANAGER_LOCK_LIST_HPP
#define ZELK_MANAGER_LOCK_LIST_HPP

#include <forward_list>

#include "zelk/lock.hpp"

namespace zelk {

/// All locks of the process, the newest first; the list owns them.
std::forward_list<ZelkLock*>& lock_list();

}  // namespace zelk

#endif

/// \file
/// The process's databases, and the test that stands before every write.

#ifndef ZELK_MANAGER_DATABASE_LIST_HPP
#define ZELK_MANAGER_DATABASE_LIST_HPP

#include <forward_list>

#include "zelk/database.hpp"

namespace zelk {

/// All databases of the process, the newest first.
std::forward_list<ZelkDatabase*>& database_list();

/// As `ZelkDatabase::IsPathEqual`, for who must not take an exhausted heap for a file that is
/// nobody's: a write, an open, a lock.
///
/// @throws std::bad_alloc
bool is_file_of(const ZelkDatabase& database, const char* path);

/// @return 0 for a file that its owner may write, 8 for a read-only one, 2 when there is none
ZelkError writability(const char* path);

}  // namespace zelk

#endif

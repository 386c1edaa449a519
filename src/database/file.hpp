/// \file
/// Which file a database is of, and the test that stands before every write.

#ifndef ZELK_DATABASE_FILE_HPP
#define ZELK_DATABASE_FILE_HPP

#include <cstdint>
#include <memory>

#include "platform/platform.hpp"
#include "zelk/database.hpp"

namespace zelk {

struct DatabaseFile {
  using Path = std::shared_ptr<const platform::FilePath>;

  /// What was worked out when the path was set; afresh when a host has put another one in its
  /// place. Null without a path.
  ///
  /// @throws std::bad_alloc
  static Path of(const ZelkDatabase& database);

  /// Whether `file` names the database's own file, changed or not.
  ///
  /// @throws std::bad_alloc
  static bool has_path(const ZelkDatabase& database, const platform::FilePath& file);

  /// As `ZelkDatabase::IsPathEqual`, but throws when memory runs out instead of answering "no
  /// match": callers that are about to open, write or lock must not mistake one for the other.
  ///
  /// @throws std::bad_alloc
  static bool is(const ZelkDatabase& database, const platform::FilePath& file);
};

/// @return 0 when there is no file
/// @throws std::bad_alloc
std::int64_t modification_time(const char* path);

/// @return `ZelkErrorOk` for a file that its owner may write, `ZelkErrorReadOnly`,
/// `ZelkErrorFileNotFound`
ZelkError writability(const char* path);

}  // namespace zelk

#endif

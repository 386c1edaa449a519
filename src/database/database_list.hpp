/// \file
/// The process's databases by their files, and the test that stands before every write.

#ifndef ZELK_DATABASE_DATABASE_LIST_HPP
#define ZELK_DATABASE_DATABASE_LIST_HPP

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/platform.hpp"
#include "zelk/database.hpp"

namespace zelk {

/// What the rest of the library needs of a database's own affairs.
struct DatabaseFile {
  using Path = std::shared_ptr<const platform::FilePath>;

  /// What was worked out when the path was set; afresh when a host has put another one in its
  /// place. Null without a path.
  ///
  /// @throws std::bad_alloc
  static Path of(const ZelkDatabase& database);
  /// As `is_file_of`, below.
  static bool is(const ZelkDatabase& database, const platform::FilePath& file);
  /// Gives back a hold, of null none.
  static void release(ZelkDatabase* database);
};

/// As `ZelkDatabase::IsPathEqual`, but throws when memory runs out instead of answering "no match":
/// callers that are about to open, write or lock must not mistake one for the other.
///
/// @throws std::bad_alloc
bool is_file_of(const ZelkDatabase& database, const platform::FilePath& file);

/// @return `ZelkErrorOk` for a file that its owner may write, `ZelkErrorReadOnly`,
/// `ZelkErrorFileNotFound`
ZelkError writability(const char* path);

/// Databases, the newest first, which are found by the keys of their paths.
class DatabaseList {
 public:
  /// @throws std::bad_alloc, with nothing entered
  void insert(ZelkDatabase& database);
  void remove(const ZelkDatabase& database) noexcept;
  /// Lets a database that is in the list be found by another key; does nothing for any other.
  ///
  /// @throws std::bad_alloc, with nothing changed
  void rekey(ZelkDatabase& database, const std::string& key);

  /// The newest one of the unchanged file; null when there is none.
  ///
  /// @throws std::bad_alloc
  ZelkDatabase* find(const platform::FilePath& file) const;
  /// All of the unchanged file, the newest first.
  ///
  /// @throws std::bad_alloc
  std::vector<ZelkDatabase*> of(const platform::FilePath& file) const;
  /// `database`, and those in the list that are of its file as it is now.
  ///
  /// @throws std::bad_alloc
  std::vector<const ZelkDatabase*> equal_to(const ZelkDatabase& database) const;

  const std::list<ZelkDatabase*>& all() const { return all_; }

 private:
  struct Place {
    std::list<ZelkDatabase*>::const_iterator entry;
    std::string key;
    std::uint64_t number;  ///< of the newer one is the larger
  };

  void remove_key(const std::string& key, const ZelkDatabase& database) noexcept;

  std::list<ZelkDatabase*> all_;
  std::unordered_map<const ZelkDatabase*, Place> places_;
  std::unordered_map<std::string, std::vector<ZelkDatabase*>> by_key_;
  std::uint64_t next_number_ = 0;
};

/// All databases of the process, the newest first.
const std::list<ZelkDatabase*>& database_list();

}  // namespace zelk

#endif

/// \file
/// The databases of the process, found by their files.

#ifndef ZELK_DATABASE_REGISTRY_HPP
#define ZELK_DATABASE_REGISTRY_HPP

#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/seeded_hash.hpp"
#include "platform/platform.hpp"
#include "zelk/database.hpp"

namespace zelk {

/// Databases, the newest first. They are found by the keys of their paths.
class DatabaseRegistry {
 public:
  using Choice = std::function<bool(const ZelkDatabase&)>;

  /// @throws std::bad_alloc, with nothing entered
  void insert(ZelkDatabase& database);
  void remove(const ZelkDatabase& database) noexcept;
  /// Changes the key of a database that is in the list; does nothing for any other.
  ///
  /// @throws std::bad_alloc, with nothing changed
  void rekey(ZelkDatabase& database, const std::string& key);

  /// The newest one of the unchanged file; null when there is none.
  ///
  /// @throws std::bad_alloc
  ZelkDatabase* find(const platform::FilePath& file) const;
  /// All of the unchanged file, the newest first.
  ///
  /// @param is_wanted  leaves out what it does not take, without a look at the file; null: nothing
  /// @throws std::bad_alloc
  std::vector<ZelkDatabase*> of(const platform::FilePath& file,
                                const Choice& is_wanted = nullptr) const;
  /// `database`, and those in the list that are of its file as it is now.
  ///
  /// @param is_wanted  as above, of the others
  /// @throws std::bad_alloc
  std::vector<const ZelkDatabase*> equal_to(const ZelkDatabase& database,
                                            const Choice& is_wanted = nullptr) const;

  const std::list<ZelkDatabase*>& all() const { return all_; }

 private:
  struct Place {
    std::list<ZelkDatabase*>::const_iterator entry;
    std::string key;
    std::uint64_t number;  ///< larger for newer ones
  };

  void remove_key(const std::string& key, const ZelkDatabase& database) noexcept;

  std::list<ZelkDatabase*> all_;
  std::unordered_map<const ZelkDatabase*, Place> places_;
  std::unordered_map<std::string, std::vector<ZelkDatabase*>, SeededHash> by_key_;
  std::uint64_t next_number_ = 0;
};

/// The process's, guarded by `ProcessGuard`. Never destroyed: managers that are global objects use
/// it until the process ends.
DatabaseRegistry& registry();

}  // namespace zelk

#endif

/// \file
/// The files that a save makes beside its target (save.hpp). Their writers hold their locks.

#ifndef ZELK_FILES_TEMPORARY_FILE_POSIX_HPP
#define ZELK_FILES_TEMPORARY_FILE_POSIX_HPP

#include <filesystem>
#include <string>

#include "files/descriptor_posix.hpp"

namespace zelk::files {

/// A new, locked file beside the target. The destructor removes it unless it was moved away.
class TemporaryFile {
 public:
  /// @param mode  permissions, from which the process's mask takes some away
  /// @throws SaveFailure, std::bad_alloc
  TemporaryFile(const std::filesystem::path& target, mode_t mode);
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  const Descriptor& descriptor() const { return descriptor_; }
  const char* path() const { return path_.c_str(); }

  /// Gives the file another's name, in place of that.
  ///
  /// @return false when the system does not do it (`errno` says)
  bool move_to(const std::filesystem::path& path);

  /// Gives the file a name that nothing has yet, and which stays; false as above.
  bool move_to_new(const std::filesystem::path& path);

 private:
  bool create(const std::filesystem::path& target, int number, mode_t mode);

  std::string path_;  ///< empty when there is nothing to remove
  Descriptor descriptor_;
};

/// What a path names in the end, there or not.
///
/// @throws SaveFailure for links that go round in circles
std::filesystem::path behind_links(std::filesystem::path path);

/// Where the whole copy of the target's new content stands while the target is written in place.
std::filesystem::path whole_copy_of(const std::filesystem::path& target);

/// Removes what killed processes left beside the target, but for the whole copy.
void clear_leftovers(const std::filesystem::path& target);

}  // namespace zelk::files

#endif

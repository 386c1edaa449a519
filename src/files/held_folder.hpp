/// \file
/// Folders for files of a run that nobody else shall see.

#ifndef ZELK_FILES_HELD_FOLDER_HPP
#define ZELK_FILES_HELD_FOLDER_HPP

#include <filesystem>
#include <memory>
#include <system_error>

namespace zelk::files {

/// A folder that this process holds, for its user alone; the destructor removes it with all that is
/// in it. One that a killed process left at the same path is emptied and taken over.
class HeldFolder {
 public:
  /// @param error  set when the system does not make the folder
  /// @return null then, and without an error when something of others stands there: a folder that a
  /// living process holds, or one that cannot be known to be left
  /// @throws std::bad_alloc
  static std::unique_ptr<HeldFolder> make(const std::filesystem::path& path,
                                          std::error_code& error);

  HeldFolder(const HeldFolder&) = delete;
  HeldFolder& operator=(const HeldFolder&) = delete;
  ~HeldFolder();

  const std::filesystem::path& path() const { return path_; }

 private:
  /// Of the system: a lock, or an open handle. Its destructor lets go.
  using Hold = std::shared_ptr<const void>;

  HeldFolder(std::filesystem::path path, Hold hold);

  std::filesystem::path path_;
  Hold hold_;
};

}  // namespace zelk::files

#endif

/// A working folder for a test.
#ifndef ZELK_TESTS_PLATFORM_FOLDER_HPP
#define ZELK_TESTS_PLATFORM_FOLDER_HPP

#include "support/folder.hpp"
#include "support/system.hpp"

/// A new folder, which is the working folder while this lives, and is then removed with all that is
/// in it. One per test at a time.
class WorkingFolder {
 public:
  WorkingFolder() {
    std::filesystem::remove_all(path_);  // from a run that was cut short
    std::filesystem::create_directory(path_);
    std::filesystem::current_path(path_);
  }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder() { std::filesystem::current_path(previous_); }
  const std::filesystem::path& path() const { return path_; }

 private:
  const std::filesystem::path previous_ = std::filesystem::current_path();
  const Folder folder_;
  const std::filesystem::path path_ = (previous_ / folder_.path("")).parent_path();
};

inline void put_bytes(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

#endif

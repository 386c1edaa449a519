/// A working folder for a test, and paths as the library and the C++ library take them.
#ifndef ZELK_TESTS_PLATFORM_FOLDER_HPP
#define ZELK_TESTS_PLATFORM_FOLDER_HPP

#include <filesystem>
#include <string>
#include <string_view>

/// As the library takes it.
std::string encoded(const std::filesystem::path& path);

/// As the C++ library takes a path of more than 260 characters.
std::filesystem::path at_any_length(const std::filesystem::path& absolute);

/// A new folder, which is the working folder while it lives and goes with all that is in it. One
/// per test at a time.
class WorkingFolder {
 public:
  WorkingFolder();
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder();
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path previous_;
  std::filesystem::path path_;
};

void put_bytes(const std::filesystem::path& path, std::string_view bytes);

#endif

/// Database files of a test, with the times that it wants.
#ifndef ZELK_TESTS_SUPPORT_FOLDER_HPP
#define ZELK_TESTS_SUPPORT_FOLDER_HPP

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "support/threads.hpp"

/// A folder in the working directory for one test, or a thread of one, removed with all that is in
/// it.
class Folder {
 public:
  Folder() : path_(name_of_test()) { std::filesystem::create_directories(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }

  std::string path(std::string_view name) const { return path_ + "/" + std::string(name); }

  /// Writes a file, with its folder when need be; returns its path.
  ///
  /// @param hour  of a fixed day, at which it was last changed: a file is touched by another hour
  std::string write(std::string_view name, std::string_view content, int hour = 0) const {
    std::string file = path(name);
    std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    std::ofstream(file, std::ios::binary) << content;
    touch(file, hour);
    return file;
  }

  static void touch(const std::string& file, int hour) {
    // Whole seconds, which every file system keeps.
    const std::chrono::sys_seconds day = std::chrono::sys_days{std::chrono::year{2020} / 6 / 15};
    const auto time = std::filesystem::file_time_type::clock::from_sys(day);
    std::filesystem::last_write_time(file, time + std::chrono::hours(hour));
  }

  static void set_read_only(const std::string& file, bool on) {
    using std::filesystem::perm_options;
    std::filesystem::permissions(file, std::filesystem::perms::owner_write,
                                 on ? perm_options::remove : perm_options::add);
  }

 private:
  static std::string name_of_test() {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(test->test_suite_name()) + "." + test->name();
    std::replace(name.begin(), name.end(), '/', '.');  // in front of a parameter
    return name + suffix_of_thread();
  }

  std::string path_;
};

#endif

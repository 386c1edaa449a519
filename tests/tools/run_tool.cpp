#include "tools/run_tool.hpp"

#include <gtest/gtest.h>

#include <fstream>

#include "support/files.hpp"

namespace {

std::filesystem::path folder_of(const testing::TestInfo& test) {
  return std::filesystem::current_path() /
         (std::string(test.test_suite_name()) + "." + test.name());
}

/// Removes each test's folder when the test ends.
class FolderRemover : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo& test) override {
    std::error_code error;
    std::filesystem::remove_all(folder_of(test), error);
  }
};

/// The running test's own, which goes with all that is in it.
std::filesystem::path test_folder() {
  static const bool is_removed_later = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new FolderRemover);
    return true;
  }();
  static_cast<void>(is_removed_later);
  const auto folder = folder_of(*testing::UnitTest::GetInstance()->current_test_info());
  std::filesystem::create_directories(folder);
  return folder;
}

/// Removes a file, or empties it: Windows may keep the files of an ended program open for a moment.
void forget_file(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::remove(path, error);
  if (error) std::ofstream{path};
}

}  // namespace

std::filesystem::path write_file(const std::string& name, const std::string& content) {
  const std::filesystem::path path = test_folder() / std::u8string(name.begin(), name.end());
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

ToolRun run_tool(const std::string& arguments, Output output, const std::string& input) {
  const std::filesystem::path folder = test_folder();
  for (const char* const name : {"out.txt", "err.txt"}) forget_file(folder / name);
  const int exit_code = run_program(folder, arguments, output, input);
  return {exit_code, bytes_of(folder / "out.txt"), content_of(folder / "err.txt")};
}

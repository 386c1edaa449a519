#include "run_tool.hpp"

#include <gtest/gtest.h>

#include <fstream>

#include "support/files.hpp"

namespace {

/// Below the working folder, which is another one for every build.
std::filesystem::path test_folder() {
  const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
  const auto folder =
      std::filesystem::current_path() / "tool_test_files" / test->test_suite_name() / test->name();
  std::filesystem::create_directories(folder);
  return folder;
}

}  // namespace

std::filesystem::path write_file(const std::string& name, const std::string& content) {
  const std::filesystem::path path = test_folder() / std::u8string(name.begin(), name.end());
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

ToolRun run_tool(const std::string& arguments, Output output, const std::string& input) {
  const std::filesystem::path folder = test_folder();
  std::filesystem::remove(folder / "out.txt");
  std::filesystem::remove(folder / "err.txt");
  const int exit_code = run_program(folder, arguments, output, input);
  return {exit_code, bytes_of(folder / "out.txt"), content_of(folder / "err.txt")};
}

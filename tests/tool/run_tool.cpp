#include "run_tool.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

/// Below the working folder, which is another one for every build.
std::filesystem::path test_folder() {
  const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
  const auto folder =
      std::filesystem::current_path() / "tool_test_files" / test->test_suite_name() / test->name();
  std::filesystem::create_directories(folder);
  return folder;
}

std::string content_of(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

void write_file(const std::string& name, const std::string& content) {
  std::ofstream(test_folder() / name, std::ios::binary) << content;
}

ToolRun run_tool(const std::string& arguments) {
  const std::filesystem::path folder = test_folder();
  // What `arguments` redirect themselves takes precedence, as it stands behind.
  const std::string command =
      "cd '" + folder.string() + "' && '" ZELK_PROGRAM "' >out.txt 2>err.txt " + arguments;
  const int status = std::system(command.c_str());
  const int exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return {exit_code, content_of(folder / "out.txt"), content_of(folder / "err.txt")};
}

/// \file
/// Running the program as a user would.

#ifndef ZELK_TESTS_TOOL_RUN_TOOL_HPP
#define ZELK_TESTS_TOOL_RUN_TOOL_HPP

#include <string>

/// What a run of the program left behind.
struct ToolRun {
  int exit_code;  ///< -1 when it did not end by itself
  std::string out;
  std::string err;
};

/// Runs the program with `arguments`, in the shell's syntax, in a new folder of the running test. A
/// file that `write_file` made is named as it was there.
ToolRun run_tool(const std::string& arguments);

/// Writes `content` to the file `name` in the running test's folder.
void write_file(const std::string& name, const std::string& content);

#endif

/// \file
/// Running the program as a user would.

#ifndef ZELK_TESTS_TOOLS_RUN_TOOL_HPP
#define ZELK_TESTS_TOOLS_RUN_TOOL_HPP

#include <filesystem>
#include <string>

/// Where the program's standard output leads.
enum class Output {
  kFile,
  kRefused,     ///< every write fails
  kClosedPipe,  ///< nobody reads at the other end, at the latest when the pipe is full
};

/// What a run of the program left behind.
struct ToolRun {
  int exit_code;    ///< negative when it did not end by itself
  std::string out;  ///< byte for byte; empty unless it went to a file
  std::string err;  ///< with a line feed for each line end
};

/// Runs the program with `arguments`, parted by blanks and in UTF-8, in a folder of the running
/// test. A file that `write_file` made is named as it was there.
///
/// @param input  file that standard input comes from; empty for an empty input
ToolRun run_tool(const std::string& arguments, Output output = Output::kFile,
                 const std::string& input = "");

/// Writes `content` to the file `name`, which is in UTF-8, in the running test's folder; returns
/// where that is.
std::filesystem::path write_file(const std::string& name, const std::string& content);

/// Runs the program in `folder` with standard error led into `err.txt` there, and standard output
/// into `out.txt` if into a file; returns the exit code, as in `ToolRun`. Each system has its own.
int run_program(const std::filesystem::path& folder, const std::string& arguments, Output output,
                const std::string& input);

#endif

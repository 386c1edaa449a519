/// \file
/// Running the program as a user would.

#ifndef ZELK_TESTS_TOOLS_RUN_TOOL_HPP
#define ZELK_TESTS_TOOLS_RUN_TOOL_HPP

#include <gtest/gtest.h>

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

/// What a run of the program is to leave behind.
struct ToolCase {
  std::string arguments;
  int exit_code;
  std::string out = "";    ///< all of it, or a part for `check_parts`; empty when there is none
  std::string err = "";    ///< a part of it; empty when there is none
  std::string input = {};  ///< file that standard input comes from; empty for an empty input
};

/// Checks a run; `out` can be a part of the output.
inline void check_parts(const ToolCase& c, const ToolRun& run) {
  const auto check_part = [&c](const std::string& text, const std::string& part) {
    EXPECT_NE(text.find(part), std::string::npos) << c.arguments << "\n" << text;
    EXPECT_EQ(text.empty(), part.empty()) << c.arguments << "\n" << text;
  };
  EXPECT_EQ(run.exit_code, c.exit_code) << c.arguments;
  check_part(run.out, c.out);
  check_part(run.err, c.err);
}

inline void check_parts(const ToolCase& c) {
  check_parts(c, run_tool(c.arguments, Output::kFile, c.input));
}

inline void check(const ToolCase& c) {
  const ToolRun run = run_tool(c.arguments, Output::kFile, c.input);
  check_parts(c, run);
  EXPECT_EQ(run.out, c.out) << c.arguments;
}

#endif

/// \file
/// Runs of the program, with what they are to leave behind.

#ifndef ZELK_TESTS_TOOLS_TOOL_CASE_HPP
#define ZELK_TESTS_TOOLS_TOOL_CASE_HPP

#include <gtest/gtest.h>

#include <string>

#include "tools/run_tool.hpp"

struct ToolCase {
  std::string arguments;
  int exit_code;
  std::string out = "";    ///< all of it, or a part for `check_parts`; empty when there is none
  std::string err = "";    ///< a part of it; empty when there is none
  std::string input = {};  ///< file that standard input comes from; empty for an empty input
};

inline void check_parts(const ToolCase& c, const ToolRun& run) {
  EXPECT_EQ(run.exit_code, c.exit_code) << c.arguments;
  EXPECT_NE(run.out.find(c.out), std::string::npos) << c.arguments << "\n" << run.out;
  EXPECT_EQ(run.out.empty(), c.out.empty()) << c.arguments << "\n" << run.out;
  EXPECT_NE(run.err.find(c.err), std::string::npos) << c.arguments << "\n" << run.err;
  EXPECT_EQ(run.err.empty(), c.err.empty()) << c.arguments << "\n" << run.err;
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

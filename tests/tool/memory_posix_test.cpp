#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "run_tool.hpp"
#include "support/files.hpp"

namespace {

// The program says so when memory runs out, and no file is the worse for it.
TEST(Tool, OutOfMemory) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "a sanitizer takes more memory than all of these limits";
#endif
  std::string file = "BS_:\n\nBU_: N\n\n";
  for (int i = 0; i < 20000; ++i)
    file += "BO_ " + std::to_string(i) + " M" + std::to_string(i) + ": 8 N\n\n";
  int failures = 0;
  for (const std::string command : {"check a.dbc", "list messages a.dbc", "rewrite a.dbc b.dbc",
                                    "edit a.dbc --rename-node N O"}) {
    for (int kilobytes = 14000; kilobytes <= 22000; kilobytes += 4000) {
      const auto a = write_file("a.dbc", file);
      const auto b = write_file("b.dbc", "old");
      const std::string limited = "cd '" + a.parent_path().string() + "' && ulimit -v " +
                                  std::to_string(kilobytes) + " && exec '" ZELK_PROGRAM "' " +
                                  command + " >out.txt 2>err.txt";
      const int status = std::system(limited.c_str());
      if (status == 0) continue;
      ++failures;
      EXPECT_EQ(WEXITSTATUS(status), 1) << command << " in " << kilobytes;
      const std::string told = bytes_of(a.parent_path() / "err.txt");
      EXPECT_NE(told.find("memory"), std::string::npos) << command << "\n" << told;
      EXPECT_TRUE(bytes_of(a) == file && bytes_of(b) == "old") << command << " in " << kilobytes;
    }
  }
  EXPECT_GT(failures, 0);
}

}  // namespace

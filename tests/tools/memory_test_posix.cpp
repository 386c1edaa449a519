#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

// The program says so when memory runs out, wherever that is, and the file is none the worse for
// it.
TEST(Tool, OutOfMemory) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer takes more memory than this";
#endif
  std::string file = "BS_:\n\nBU_: N\n\n";
  for (int i = 0; i < 20000; ++i)
    file += "BO_ " + std::to_string(i) + " M" + std::to_string(i) + ": 8 N\n\n";
  const auto path = write_file("a.dbc", file);
  for (const char* kilobytes : {"22000", "24000", "26000", "29000"}) {
    const std::string run = "cd '" + path.parent_path().string() + "' && ulimit -v " + kilobytes +
                            " && exec '" ZELK_PROGRAM "' edit a.dbc --rename-node N O >out 2>err";
    EXPECT_EQ(std::system(run.c_str()), 1 << 8) << kilobytes;  // exit code 1
    EXPECT_NE(bytes_of(path.parent_path() / "err").find("memory"), std::string::npos) << kilobytes;
    EXPECT_EQ(bytes_of(path), file);
  }
}

}  // namespace

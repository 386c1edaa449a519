#include <gtest/gtest.h>

#include <filesystem>

#include "support/building.hpp"
#include "support/paths.hpp"

namespace {

// What is accepted is also what is written of it.
TEST(DataFiles, AreReadAndWrittenBack) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(ZELK_SOURCE_DIR "/tests/data")) {
    const std::string path = entry.path().string();
    if (!entry.path().filename().string().starts_with("ok_")) continue;
    ++count;
    Database first, second;
    ASSERT_EQ(first.read_file(path.c_str()), 0u) << path << first.reported;
    const std::string text = written(first);
    EXPECT_EQ(fault_of(first), "") << path;
    ASSERT_EQ(second.read(text), 0u) << path << second.reported;
    EXPECT_EQ(describe(second), describe(first)) << path;
    EXPECT_EQ(written(second), text) << path;
  }
  EXPECT_GE(count, 4);
}

}  // namespace

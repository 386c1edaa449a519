#include <gtest/gtest.h>

#include <filesystem>

#include "support/building.hpp"

namespace {

// What is accepted is also what is written of it.
TEST(DataFiles, AreReadAsTheirNamesSay) {
  int accepted = 0, refused = 0;
  for (const auto& entry : std::filesystem::directory_iterator(ZELK_SOURCE_DIR "/tests/data")) {
    const std::string path = entry.path().string(), name = entry.path().filename().string();
    if (!name.ends_with(".dbc")) continue;
    Database first, second;
    const bool is_read = first.read_file(path.c_str()) == 0;
    EXPECT_EQ(is_read, name.starts_with("ok_")) << name << first.reported;
    ++(is_read ? accepted : refused);
    if (!is_read) continue;
    const std::string text = written(first);
    EXPECT_EQ(fault_of(first), "") << path;
    ASSERT_EQ(second.read(text), 0u) << path << second.reported;
    EXPECT_EQ(describe(second), describe(first)) << path;
    EXPECT_EQ(written(second), text) << path;
  }
  EXPECT_GE(accepted, 4);
  EXPECT_GE(refused, 9);
}

}  // namespace

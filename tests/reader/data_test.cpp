#include <gtest/gtest.h>

#include <filesystem>

#include "support/database.hpp"

namespace {

TEST(DataFiles, AreReadAsTheirNamesSay) {
  int accepted = 0, refused = 0;
  for (const auto& entry : std::filesystem::directory_iterator(ZELK_SOURCE_DIR "/tests/data")) {
    const std::string name = entry.path().filename().string();
    if (!name.ends_with(".dbc")) continue;
    Database database;
    const bool is_read = database.read_file(entry.path().string().c_str()) == 0;
    EXPECT_EQ(is_read, name.starts_with("ok_")) << name << database.reported;
    ++(is_read ? accepted : refused);
  }
  EXPECT_GE(accepted, 4);
  EXPECT_GE(refused, 9);
}

}  // namespace

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/folder.hpp"
#include "platform/hooks.hpp"
#include "platform/platform.hpp"

namespace {

using namespace zelk::platform;
namespace fs = std::filesystem;

TEST(FilesOfPosix, Same) {
  const WorkingFolder folder;
  put_bytes("one.dbc", "x");
  put_bytes("One.dbc", "x");
  fs::create_hard_link("one.dbc", "ONE.dbc");
  EXPECT_FALSE(is_same_path("ONE.dbc", "./One.dbc"));
  EXPECT_TRUE(is_same_path("one.dbc", "ONE.dbc"));
  fs::create_directory("gone");
  fs::current_path("gone");
  fs::remove(folder.path() / "gone");
  EXPECT_FALSE(is_same_path("f.dbc", "f.dbc")) << "relative to a folder that is gone";
  EXPECT_FALSE(is_same_path("f.dbc", "/f.dbc"));
  EXPECT_TRUE(is_same_path("/f.dbc", "/F.dbc"));
}

TEST(FilesOfPosix, TimeInNanoseconds) {
  const WorkingFolder folder;
  put_bytes("f.dbc", "x");
  const timespec times[] = {{0, 0}, {1'000'000'000, 123'456'789}};
  ASSERT_EQ(utimensat(AT_FDCWD, "f.dbc", times, 0), 0);
  EXPECT_EQ(file_status("f.dbc")->modified.ticks, 1'000'000'000'123'456'789);
}

TEST(MessageBoxOfPosix, IsALineOnStandardError) {
  testing::internal::CaptureStderr();
  tell_user("Refused!\n100 %s", "TITLE", 0x2010);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "TITLE: Refused!\n100 %s\n");
}

}  // namespace

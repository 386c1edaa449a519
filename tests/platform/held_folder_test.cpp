#include "files/held_folder.hpp"

#include "support/files.hpp"
#include "support/folder.hpp"

namespace {

namespace fs = std::filesystem;
using zelk::files::HeldFolder;

TEST(HeldFolder, TakesWhatKilledProcessesLeft) {
  const Folder folder;
  const fs::path path = fs::path(folder.write("left/sub/file", "x")).parent_path().parent_path();
  std::error_code error;
  {
    const auto held = HeldFolder::make(path, error);
    ASSERT_TRUE(held) << error.message();
    EXPECT_TRUE(fs::is_empty(path));
    folder.write("left/own", "x");
    EXPECT_FALSE(HeldFolder::make(path, error));
    EXPECT_FALSE(error) << "it is another's";
    EXPECT_EQ(content_of(path / "own"), "x");
  }
  EXPECT_FALSE(fs::exists(path));
  EXPECT_TRUE(HeldFolder::make(path, error)) << "the next one";
  EXPECT_FALSE(HeldFolder::make(path / "deep", error));
  EXPECT_EQ(error, std::errc::no_such_file_or_directory);
}

TEST(HeldFolder, IsTakenWhileOthersRemoveIt) {
  const Folder folder;
  const fs::path path = folder.path("busy");
  run_in_threads(
      [&](int thread, int) {
        std::error_code error;
        if (const auto held = HeldFolder::make(path, error)) {
          EXPECT_TRUE(fs::create_directory(path / std::to_string(thread), error));
        }
        EXPECT_FALSE(error) << error.message();
      },
      200);
  EXPECT_FALSE(fs::exists(path));
}

}  // namespace

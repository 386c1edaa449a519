// The tests write thousands of small files: into memory, where the system has such a folder.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>

namespace {

class MemoryFolder : public testing::Environment {
 public:
  void SetUp() override {
    char path[] = "/dev/shm/zelk_operations_XXXXXX";
    if (!mkdtemp(path)) return;
    before_ = std::filesystem::current_path();
    folder_ = path;
    std::filesystem::current_path(folder_);
  }
  void TearDown() override {
    if (folder_.empty()) return;
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(folder_);
  }

 private:
  std::filesystem::path before_, folder_;
};

[[maybe_unused]] const testing::Environment* const kFolder =
    testing::AddGlobalTestEnvironment(new MemoryFolder);

}  // namespace

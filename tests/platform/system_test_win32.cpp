#include <gtest/gtest.h>
#include <windows.h>

#include "platform/folder.hpp"
#include "platform/module_entry.hpp"
#include "platform/platform.hpp"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

namespace {

using namespace zelk::platform;

TEST(FilesOfWindows, Same) {
  const WorkingFolder folder;
  std::filesystem::create_directory("sub");
  put_bytes("sub/f.dbc", "x");
  EXPECT_TRUE(is_same_path("sub/f.dbc", ".\\SUB\\f.dbc"));
  EXPECT_TRUE(is_same_path(encoded(u8"\u00C4.dbc").c_str(), encoded(u8"\u00E4.dbc").c_str()));
}

TEST(ModulesOfWindows, BareNamesInALongWorkingFolder) {
  const WorkingFolder folder;
  const std::string deep(220 - folder.path().native().size(), 'd');
  std::filesystem::create_directory(deep);
  std::filesystem::current_path(deep);
  EXPECT_TRUE(load_module("version.dll"));
  EXPECT_FALSE(load_module("missing.dll"));
  std::filesystem::current_path("..");
}

TEST(ModuleEntryOfWindows, ToldByTheSystem) {
  const ModuleEntry before = module_entry();
  module_entry() = {};
  HINSTANCE__ first = {}, second = {};
  const struct {
    DWORD reason;
    HINSTANCE module;
    void* expected;
    std::uint32_t count;
  } steps[] = {
      {2, &second, nullptr, 0}, {1, &first, &first, 1},  {2, &second, &first, 1},
      {1, &second, &first, 2},  {3, &second, &first, 2}, {0, &second, &first, 1},
      {0, &first, nullptr, 0},
  };
  for (const auto& step : steps) {
    EXPECT_EQ(DllMain(step.module, step.reason, nullptr), TRUE);
    EXPECT_EQ(module_entry().module, step.expected) << step.reason;
    EXPECT_EQ(module_entry().attach_count, step.count) << step.reason;
  }
  module_entry() = before;
}

}  // namespace

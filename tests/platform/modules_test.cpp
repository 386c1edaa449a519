#include <gtest/gtest.h>

#include "platform/folder.hpp"
#include "platform/platform.hpp"
#include "support/paths.hpp"
#include "zelk/library.h"

namespace {

using namespace zelk::platform;
namespace fs = std::filesystem;

// A name relative to the working folder means another file once that has changed.
TEST(Modules, TheLibraryKnowsItsFileInEveryWorkingFolder) {
  const WorkingFolder folder;
  const fs::path name = u8"Gr\u00F6\u00DFe.zelk";
  fs::copy_file(ZELK_LIBRARY, name);
  const Module library = load_module(encoded("." / name).c_str());
  ASSERT_TRUE(library);
  EXPECT_FALSE(find_function(library.get(), "zelk_rea"));
  fs::create_directory("sub");
  fs::current_path("sub");
  const auto get = reinterpret_cast<decltype(&ZELKMSGetModuleParameters)>(
      find_function(library.get(), "ZELKMSGetModuleParameters"));
  char file_name[1000] = {};
  EXPECT_TRUE(get(file_name, sizeof file_name, nullptr, 0, 331));
  EXPECT_EQ(file_name, encoded(folder.path() / name));
}

TEST(RegisteredMessage, OneNumberForAName) {
  const std::uint32_t number = registered_message("ZelkTestMessage");
  EXPECT_GE(number, 0xC000U);
  EXPECT_LE(number, 0xFFFFU);
  EXPECT_NE(registered_message("ZelkTestMessage2"), number);
  EXPECT_EQ(registered_message("ZELKtestMESSAGE"), number);
}

}  // namespace

#include <gtest/gtest.h>

#include "platform/folder.hpp"
#include "platform/platform.hpp"
#include "zelk/errors.h"
#include "zelk/library.h"

namespace {

using namespace zelk::platform;
namespace fs = std::filesystem;

template <typename Signature>
Signature* function(const Module& module, const char* name) {
  return reinterpret_cast<Signature*>(find_function(module.get(), name));
}

TEST(Modules, LoadedOrNot) {
  const WorkingFolder folder;
  put_bytes("text.dbc", "VERSION \"\"\n");
  fs::create_directory("sub");
  for (const char* path : {"", "missing.zelk", "./text.dbc", "./sub"}) {
    EXPECT_FALSE(load_module(path)) << path;
  }
  const Module library = load_module(ZELK_LIBRARY);
  ASSERT_TRUE(library);
  EXPECT_TRUE(find_function(library.get(), "zelk_read"));
  for (const char* name : {"zelk_nonsense", "zelk_rea", "ZELK_READ", ""}) {
    EXPECT_FALSE(find_function(library.get(), name)) << name;
  }
}

// A name relative to the working folder means another file once that has changed.
TEST(Modules, TheLibraryKnowsItsFileInEveryWorkingFolder) {
  const WorkingFolder folder;
  const fs::path name = u8"Gr\u00F6\u00DFe.zelk";
  fs::copy_file(ZELK_LIBRARY, name);
  const Module library = load_module(encoded("." / name).c_str());
  ASSERT_TRUE(library);
  fs::create_directory("sub");
  fs::current_path("sub");
  const auto get =
      function<decltype(ZELKMSGetModuleParameters)>(library, "ZELKMSGetModuleParameters");
  char file_name[1000] = {};
  EXPECT_TRUE(get(file_name, sizeof file_name, nullptr, 0, 331));
  EXPECT_EQ(file_name, encoded(folder.path() / name));
}

// What a module has noted is gone with it.
TEST(Modules, AreUnloaded) {
  const WorkingFolder folder;
  fs::copy_file(ZELK_LIBRARY, "copy.zelk");
  for (int round = 1; round <= 2; ++round) {
    const Module library = load_module("./copy.zelk");
    ASSERT_TRUE(library);
    const auto text = function<decltype(zelk_get_error_text)>(library, "zelk_get_error_text");
    EXPECT_STREQ(text(), "") << round;
    function<decltype(zelk_note)>(library, "zelk_note")(26, 1, "X");
    EXPECT_STRNE(text(), "");
  }
}

TEST(RegisteredMessage, OneNumberForAName) {
  const std::uint32_t number = registered_message("ZelkTestMessage");
  EXPECT_GE(number, 0xC000U);
  EXPECT_LE(number, 0xFFFFU);
  EXPECT_NE(registered_message("ZelkTestMessage2"), number);
  EXPECT_EQ(registered_message("ZelkTestMessage"), number);
  EXPECT_EQ(registered_message("ZELKtestMESSAGE"), number);
}

}  // namespace

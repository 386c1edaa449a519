#include "zelk/library.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <string>

#include "support/lists.hpp"
#include "support/paths.hpp"
#include "zelk/exception.hpp"

namespace {

TEST(Library, InterfacesThatItServes) {
  const std::pair<int, bool> cases[] = {{0, true}, {331, true}, {332, false}, {-1, false}};
  for (const auto& [interface_version, is_served] : cases) {
    EXPECT_EQ(ZELKMSGetModuleParameters(nullptr, 100, nullptr, 100, interface_version), is_served)
        << interface_version;
  }
}

// Bytes behind what is written stay as they were: '#'.
TEST(Library, TextsInBuffers) {
  char whole[1000];
  ZELKMSGetModuleParameters(whole, sizeof whole, nullptr, 0, 0);
  EXPECT_TRUE(std::filesystem::path(whole).is_absolute()) << whole;
  EXPECT_TRUE(std::filesystem::equivalent(whole, ZELK_LIBRARY)) << whole;
  const std::string file = whole;
  const struct {
    int size;
    std::string file_name, version;
  } cases[] = {
      {INT_MIN, "", ""},
      {1, "", ""},
      {2, std::string(1, '\0'), "Z"},
      {20, file.substr(0, 18) + '\0', "Zelkms Version 3.2."},
      {21, file.substr(0, 19) + '\0', "Zelkms Version 3.2.8"},
      {22, file.substr(0, 20) + '\0', std::string("Zelkms Version 3.2.8\0", 21)},
  };
  for (const auto& c : cases) {
    std::string file_name(24, '#');
    std::string version(24, '#');
    ZELKMSGetModuleParameters(file_name.data(), c.size, version.data(), c.size, 0);
    EXPECT_EQ(file_name, c.file_name + std::string(24 - c.file_name.size(), '#')) << c.size;
    EXPECT_EQ(version, c.version + std::string(24 - c.version.size(), '#')) << c.size;
  }
}

// The exception crosses from the shared library into the host, with its type.
TEST(Library, RaisesWhatHostsCatch) {
  Lists lists;
  zelk_clear_error_text();
  zelk_note(26, 1, "earlier");
  try {
    lists.read_by(zelk_read, ZELK_SOURCE_DIR "/tests/data/bad_order.dbc");
    ADD_FAILURE() << "a file out of order is accepted";
  } catch (const ZelkException& error) {
    EXPECT_STREQ(error.what(), ", line 3, error: syntax");
  }
  EXPECT_STREQ(zelk_get_error_text(),
               "new symbol not supported, line 1, earlier\n, line 3, error: syntax\n");
}

}  // namespace

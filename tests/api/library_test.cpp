#include "zelk/library.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <string>

namespace {

// With null for the buffers their sizes mean nothing.
TEST(Library, InterfacesThatItServes) {
  const struct {
    int interface_version;
    bool served;
  } cases[] = {{0, true},   {331, true},      {332, false},
               {-1, false}, {INT_MAX, false}, {INT_MIN, false}};
  for (const auto& c : cases) {
    EXPECT_EQ(ZELKMSGetModuleParameters(nullptr, 100, nullptr, 100, c.interface_version), c.served)
        << c.interface_version;
  }
}

// Bytes behind what is written keep the guard.
TEST(Library, Version) {
  const struct {
    int size;
    std::string expected;
  } cases[] = {
      {INT_MIN, ""},
      {-1, ""},
      {0, ""},
      {1, ""},
      {2, "Z"},
      {5, "Zelk"},
      {20, "Zelkms Version 3.2."},
      {21, "Zelkms Version 3.2.8"},
      {22, std::string("Zelkms Version 3.2.8\0", 21)},
      {26, std::string("Zelkms Version 3.2.8\0\0\0\0\0", 25)},
  };
  for (const auto& c : cases) {
    std::string buffer(30, '#');
    ZELKMSGetModuleParameters(nullptr, 0, buffer.data(), c.size, 0);
    EXPECT_EQ(buffer, c.expected + std::string(30 - c.expected.size(), '#')) << c.size;
  }
}

TEST(Library, FileName) {
  char whole[1000];
  ZELKMSGetModuleParameters(whole, sizeof whole, nullptr, 0, 0);
  EXPECT_TRUE(std::filesystem::path(whole).is_absolute()) << whole;
  EXPECT_TRUE(std::filesystem::equivalent(whole, ZELK_LIBRARY)) << whole;
  const std::string name = whole;
  const struct {
    int size;
    std::string expected;
  } cases[] = {
      {INT_MIN, ""},
      {-1, ""},
      {0, ""},
      {1, ""},
      {2, std::string(1, '\0')},
      {3, name.substr(0, 1) + '\0'},
      {10, name.substr(0, 8) + '\0'},
  };
  for (const auto& c : cases) {
    std::string buffer(12, '#');
    ZELKMSGetModuleParameters(buffer.data(), c.size, nullptr, 0, 0);
    EXPECT_EQ(buffer, c.expected + std::string(12 - c.expected.size(), '#')) << c.size;
  }
}

TEST(Library, SharedTexts) {
  EXPECT_STREQ(ZelkDatabaseNameAttribute, "DBName");
  EXPECT_STREQ(ZelkNotificationMessageString, "ZelkMessageNotification");
}

}  // namespace

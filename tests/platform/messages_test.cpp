#include <gtest/gtest.h>

#include "platform/platform.hpp"

namespace {

using namespace zelk::platform;

TEST(RegisteredMessage, OneNumberForAName) {
  const std::uint32_t number = registered_message("ZelkTestMessage");
  EXPECT_GE(number, 0xC000U);
  EXPECT_LE(number, 0xFFFFU);
  EXPECT_NE(registered_message("ZelkTestMessage2"), number);
  EXPECT_EQ(registered_message("ZelkTestMessage"), number);
  EXPECT_EQ(registered_message("ZELKtestMESSAGE"), number);
}

}  // namespace

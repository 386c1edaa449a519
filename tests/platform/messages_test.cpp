#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/hooks.hpp"
#include "platform/platform.hpp"

namespace {

using namespace zelk::platform;

TEST(Hooks, GoToTheSinkOfTheHost) {
  std::vector<zelk_notification> received;
  zelk_set_notification_sink(
      [](const zelk_notification* notification, void* context) {
        static_cast<decltype(received)*>(context)->push_back(*notification);
      },
      &received);
  int handle = 0;
  const char name[] = "Db";
  const zelk_notification sent[] = {
      {ZELK_NOTIFY_ALL_WINDOWS, nullptr, 0xC001, 0, nullptr},
      {ZELK_NOTIFY_WINDOW, &handle, 0xC002, 0xFFFFFFFF, name},
      {ZELK_NOTIFY_THREAD, &handle, 0xFFFF, 1, name},
  };
  for (const zelk_notification& notification : sent) notify(notification);
  zelk_set_notification_sink(nullptr, nullptr);
  notify({ZELK_NOTIFY_THREAD, nullptr, 0xC000, 0, nullptr});
  ASSERT_EQ(received.size(), 3U) << "nothing after the sink was taken away";
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(received[i].target, sent[i].target);
    EXPECT_EQ(received[i].handle, sent[i].handle);
    EXPECT_EQ(received[i].message, sent[i].message);
    EXPECT_EQ(received[i].sender, sent[i].sender);
    EXPECT_EQ(received[i].database_name, sent[i].database_name);
  }
}

TEST(MessageBox, OfTheHost) {
  std::string shown;
  zelk_set_message_box(
      [](const char* text, const char* title, std::uint32_t style, void* context) {
        *static_cast<std::string*>(context) +=
            std::string(title) + "|" + text + "|" + std::to_string(style);
      },
      &shown);
  tell_user("Refused!\nWhy", "TITLE", 0x2010);
  zelk_set_message_box(nullptr, nullptr);
  EXPECT_EQ(shown, "TITLE|Refused!\nWhy|8208");
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

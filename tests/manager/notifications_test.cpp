#include <string>
#include <vector>

#include "manager/manager_test.hpp"

namespace {

using Notifications = ManagerTest;

/// Of a handle, bits that notifications have no room for, where pointers have more than 32.
constexpr bool kHasWide = sizeof(void*) > 4;
constexpr auto kWide = static_cast<std::uintptr_t>(kHasWide ? 0x700000000 : 0);
const std::string kWideText = kHasWide ? "7000000" : "";

TEST_F(Notifications, TellEveryHolder) {
  const std::string a = folder.write("a.dbc", kDatabase), b = folder.write("b.dbc", kDatabase);
  ZelkManager first(handle<HWND>(0x10));
  ZelkManager sender(handle<void*>(kWide | 0x20));
  ZelkManager deaf(handle<HWND>(0));
  ZelkManager other(handle<HWND>(0x30));
  ZelkManager last(handle<HWND>(0x40));
  const char* const name = open(sender, a, "sent");
  const ZelkDatabase& changed = *sender.GetDatabase(name);
  open(first, b, "b");
  open(first, a, "one");
  open(deaf, a);
  open(other, b);
  open(last, a);
  const auto told = [&](const ZelkManager& by, const ZelkDatabase& database) {
    host.notifications.clear();
    ZelkManager::NotifyChanges(by, database);
    return host.notifications;
  };
  using Lines = std::vector<std::string>;
  // A window gets the handle of the sender's window, a thread that of its thread.
  EXPECT_EQ(told(sender, changed),
            (Lines{"all 0 from 0: -", "thread " + kWideText + "20 from 20: sent",
                   "window 40 from 0: a", "window 10 from 0: one"}));
  EXPECT_GE(host.number, 0xC000U);
  EXPECT_LE(host.number, 0xFFFFU);
  sender.SetHandle(handle<HWND>(kWide | 0x50));
  EXPECT_EQ(told(sender, changed),
            (Lines{"all 0 from 0: -", "window " + kWideText + "50 from 50: sent",
                   "window 40 from 50: a", "window 10 from 50: one"}));
  last.SetHandle(handle<void*>(0x60));
  first.SetHandle(handle<void*>(0));
  EXPECT_EQ(told(last, changed), (Lines{"all 0 from 0: -", "thread 60 from 60: a",
                                        "window " + kWideText + "50 from 0: sent"}));
  sender.CloseDatabase(name, true);
  EXPECT_EQ(told(deaf, changed), (Lines{"all 0 from 0: -", "thread 60 from 0: a"}));
  host.notifications.clear();
  other.NotifyChanges(changed, sender);
  last.NotifyChanges(changed, first);
  EXPECT_EQ(host.notifications, (Lines{"thread 60 from 0: a"}));
}

TEST_F(Notifications, OfATouchedFile) {
  const std::string path = folder.write("a.dbc", kDatabase);
  ZelkManager manager(handle<HWND>(0x10));
  const ZelkDatabase& read_before = *manager.GetDatabase(open(manager, path, "before"));
  Folder::touch(path, 1);
  const ZelkDatabase& read_after = *manager.GetDatabase(open(manager, path, "after"));
  manager.NotifyChanges(read_before, manager);
  manager.NotifyChanges(read_after, manager);
  // A change of the older instance is announced for the newer one too, which is that of the present
  // file, but not the other way round.
  EXPECT_EQ(host.notifications,
            (std::vector<std::string>{"window 10 from 10: before", "window 10 from 10: after",
                                      "window 10 from 10: after"}));
}

}  // namespace

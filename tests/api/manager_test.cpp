#include "zelk/manager.hpp"

#include <gtest/gtest.h>

#include "support/folder.hpp"
#include "support/host.hpp"
#include "zelk/lock.hpp"

namespace {

/// A host's own manager: what it overrides is called from within the library.
struct Editor : ZelkManager {
  using ZelkManager::ZelkManager;

  bool LockDatabase(const char* db, const char* reason) override {
    return ZelkWriteLock::Create(*this, db, reason) != nullptr;
  }
  ZelkError CheckForWriteOpen(const char*) const override {
    return is_closed ? ZelkErrorOpenForWrite : ZelkErrorOk;
  }

  bool is_closed = true;
};

TEST(Managers, ShareEditsLocksAndNews) {
  const Folder folder;
  const std::string path = folder.write("motor.dbc", "BS_:\nBU_: A\nCM_ \"before\";\n");
  Host host;
  ZelkManager reader(handle<HWND>(0x10));
  Editor editor(handle<HWND>(0x20));
  const char* read = nullptr;
  const char* edited = nullptr;
  ASSERT_EQ(reader.OpenDatabase(path.c_str(), &read, 0), 0);
  EXPECT_EQ(editor.OpenDatabase(path.c_str(), &edited, "edited", 0), 5);
  editor.is_closed = false;
  ASSERT_EQ(editor.OpenDatabase(path.c_str(), &edited, "edited", 0), 0);

  ASSERT_TRUE(reader.LockDatabase(read, "I read"));
  EXPECT_FALSE(editor.LockAllDatabases("I edit"));
  EXPECT_EQ(host.messages,
            (std::vector<std::string>{"ZELKMS.DLL|Database access refused!\nI read|8208"}));

  ZelkDatabase* const database = editor.GetDatabase(edited);
  database->SetComment("after");
  EXPECT_STREQ(reader.GetDatabase(read)->comment, "after");
  ZelkManager::NotifyChanges(editor, *database);
  EXPECT_EQ(host.notifications,
            (std::vector<std::string>{"all 0 from 0: -", "window 20 from 20: edited",
                                      "window 10 from 20: motor"}));
}

}  // namespace

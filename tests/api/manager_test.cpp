#include "zelk/manager.hpp"

#include <gtest/gtest.h>

#include "support/folder.hpp"
#include "support/host.hpp"
#include "zelk/lock.hpp"
#include "zelk/zelk.h"

namespace {

constexpr char kDatabase[] = "BS_:\nBU_: A\nCM_ \"before\";\n";

/// A host's own manager: what it overrides is called from within the library.
struct Editor : ZelkManager {
  using ZelkManager::ZelkManager;

  bool LockDatabase(const char* db, const char* reason) override {
    return ZelkWriteLock::Create(*this, db, reason) != nullptr;
  }
  ZelkError CheckForWriteOpen(const char*) const override {
    return is_closed ? ZelkErrorOpenForWrite : ZelkErrorOk;
  }

  bool is_closed = false;
};

TEST(Managers, ShareEditsLocksAndNews) {
  const Folder folder;
  const std::string path = folder.write("motor.dbc", kDatabase);
  const std::string copy = folder.path("copy.dbc");
  Host host;
  ZelkManager reader(handle<HWND>(0x10));
  Editor editor(handle<HWND>(0x20));
  const char* read = nullptr;
  const char* edited = nullptr;
  ASSERT_EQ(reader.OpenDatabase(path.c_str(), &read, 0), 0);
  EXPECT_STREQ(read, "motor");
  editor.is_closed = true;
  EXPECT_EQ(editor.OpenDatabase(path.c_str(), &edited, "edited", 0), 5);
  editor.is_closed = false;
  ASSERT_EQ(editor.OpenDatabase(path.c_str(), &edited, "edited", 0), 0);

  ASSERT_TRUE(reader.LockDatabase(read, "I read"));
  EXPECT_FALSE(editor.LockAllDatabases("I edit"));
  reader.UnlockDatabase(read);
  EXPECT_TRUE(editor.LockAllDatabases("I edit"));
  EXPECT_FALSE(reader.LockDatabase(read, "I read"));
  EXPECT_EQ(host.messages,
            (std::vector<std::string>{"ZELKMS.DLL|Database access refused!\nI read|8208",
                                      "ZELKMS.DLL|Database access refused!\nI edit|8208"}));

  ZelkDatabase* const database = editor.GetDatabase(edited);
  database->SetComment("after");
  ASSERT_EQ(database->Write(copy.c_str()), 0);
  EXPECT_STREQ(reader.GetDatabase(read)->comment, "after");
  EXPECT_STREQ(reader.GetDatabasePath("motor"), copy.c_str());
  ZelkManager::NotifyChanges(editor, *database);
  EXPECT_EQ(host.notifications,
            (std::vector<std::string>{"all 0 from 0: -", "window 20 from 20: edited",
                                      "window 10 from 20: motor"}));

  editor.CloseDatabase(true);
  EXPECT_EQ(editor.OpenDatabase(copy.c_str(), &edited, "again", 0), 0);
  EXPECT_EQ(editor.GetDatabase(edited), database);
  EXPECT_EQ(editor.OpenDatabase(path.c_str(), &edited, "original", 0), 0);
  EXPECT_STREQ(editor.GetDatabase(edited)->comment, "before");
}

TEST(Managers, TellWhyAFileCannotBeRead) {
  {
    const Folder folder;
    ZelkManager manager(handle<HWND>(0));
    const std::string faulty = folder.write("faulty.dbc", "BS_:\n");
    EXPECT_EQ(manager.OpenDatabase(faulty.c_str(), nullptr, 0), 1);
    EXPECT_STREQ(manager.GetLastOpenError(), ", line 1, error: syntax\n");
    EXPECT_EQ(manager.GetDatabaseName(faulty.c_str()), nullptr);
    EXPECT_EQ(manager.Status(), 2U);
  }
  EXPECT_EQ(ZelkManager::GetManagersList(), nullptr);
}

}  // namespace

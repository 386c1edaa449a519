// A host whose global objects save when the process ends: one is destroyed before the library's own
// objects, one after them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "support/files.hpp"
#include "support/folder.hpp"
#include "support/host.hpp"
#include "zelk/write_manager.hpp"

namespace {

/// Edits a database, and writes it in the destructor.
class Saver {
 public:
  Saver() = default;
  Saver(const Saver&) = delete;
  Saver& operator=(const Saver&) = delete;
  ~Saver() {
    if (manager_ && manager_->WriteDatabase(name_, nullptr) != ZelkErrorOk) std::_Exit(2);
  }

  void edit(const char* path) {
    manager_.emplace(handle<HWND>(0));
    ASSERT_EQ(manager_->OpenDatabase(path, &name_, 0), ZelkErrorOk);
    ASSERT_TRUE(manager_->LockDatabase(name_, "until the end"));
    manager_->SetDatabaseComment(name_, "edited");
  }

 private:
  std::optional<ZelkWriteManager> manager_;
  const char* name_ = nullptr;
};

Saver made_first;

TEST(ProcessExit, DISABLED_Host) {
  made_first.edit("ProcessExit.GlobalObjectsSave/first.dbc");
  static Saver made_last;
  made_last.edit("ProcessExit.GlobalObjectsSave/last.dbc");
}

TEST(ProcessExit, GlobalObjectsSave) {
  const Folder folder;
  for (const char* name : {"first.dbc", "last.dbc"}) folder.write(name, "BS_:\nBU_: A\n");
  const std::string output =
      std::filesystem::path(folder.path("output.txt")).make_preferred().string();
  const std::string command =
      testing::internal::GetArgvs()[0] +
      " --gtest_also_run_disabled_tests --gtest_filter=ProcessExit.DISABLED_Host > " + output;
  EXPECT_EQ(std::system(command.c_str()), 0) << content_of(output);
  for (const char* name : {"first.dbc", "last.dbc"}) {
    EXPECT_NE(content_of(folder.path(name)).find("CM_ \"edited\""), std::string::npos) << name;
  }
}

}  // namespace

#include "zelk/lock.hpp"

#include "manager/manager_test.hpp"
#include "support/failing.hpp"

namespace {

using Locks = ManagerTest;

bool take(bool is_write, ZelkManager& manager, const char* db, const char* reason) {
  const ZelkLock* lock = nullptr;
  if (is_write) lock = ZelkWriteLock::Create(manager, db, reason);
  if (!is_write) lock = ZelkReadLock::Create(manager, db, reason);
  EXPECT_TRUE(!lock || lock->IsWriteLock() == is_write);
  return lock != nullptr;
}

TEST_F(Locks, RefuseEachOther) {
  constexpr bool kRead = false;
  constexpr bool kWrite = true;
  const struct {
    const char* what;
    bool held;
    int holder;  ///< 0: the asking manager itself, 1: another one, 2: another one, of another file
    bool asked;
    bool is_granted;
  } cases[] = {
      {"read beside read", kRead, 1, kRead, true},
      {"write beside read", kRead, 1, kWrite, false},
      {"read beside write", kWrite, 1, kRead, false},
      {"write beside write", kWrite, 1, kWrite, false},
      {"own write beside read", kRead, 0, kWrite, true},
      {"own read beside write", kWrite, 0, kRead, true},
      {"own write beside write", kWrite, 0, kWrite, true},
      {"write of another file", kWrite, 2, kWrite, true},
  };
  const std::string a = folder.write("a.dbc", kDatabase), b = folder.write("b.dbc", kDatabase);
  for (const auto& c : cases) {
    Manager asker, other;
    const char* const name = open(asker, a, "asked");
    host.messages.clear();
    ASSERT_TRUE(c.holder == 0 ? take(c.held, asker, name, "held")
                              : take(c.held, other, open(other, c.holder == 1 ? a : b), "held"));
    EXPECT_EQ(take(c.asked, asker, name, "asked"), c.is_granted) << c.what;
    EXPECT_EQ(host.messages.size(), c.is_granted ? 0U : 1U) << c.what;
    EXPECT_EQ(locks_alive(), c.is_granted ? 2 : 1) << c.what;
  }
}

TEST_F(Locks, TellTheReason) {
  const std::string path = folder.write("a.dbc", kDatabase);
  Manager asker, first, second;
  const char* const asked = open(asker, path);
  std::string reason = "line 1\nline 2";
  ASSERT_TRUE(first.LockDatabase(open(first, path), reason.c_str()));
  reason = "gone";
  EXPECT_FALSE(take(true, asker, asked, ""));
  ASSERT_TRUE(second.LockDatabase(open(second, path), nullptr));
  EXPECT_FALSE(take(true, asker, asked, ""));
  const std::vector<std::string> told = {"ZELKMS.DLL|Database access refused!\nline 1\nline 2|8208",
                                         "ZELKMS.DLL|Database access refused!\n|8208"};
  EXPECT_EQ(host.messages, told) << "the newest lock refuses";
  ZelkDatabase& database = *asker.GetDatabase(asked);
  EXPECT_EQ(ZelkReadLock::GetLock(first, database), nullptr);
  EXPECT_STREQ(ZelkWriteLock::GetLock(second, database)->Reason(), "line 1\nline 2");
}

TEST_F(Locks, AreOfManagersAndFiles) {
  const std::string path = folder.write("a.dbc", kDatabase);
  Manager holder, asker;
  const char* const before = open(holder, path, "before");
  const char* const asked = open(asker, path);
  Folder::touch(path, 1);
  ASSERT_TRUE(take(true, holder, before, nullptr));
  EXPECT_FALSE(take(true, asker, asked, nullptr)) << "the same instance of a touched file";
  const char* const after = open(holder, path, "after");
  ASSERT_TRUE(take(true, holder, after, "after"));
  holder.CloseDatabase(before, false);
  ASSERT_EQ(locks_alive(), 1) << "another instance keeps its lock";
  EXPECT_STREQ(zelk::lock_list().all().begin()->second->Reason(), "after");
}

TEST_F(Locks, OfAllDatabases) {
  Manager holder, other;
  const char* names[3];
  for (int i = 0; i < 3; ++i) {
    const std::string path = folder.write(std::string(1, static_cast<char>('a' + i)), kDatabase);
    names[i] = open(holder, path);
    const char* const others = open(other, path);
    EXPECT_TRUE(i == 0 || take(true, other, others, names[i]));
  }
  ASSERT_TRUE(take(true, holder, names[0], "older"));
  EXPECT_FALSE(holder.LockAllDatabases("all"));
  EXPECT_EQ(host.messages, std::vector<std::string>{"ZELKMS.DLL|Database access refused!\nb|8208"});
  EXPECT_EQ(locks_alive(), 2) << "those of the other manager";
  other.UnlockDatabase(nullptr);
  EXPECT_TRUE(holder.LockAllDatabases("all"));
  EXPECT_EQ(locks_alive(), 3);
}

TEST_F(Locks, AreFreed) {
  const std::string a = folder.write("a.dbc", kDatabase), b = folder.write("b.dbc", kDatabase);
  const struct {
    const char* what;
    void (*free)(ZelkManager& manager, const char* a);
    int left;  ///< of five: two of the manager on each file, and one of another manager
  } cases[] = {
      {"twice", [](auto& m, auto* db) { m.UnlockDatabase(db), m.UnlockDatabase(db); }, 3},
      {"an unknown name", [](auto& m, auto*) { m.UnlockDatabase("a"); }, 5},
      {"all", [](auto& m, auto*) { m.UnlockDatabase(nullptr); }, 1},
      {"by closing", [](auto& m, auto* db) { m.CloseDatabase(db, false); }, 3},
      {"by closing all", [](auto& m, auto*) { m.CloseDatabase(false); }, 1},
      {"by nothing else", [](auto& m, auto* db) { m.ReopenDatabase(db); }, 5},
  };
  for (const auto& c : cases) {
    Manager other;
    {
      Manager manager;
      const char* const name = open(manager, a);
      const char* const second = open(manager, b);
      for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(take(false, manager, name, "reason"));
        ASSERT_TRUE(take(false, manager, second, "reason"));
      }
      ASSERT_TRUE(take(false, other, open(other, a), "other"));
      c.free(manager, name);
      EXPECT_EQ(locks_alive(), c.left) << c.what;
    }
    ASSERT_EQ(locks_alive(), 1) << c.what;
    EXPECT_STREQ(zelk::lock_list().all().begin()->second->Reason(), "other") << c.what;
  }
}

/// Whether each failing allocation in turn makes a lock impossible, with nothing left of it.
template <typename Failing>
void expect_no_locks(ZelkManager& manager, const char* db) {
  const std::ptrdiff_t before = locks_alive();
  for (std::size_t n = 0;; ++n) {
    bool is_granted = false;
    const bool has_failed =
        fails_at<Failing>(n, [&] { is_granted = manager.LockDatabase(db, "reason"); });
    EXPECT_EQ(is_granted, !has_failed) << n;
    EXPECT_EQ(locks_alive(), before + (is_granted ? 1 : 0)) << n;
    if (has_failed) continue;
    EXPECT_GT(n, 0U);
    return;
  }
}

TEST_F(Locks, WithoutMemory) {
  Manager manager, other;
  const char* const name = open(manager, folder.write("a.dbc", kDatabase));
  ASSERT_TRUE(take(true, other, open(other, folder.write("b.dbc", kDatabase)), "compared"));
  expect_no_locks<FailingCalloc>(manager, name);
  expect_no_locks<FailingNew>(manager, name);
}

}  // namespace

#include "zelk/write_manager.hpp"

#include <utility>

#include "manager/manager_test.hpp"
#include "support/failing.hpp"
#include "support/files.hpp"
#include "zelk/model.h"

namespace {

using WriteManagers = ManagerTest;

constexpr void* kNobody = nullptr;

struct WriteManager : ZelkWriteManager {
  WriteManager() : ZelkWriteManager(kNobody) {}
};

const char* create(ZelkWriteManager& manager, const char* db, const char* path = nullptr) {
  const char* name = nullptr;
  EXPECT_EQ(manager.CreateDatabase(db, &name, path), 0) << db;
  EXPECT_STREQ(name, db);
  EXPECT_NE(name, db);
  return name;
}

TEST_F(WriteManagers, OwnTheirFiles) {
  const std::string path = folder.write("a.dbc", kDatabase);
  const std::string other = folder.write("b.dbc", kDatabase);
  Manager reader;
  open(reader, path, "early");
  WriteManager first, second;
  const char* const name = open(first, path, "a");
  EXPECT_EQ(second.OpenDatabase(path.c_str(), nullptr, "a", 0), 5);
  EXPECT_EQ(first.OpenDatabase(path.c_str(), nullptr, "again", 0), 4);
  open(reader, other, "other");
  open(second, other);
  EXPECT_TRUE(first.OwnsDatabaseForWrite(path.c_str()));
  EXPECT_FALSE(first.OwnsDatabaseForWrite(other.c_str()));
  EXPECT_FALSE(reader.OwnsDatabaseForWrite(path.c_str()));
  first.CloseDatabase(name, false);
  open(second, path, "a");
}

TEST_F(WriteManagers, CreateDatabases) {
  WriteManager manager;
  create(manager, "taken");
  const std::string existing = folder.write("old.dbc", kDatabase);
  const struct {
    const char *db, *path;
    int expected;
  } refused[] = {{nullptr, nullptr, 7},
                 {"bad name", existing.c_str(), 7},
                 {"taken", existing.c_str(), 3},
                 {"new", existing.c_str(), 10}};
  for (const auto& c : refused) {
    const char* name = "untouched";
    EXPECT_EQ(manager.CreateDatabase(c.db, &name, c.path), c.expected);
    EXPECT_STREQ(name, "untouched");
  }
  EXPECT_EQ(databases_alive(), 1);

  const std::string path = folder.path("new.dbc");
  const char* const name = create(manager, "fresh", path.c_str());
  EXPECT_FALSE(std::filesystem::exists(path));
  manager.SetName(*manager.CreateNode(name, 0), "Node");
  ASSERT_EQ(manager.WriteDatabase(name, nullptr), 0);
  Manager reader;
  EXPECT_TRUE(reader.GetNode("Node", open(reader, path, "copy")));
}

/// The part of a file that shows who wrote it.
std::string written(const char* by) { return std::string("CM_ \"") + by + "\""; }

// Each letter is a step, of the first writer or in capitals of the second, on one new file: c
// creates a database for it, e one without a path; w writes to the own file, g to this one, o to
// another; x closes.
TEST_F(WriteManagers, OneGetsANewFile) {
  const struct {
    const char* steps;
    int expected;  ///< of the last step
    const char* content;
  } cases[] = {
      {"cw", 0, "first"},     {"cww", 0, "first"},      {"cCwW", 10, "first"},
      {"cEGw", 10, "second"}, {"cEGg", 10, "second"},   {"cEGXw", 10, "second"},
      {"cEGXog", 0, "first"}, {"cowCWg", 10, "second"}, {"cCw", 0, "first"},
      {"cCwWw", 0, "first"},  {"EGc", 10, "second"},
  };
  for (const auto& c : cases) {
    const std::string path = folder.path("new.dbc"), other = folder.path("other.dbc");
    for (const auto& file : {path, other}) std::filesystem::remove(file);
    WriteManager managers[2];
    const char* names[2] = {};
    int result = 0;
    for (const char* step = c.steps; *step; ++step) {
      const bool is_second = *step < 'a';
      WriteManager& manager = managers[is_second];
      const char*& name = names[is_second];
      const char kind = static_cast<char>(*step | 0x20);
      if (kind == 'x') manager.CloseDatabase(std::exchange(name, nullptr), false);
      if (kind == 'c' || kind == 'e') {
        result = manager.CreateDatabase("new", &name, kind == 'c' ? path.c_str() : nullptr);
        manager.SetDatabaseComment(name, is_second ? "second" : "first");
      }
      if (kind == 'w') result = manager.WriteDatabase(name, nullptr);
      if (kind == 'g') result = manager.WriteDatabase(name, path.c_str());
      if (kind == 'o') result = manager.WriteDatabase(name, other.c_str());
    }
    EXPECT_EQ(result, c.expected) << c.steps;
    EXPECT_NE(content_of(path).find(written(c.content)), std::string::npos) << c.steps;
  }
}

// A second writer has the touched file open, with unwritten edits.
TEST_F(WriteManagers, LeaveOthersEditsAlone) {
  for (const bool is_named : {false, true}) {
    const std::string path = folder.write("a.dbc", kDatabase);
    WriteManager first, second;
    const char* const name = open(first, path);
    Folder::touch(path, 1);
    const char* const others = open(second, path);
    first.SetDatabaseComment(name, "first");
    second.SetDatabaseComment(others, "second");
    const symblk* const node = second.GetNode("A", others);
    EXPECT_EQ(first.WriteDatabase(name, is_named ? path.c_str() : nullptr), 10);
    EXPECT_EQ(content_of(path), kDatabase);
    EXPECT_STREQ(second.GetConstDatabase(others)->comment, "second");
    EXPECT_EQ(second.GetNode("A", others), node);
    EXPECT_EQ(second.WriteDatabase(others, nullptr), 0)
        << "its instance is that of the present file";
    EXPECT_EQ(first.WriteDatabase(name, nullptr), 10);
    first.CommitDatabase(nullptr);
    EXPECT_STREQ(second.GetConstDatabase(others)->comment, "first")
        << "a commit overwrites without asking";
    second.CloseDatabase(others, false);
    Manager reader;
    open(reader, path);
    EXPECT_EQ(first.WriteDatabase(name, nullptr), 0) << "a plain manager does not refuse a write";
    EXPECT_NE(content_of(path).find(written("first")), std::string::npos);
  }
}

class TwoInstances : public ManagerTest {
 protected:
  /// Opens a file in one manager twice: before and after a touch.
  static std::pair<const char*, const char*> open_both(WriteManager& manager,
                                                       const std::string& path) {
    const char* const old = open(manager, path, "old");
    Folder::touch(path, 1);
    return {old, open(manager, path, "fresh")};
  }
};

TEST_F(TwoInstances, LeaveEachOthersEditsAlone) {
  WriteManager manager;
  const auto [old, fresh] = open_both(manager, folder.write("a.dbc", kDatabase));
  manager.SetDatabaseComment(old, "old");
  const symblk* const node = manager.CreateNode(fresh, 0);
  EXPECT_EQ(manager.WriteDatabase(old, nullptr), 10);
  EXPECT_EQ(manager.GetConstDatabase(fresh)->nodes, node);
  ZelkDatabase& cut = *manager.GetDatabase(old);
  cut.symbols_shortened = 1;
  cut.Commit();
  EXPECT_EQ(manager.WriteDatabase(fresh, nullptr), 9) << "what was cut is not saved from there";
}

// A look at the file between has read a third instance, which stays in the cache.
TEST_F(TwoInstances, LeaveAloneWhatWasSaved) {
  const std::string path = folder.write("a.dbc", kDatabase);
  WriteManager manager;
  const auto [old, fresh] = open_both(manager, path);
  Folder::touch(path, 2);
  zelk_mfree(const_cast<char*>(manager.GetDatabaseName(path.c_str())));
  EXPECT_EQ(manager.WriteDatabase(old, nullptr), 0);
  EXPECT_EQ(manager.WriteDatabase(fresh, nullptr), 10);
}

TEST_F(WriteManagers, ReadAgainWhatWasReadInPart) {
  const std::string path = folder.write("a.dbc", kDatabase);
  WriteManager writer;
  const char* const name = open(writer, path);
  folder.write("a.dbc", "BS_:\nBU_: D\nBO_ 1 M 8 D\n");
  EXPECT_EQ(writer.ReopenDatabase(name), 1);
  folder.write("a.dbc", kDatabase);
  Manager reader;
  EXPECT_TRUE(reader.GetNode("A", open(reader, path)));
  EXPECT_EQ(writer.WriteDatabase(name, nullptr), 9);
}

// A host may exchange the lists of two databases.
TEST_F(WriteManagers, AppendToTheListThatIsThere) {
  WriteManager manager;
  const char* const names[] = {create(manager, "a"), create(manager, "b")};
  for (const char* const name : names) manager.CreateMessage(name, 0)->id = *name;
  std::swap(manager.GetDatabase(names[0])->messages, manager.GetDatabase(names[1])->messages);
  const msgblk* const added = manager.CreateMessage(names[0], 9);
  EXPECT_EQ(manager.GetConstDatabase(names[0])->messages->next, added);
}

TEST_F(WriteManagers, WriteAndAnnounce) {
  const std::string path = folder.write("a.dbc", kDatabase);
  ZelkWriteManager writer(handle<HWND>(0x10));
  ZelkManager reader(handle<HWND>(0x20));
  const char* const name = open(writer, path, "mine");
  open(reader, path, "yours");
  writer.SetDatabaseComment(name, "edited");
  EXPECT_EQ(writer.WriteDatabase("mine", nullptr), 9) << "a text that is no handle";
  EXPECT_TRUE(host.notifications.empty());
  EXPECT_EQ(writer.WriteDatabase(name, nullptr), 0);
  const std::vector<std::string> told = {"all 0 from 0: -", "window 10 from 10: mine",
                                         "window 20 from 10: yours"};
  EXPECT_EQ(host.notifications, told);
  EXPECT_NE(content_of(path.c_str()).find("CM_ \"edited\""), std::string::npos);

  host.notifications.clear();
  writer.CommitDatabase(name);
  EXPECT_EQ(host.notifications, told) << "a commit is announced whether or not it copied";
  host.notifications.clear();
  writer.CommitDatabase("mine");
  writer.ClearDatabase(name);
  EXPECT_TRUE(host.notifications.empty());
}

TEST_F(WriteManagers, WriteNothingThatIsLocked) {
  const std::string paths[] = {folder.write("a.dbc", kDatabase), folder.write("b.dbc", kDatabase)};
  WriteManager writer;
  Manager reader;
  const char* const first = open(writer, paths[0], "a");
  const char* const second = open(writer, paths[1], "b");
  for (const char* name : {first, second}) writer.SetDatabaseComment(name, "edited");
  ASSERT_TRUE(reader.LockDatabase(open(reader, paths[1], "held"), "in use"));
  EXPECT_EQ(writer.WriteDatabase(nullptr, nullptr), 11);
  EXPECT_EQ(writer.WriteDatabase(second, nullptr), 11);
  EXPECT_EQ(host.messages,
            std::vector<std::string>(2, "ZELKMS.DLL|Database access refused!\nin use|8208"));
  for (const auto& path : paths) EXPECT_EQ(content_of(path.c_str()), kDatabase);
  reader.UnlockDatabase(nullptr);
  ASSERT_TRUE(writer.LockAllDatabases("own locks do not refuse"));
  EXPECT_FALSE(reader.LockAllDatabases("reading")) << "they are write locks";
  EXPECT_EQ(writer.WriteDatabase(nullptr, "ignored.dbc"), 0);
  for (const auto& path : paths) EXPECT_NE(content_of(path.c_str()), kDatabase);
}

TEST_F(WriteManagers, WriteAllAndTellTheFirstError) {
  WriteManager writer;
  const std::string path = folder.path("new.dbc");
  create(writer, "nowhere");
  create(writer, "somewhere", path.c_str());
  EXPECT_EQ(writer.WriteDatabase(nullptr, nullptr), 2);
  EXPECT_TRUE(std::filesystem::exists(path));
}

template <typename Failing>
void create_without_memory() {
  bool has_failed = true;
  for (std::size_t n = 0; has_failed; ++n) {
    WriteManager manager;
    ZelkError result{};
    has_failed =
        fails_at<Failing>(n, [&] { result = manager.CreateDatabase("new", nullptr, "new.dbc"); });
    // Without memory for the error text alone the database is there.
    EXPECT_TRUE(result == 0 || (has_failed && result == 1)) << n;
    EXPECT_EQ(databases_alive(), result == 0 ? 1 : 0) << n;
  }
}

TEST_F(WriteManagers, CreateAllOrNothingWithoutMemory) {
  create_without_memory<FailingCalloc>();
  create_without_memory<FailingNew>();
}

}  // namespace

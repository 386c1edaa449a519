#include "manager/manager_test.hpp"

#include "model/memory.hpp"
#include "support/failing.hpp"
#include "support/files.hpp"
#include "zelk/errors.h"

namespace {

// A name alone would be converted to true, and close everything.
template <typename Argument>
constexpr bool kCanClose = requires(ZelkManager& m, Argument a) {
  m.CloseDatabase(a);
};
static_assert(kCanClose<bool> && kCanClose<int>);
static_assert(!kCanClose<const char*> && !kCanClose<char*> && !kCanClose<const char (&)[6]>);

using Opening = ManagerTest;

/// Records in which order its virtual operations are called.
struct Observed : Manager {
  ZelkError GetDatabaseFileInfo(const char* path) const override {
    calls += "info ";
    return ZelkManager::GetDatabaseFileInfo(path);
  }
  ZelkError CheckForWriteOpen(const char* path) const override {
    calls += "check ";
    return ZelkManager::CheckForWriteOpen(path);
  }
  ZelkDatabase& AssignDatabase(const char* path) override {
    calls += "assign ";
    return ZelkManager::AssignDatabase(path);
  }
  void ReleaseDatabase(ZelkDatabase& database, bool keep_in_cache) override {
    calls += std::filesystem::path(database.path).stem().string() + (keep_in_cache ? "+ " : "- ");
    ZelkManager::ReleaseDatabase(database, keep_in_cache);
  }

  mutable std::string calls;
};

// Most cases fail for more than one reason: the result is that of the first test.
TEST_F(Opening, TestsInOrder) {
  const std::string opened = folder.write("opened.dbc", kDatabase);
  const std::string faulty = folder.write("faulty.dbc", kFaulty);
  const std::string twin = folder.write("other/opened.dbc", kDatabase);
  const std::string faulty_twin = folder.write("faulty/opened.dbc", kFaulty);
  const std::string named = folder.write("named.dbc",
                                         "BS_:\nBU_:\nBA_DEF_ \"DBName\" STRING ;\n"
                                         "BA_DEF_DEF_ \"DBName\" \"opened\";\n");
  const std::string missing = folder.path("missing.dbc");
  const std::string detour = folder.path("other/../opened.dbc");
  const std::string other_folder = folder.path("other");
  const struct {
    const char *path, *wanted_name;
    int expected;
    const char* calls;
  } cases[] = {
      {opened.c_str(), "a-b", 7, ""},
      {missing.c_str(), "opened", 3, ""},
      {opened.c_str(), "opened", 3, ""},
      {missing.c_str(), "OPENED", 2, "info "},
      {missing.c_str(), nullptr, 2, "info "},
      {nullptr, nullptr, 2, "info "},
      {"", nullptr, 2, "info "},
      {opened.c_str(), "free", 4, "info "},
      {detour.c_str(), nullptr, 4, "info "},
      {faulty.c_str(), "free", 1, "info check assign "},
      {faulty_twin.c_str(), nullptr, 1, "info check assign "},
      {other_folder.c_str(), nullptr, 1, "info check assign "},
      {twin.c_str(), nullptr, 3, "info check assign opened- "},
      {named.c_str(), nullptr, 3, "info check assign named- "},
  };
  Observed manager;
  open(manager, opened);
  for (const auto& c : cases) {
    const std::string what =
        (c.path ? c.path : "null") + std::string(" as ") + (c.wanted_name ? c.wanted_name : "null");
    const char* name = "untouched";
    manager.calls.clear();
    EXPECT_EQ(manager.OpenDatabase(c.path, &name, c.wanted_name, 1), c.expected) << what;
    EXPECT_STREQ(name, c.expected == 4 ? "opened" : "untouched") << what;
    EXPECT_EQ(manager.calls, c.calls) << what;
    EXPECT_EQ(manager.OpenDatabase(c.path, nullptr, c.wanted_name, 1), c.expected) << what;
    EXPECT_EQ(databases_alive(), 1) << what;
    EXPECT_EQ(manager.DatabaseCount(), 1U) << what;
  }
  Folder::set_read_only(twin, true);
  EXPECT_EQ(manager.OpenDatabase(twin.c_str(), nullptr, "twin", 0), 0) << "also a read-only file";
  Folder::set_read_only(twin, false);
}

TEST_F(Opening, OrdersByPriority) {
  const struct {
    const char *name, *wanted_name;
    unsigned priority, stored;
  } files[] = {{"low", nullptr, 1, 1},    {"first", nullptr, 5, 5},   {"wanted", "w", 9, 0},
               {"second", nullptr, 5, 5}, {"top", nullptr, ~0U, ~0U}, {"third", nullptr, 5, 5},
               {"zero", nullptr, 0, 0}};
  Manager manager;
  for (const auto& file : files) {
    const std::string path = folder.write(std::string(file.name) + ".dbc", kDatabase);
    const char* const name = open(manager, path, file.wanted_name, file.priority);
    EXPECT_EQ(manager.GetPriority(name), file.stored) << file.name;
  }
  const auto order = [&manager] {
    std::string names;
    for (const auto* node : manager.GetDatabaseNameIterator())
      names += node->name + std::string(" ");
    return names;
  };
  EXPECT_EQ(order(), "top first second third low w zero ");
  for (const char* closed : {"top", "third", "second", "zero"}) {
    manager.CloseDatabase(manager.GetUniqueDatabaseName(closed), false);
    EXPECT_EQ(manager.GetUniqueDatabaseName(closed), nullptr);
  }
  open(manager, folder.path("third.dbc"), nullptr, 5);
  open(manager, folder.path("zero.dbc"));
  EXPECT_EQ(order(), "first third low w zero ");
}

// A database stays with the file that its path named when it was opened.
TEST_F(Opening, KeepsTheFileOfARelativePath) {
  const std::string path = folder.write("a.dbc", kDatabase);
  const std::filesystem::path here = std::filesystem::current_path();
  Manager manager;
  const char* const name = open(manager, path);
  std::filesystem::create_directories(folder.path("there/" + path));
  std::filesystem::current_path(folder.path("there"));
  EXPECT_EQ(manager.OpenDatabase((here / path).string().c_str(), nullptr, 0), 4);
  EXPECT_EQ(manager.OpenDatabase("a.dbc", nullptr, "elsewhere", 0), 2);
  EXPECT_EQ(manager.ReopenDatabase(name), 0);
  manager.GetDatabase(name)->SetComment("saved");
  EXPECT_EQ(manager.GetDatabase(name)->Write(nullptr), 0);
  EXPECT_STREQ(manager.GetDatabasePath("a"), path.c_str());
  std::filesystem::current_path(here);
  EXPECT_NE(content_of(path), kDatabase);
  EXPECT_EQ(manager.OpenDatabase(path.c_str(), nullptr, 0), 4);
}

TEST_F(Opening, KeepsTheErrorText) {
  const std::string good = folder.write("good.dbc", kDatabase);
  const std::string odd = folder.write("odd.dbc", "NS_: FOO\nBS_:\nBU_: A\nFOO 1;\n");
  const std::string faulty = folder.write("faulty.dbc", kFaulty);
  const struct {
    const char* path;
    int expected;
    const char* text;
  } steps[] = {{good.c_str(), 0, ""},
               {faulty.c_str(), 1, ", line 3, error: syntax\n"},
               {good.c_str(), 4, ", line 3, error: syntax\n"},  // it is not opened
               {odd.c_str(), 0, "new symbol not supported, line 3, FOO\n"},
               {faulty.c_str(), 1, ", line 3, error: syntax\n"}};
  Manager manager;
  EXPECT_STREQ(manager.GetLastOpenError(), "");
  for (const auto& step : steps) {
    EXPECT_EQ(manager.OpenDatabase(step.path, nullptr, 0), step.expected) << step.path;
    zelk_note(ZELK_ERR_MEMORY, 0, nullptr);
    EXPECT_STREQ(manager.GetLastOpenError(), step.text) << step.path;
  }
  manager.CloseDatabase(true);
  EXPECT_EQ(manager.OpenDatabase(odd.c_str(), nullptr, 0), 0);
  EXPECT_STREQ(manager.GetLastOpenError(), "") << "it was not read";
}

TEST_F(Opening, ReadsAgain) {
  const std::string paths[] = {folder.write("x.dbc", kDatabase), folder.write("y.dbc", kDatabase),
                               folder.write("z.dbc", kDatabase)};
  Manager manager;
  const char* names[3];
  for (int i = 0; i < 3; ++i) names[i] = open(manager, paths[i]);
  ZelkDatabase* const x = manager.GetDatabase(names[0]);
  folder.write("x.dbc", "BS_:\nBU_: B\n", 1);
  folder.write("y.dbc", kFaulty, 1);
  std::filesystem::remove(paths[2]);
  EXPECT_EQ(manager.ReopenDatabase(names[0]), 0);
  EXPECT_EQ(manager.GetDatabase(names[0]), x);
  EXPECT_STREQ(x->nodes->name, "B");
  EXPECT_EQ(manager.ReopenDatabase(names[1]), 1);
  EXPECT_EQ(manager.ReopenDatabase(names[2]), 2);
  EXPECT_EQ(manager.ReopenDatabase(nullptr), 2) << "the last one met";
  folder.write("z.dbc", "BS_:\nBU_: C\n", 1);
  EXPECT_EQ(manager.ReopenDatabase(nullptr), 1) << "later ones are read all the same";
  EXPECT_STREQ(manager.GetDatabase(names[2])->nodes->name, "C");
  folder.write("y.dbc", kDatabase, 1);
  EXPECT_EQ(manager.ReopenDatabase(nullptr), 0);
  manager.CloseDatabase(names[2], true);
  EXPECT_EQ(databases_alive(), 3);
  EXPECT_EQ(manager.ReopenDatabase(names[0]), 0);
  EXPECT_EQ(databases_alive(), 2) << "the cache is flushed first";
}

/// Loops over all calls of an operation that allocates, each failing in turn.
///
/// @return how often the file was opened although one had failed
template <typename Failing>
int opened_nevertheless(const char* open_path, const char* path) {
  int opened = 0;
  for (std::size_t n = 0;; ++n) {
    Manager manager;
    EXPECT_EQ(manager.OpenDatabase(open_path, nullptr, 0), 0);
    const char* name = nullptr;
    ZelkError result = ZelkErrorOk;
    const bool has_failed =
        fails_at<Failing>(n, [&] { result = manager.OpenDatabase(path, &name, 0); });
    EXPECT_EQ(result, name ? 0 : 1) << n;
    EXPECT_EQ(databases_alive(), name ? 2 : 1) << n;
    EXPECT_EQ(manager.OpenDatabase(path, nullptr, 0), name ? 4 : 0) << n;
    if (!has_failed) {
      EXPECT_GT(n, 0U);
      return opened;
    }
    opened += name ? 1 : 0;
  }
}

TEST_F(Opening, WithoutMemory) {
  const std::string a = folder.write("a.dbc", kDatabase);
  const std::string b = folder.write("b.dbc", "NS_: FIRST SECOND\nBS_:\nBU_: A\n");
  constexpr int kWithoutErrorText = 1;  // its copy is not worth the database
  EXPECT_EQ(opened_nevertheless<FailingCalloc>(a.c_str(), b.c_str()), kWithoutErrorText);
  EXPECT_EQ(opened_nevertheless<FailingNew>(a.c_str(), b.c_str()), 0);
}

}  // namespace

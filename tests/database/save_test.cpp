// Writing a database over its file: what is refused, and that a failure leaves the old file alone.

#include <vector>

#include "database/own_database.hpp"
#include "support/failing.hpp"
#include "support/paths.hpp"
#include "zelk/exception.hpp"

namespace {

using Save = DatabaseTest;

constexpr std::string_view kNodes = "BS_:\nBU_: A B\n";
constexpr char kShortened[] =
    "Can't save database.\nSymbols e.g. object names will be shortend while writing the database.\n"
    "This will lead to loss of data.\n";

TEST_F(Save, ChecksInOrder) {
  struct Case {
    const char* name;
    const char *own, *target;  // null for none
    bool is_shortened;
    int expected;
    const char *own_after, *told;  // null: the reason with the target in front
  };
  const char* const none = nullptr;
  for (const Case& c : std::vector<Case>{
           {"no path", none, none, true, 2, none, ""},
           {"another's, read-only, cut names", "own", "open_fixed", true, 10, "own", ""},
           {"another's, but no own path", none, "open", false, 10, none, ""},
           {"read-only, cut names", "own", "fixed", true, 8, "own", ""},
           {"own read-only", "fixed", none, false, 8, "fixed", ""},
           {"cut names, new path", "own", "new", true, 9, "new", kShortened},
           {"no folder", "own", "none/new", false, 9, "none/new", none},
           {"a folder", "own", "folder", false, 9, "folder", none},
           {"own", "own", none, false, 0, "own", ""},
           {"new", "own", "new", false, 0, "new", ""},
           {"first path", none, "new", false, 0, "new", ""},
           {"nobody's", "own", "other", false, 0, "other", ""}}) {
    const Folder folder;
    for (const char* file : {"own", "open", "open_fixed", "fixed", "other"}) {
      folder.write(file, kNodes);
    }
    std::filesystem::create_directory(folder.path("folder"));
    ZelkDatabase& open = OwnDatabase::open(folder.path("open"));
    ZelkDatabase& open_fixed = OwnDatabase::open(folder.path("open_fixed"));
    for (const char* file : {"fixed", "open_fixed"}) Folder::set_read_only(folder.path(file), true);
    {
      OwnDatabase database;
      if (c.own) database.assign(OwnDatabase(folder.path(c.own)));
      database.SetComment("saved");
      database.symbols_shortened = c.is_shortened;
      const std::string target = c.target ? folder.path(c.target) : "";
      zelk_clear_error_text();
      EXPECT_EQ(database.Write(c.target ? target.c_str() : nullptr), c.expected) << c.name;
      const std::string reason = "database: could not write, " + target + ": ";
      EXPECT_TRUE(c.told ? zelk_get_error_text() == std::string(c.told)
                         : std::string(zelk_get_error_text()).starts_with(reason))
          << c.name << ": " << zelk_get_error_text();
      const std::string own_after = c.own_after ? c.own_after : "";
      EXPECT_EQ(database.path ? database.path : "", c.own_after ? folder.path(own_after) : "")
          << c.name;
      std::string saved;
      for (const auto& file : std::filesystem::directory_iterator(folder.path(""))) {
        const bool is_saved = file.is_regular_file() && content_of(file) != kNodes;
        if (is_saved) saved += file.path().filename().string();
      }
      EXPECT_EQ(saved, c.expected == 0 ? own_after : "") << c.name;
    }
    for (const char* file : {"fixed", "open_fixed"})
      Folder::set_read_only(folder.path(file), false);
    OwnDatabase::DestroyDatabase(open, false);
    OwnDatabase::DestroyDatabase(open_fixed, false);
  }
}

TEST_F(Save, LeavesOutExtendedMultiplexing) {
  const std::string path = folder_.path("a.dbc");
  OwnDatabase database(ZELK_SOURCE_DIR "/tests/writer/whole.dbc");
  EXPECT_EQ(database.Write(path.c_str()), 0);
  const std::string whole = content_of(path), ranges = "SG_MUL_VAL_ 1 T S 1-3, 7-9;\n";
  database.WriteExtendedMultiplexing(false);
  EXPECT_EQ(database.Write(nullptr), 0);
  EXPECT_NE(whole.find(ranges), std::string::npos);
  EXPECT_EQ(content_of(path).find(ranges), std::string::npos);
}

TEST_F(Save, KeepsTheDatabaseAndCommitsIt) {
  const std::string path = folder_.write("a.dbc", kNodes), moved = folder_.path("b.dbc");
  ZelkDatabase& listed = OwnDatabase::open(path);
  const OwnDatabase before(path);
  EXPECT_EQ(listed.Write(nullptr), 0);
  EXPECT_TRUE(listed.IsPathEqual(path.c_str()));
  EXPECT_FALSE(before.IsPathEqual(path.c_str())) << "the file is another one";
  OwnDatabase changed(path);
  changed.SetComment("changed");
  EXPECT_EQ(changed.Write(path.c_str()), 10);
  EXPECT_EQ(changed.Write(nullptr), 0);
  EXPECT_STREQ(listed.comment, "changed");
  EXPECT_EQ(OwnDatabase::find(path), &listed);
  changed.SetComment("lost");
  EXPECT_TRUE(fails_at<FailingNew>(0, [&] { EXPECT_EQ(changed.Write(nullptr), 9); }));
  EXPECT_STREQ(listed.comment, "changed");
  EXPECT_EQ(listed.Write(moved.c_str()), 0);
  EXPECT_EQ(OwnDatabase::find(moved), &listed);
  EXPECT_EQ(OwnDatabase::find(path), nullptr);
  EXPECT_EQ(names_in(folder_), "a.dbc b.dbc ");
  OwnDatabase::DestroyDatabase(listed, false);
}

TEST_F(Save, OnAFullDiskLeavesTheOldFile) {
  const std::string path = folder_.write("a.dbc", kNodes), fresh = folder_.path("new.dbc");
  OwnDatabase database(path);
  database.SetComment(std::string(200000, 'c').c_str());
  ASSERT_EQ(OwnDatabase(database).Write(fresh.c_str()), 0);
  const std::string whole = content_of(fresh);
  std::filesystem::remove(fresh);
  const int64_t time = database.file_time;
  std::vector<std::size_t> sizes = {0, 1, 65535, 65536, 65537, 131072, whole.size() - 1};
  for (std::size_t size = 2; size < 500; ++size) sizes.push_back(size);
  for (const std::size_t size : sizes) {
    for (const std::string& file : {path, fresh}) {
      zelk_clear_error_text();
      {
        const FailingWrite failure(size);
        EXPECT_EQ(database.Write(file.c_str()), 9) << file << ", " << size;
      }
      EXPECT_EQ(zelk_get_error_text(),
                "database: could not write, " + file + ": No space left on device\n");
      EXPECT_EQ(database.IsPathEqual(path.c_str()), file == path) << file << ", " << size;
    }
    EXPECT_EQ(database.file_time, time) << size;
    EXPECT_EQ(names_in(folder_), "a.dbc ") << size;
    EXPECT_EQ(content_of(path), kNodes) << size;
  }
  const FailingWrite failure(whole.size());
  EXPECT_EQ(database.Write(path.c_str()), 0);
  EXPECT_FALSE(failure.has_failed());
  EXPECT_EQ(content_of(path), whole);
}

TEST_F(Save, ClearsWhatKilledProcessesLeft) {
  const std::string path = folder_.write("a.dbc", kNodes);
  const std::string kept = ".a.dbc.zelk-32 .a.dbc.zelk-x .b.dbc.zelk-0 a.dbc ";
  for (const char* name :
       {".a.dbc.zelk-0", ".a.dbc.zelk-31", ".a.dbc.zelk-x", ".b.dbc.zelk-0", ".a.dbc.zelk-32"}) {
    folder_.write(name, kNodes);
  }
  OwnDatabase database(path);
  EXPECT_EQ(database.Write(nullptr), 0);
  EXPECT_EQ(names_in(folder_), kept);
  const std::string long_name(130, 'n');
  EXPECT_EQ(database.Write(folder_.path(long_name).c_str()), 0);
  EXPECT_EQ(names_in(folder_), kept + long_name + " ");
}

// Each case is a moment in which a process was killed, or the power was lost, while a file with two
// names was written; the save that finds it comes to a full disk.
TEST_F(Save, EndsAWriteInPlace) {
  const std::string path = folder_.write("a.dbc", kNodes), copy = ".a.dbc.zelk-whole";
  const std::string whole = "BS_:\nBU_: C\n", front = "database: could not write, " + path + ": ";
  const std::string full = front + "No space left on device\n";
  const std::string ended = front + "an earlier write did not end, and was ended now\n" + full;
  const std::string changed = front + "it was changed after a write that did not end; " + copy +
                              " has what was to be written: keep one, and remove that\n";
  std::filesystem::create_hard_link(path, folder_.path("b.dbc"));
  OwnDatabase database(path);
  database.SetComment("saved");
  const struct {
    std::string_view name, content;
    int hour;  // of the content; the copy's is 1
    std::string_view content_after, told;
  } cases[] = {
      {"not yet begun", kNodes, 1, whole, ended},
      {"emptied", "", 2, whole, ended},
      {"in the middle", "BS_:\nBU", 2, whole, ended},
      {"behind a statement", "BS_:\n", 2, whole, ended},
      {"not all on the disk", {"BS_:\nBU_: \0\0", 12}, 2, whole, ended},
      {"only the copy to remove", whole, 2, whole, full},
      {"changed since", kNodes, 2, kNodes, changed},
      {"longer since", "BS_:\nBU_: C\n ", 2, "BS_:\nBU_: C\n ", changed},
  };
  for (const auto& c : cases) {
    folder_.write("a.dbc", c.content, c.hour);
    folder_.write(copy, whole, 1);
    EXPECT_STREQ(OwnDatabase(path).nodes->name, c.content_after == kNodes ? "A" : "C") << c.name;
    zelk_clear_error_text();
    {
      const FailingWrite failure(0);
      EXPECT_EQ(database.Write(nullptr), 9) << c.name;
    }
    EXPECT_EQ(zelk_get_error_text(), c.told) << c.name;
    EXPECT_EQ(content_of(folder_.path("b.dbc")), c.content_after) << c.name;
    EXPECT_EQ(names_in(folder_), (c.told == changed ? copy + " " : "") + "a.dbc b.dbc ") << c.name;
    std::filesystem::remove(folder_.path(copy));
  }
  EXPECT_EQ(database.Write(nullptr), 0);
  EXPECT_EQ(describe(OwnDatabase(folder_.path("b.dbc"))), describe(database));
  EXPECT_EQ(names_in(folder_), "a.dbc b.dbc ");
}

template <typename Failure>
std::size_t save_while_allocations_fail(const ZelkDatabase& source, const Folder& folder) {
  for (std::size_t n = 0;; ++n) {
    const std::string path = folder.write("a.dbc", kNodes);
    const std::string content = describe(source);
    const std::string names = names_in(folder);
    OwnDatabase database(source);
    zelk_clear_error_text();
    int result = -1;
    const bool has_failed = fails_at<Failure>(n, [&] { result = database.Write(path.c_str()); });
    EXPECT_EQ(describe(database), content) << n;
    if (!has_failed) {
      EXPECT_EQ(result, 0);
      return n;
    }
    if (result == 0) continue;
    EXPECT_EQ(result, 9) << n;
    EXPECT_STREQ(zelk_get_error_text(), "not enough memory\n") << n;
    EXPECT_EQ(names_in(folder), names) << n;
    EXPECT_EQ(content_of(path), kNodes) << n;
  }
}

TEST_F(Save, WithoutMemoryLeavesTheOldFile) {
  const OwnDatabase source(ZELK_SOURCE_DIR "/tests/writer/whole.dbc");
  ZelkDatabase& listed = OwnDatabase::open(folder_.write("listed.dbc", kNodes));
  EXPECT_GT(save_while_allocations_fail<FailingNew>(source, folder_), 5u);
  EXPECT_EQ(save_while_allocations_fail<FailingCalloc>(source, folder_), 1u) << "the path";
  OwnDatabase::DestroyDatabase(listed, false);
}

}  // namespace

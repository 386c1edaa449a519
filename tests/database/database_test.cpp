// The file of a database, clearing, and reading again.

#include <vector>

#include "database/own_database.hpp"
#include "support/files.hpp"
#include "support/paths.hpp"

namespace {

constexpr std::string_view kNodes = "BS_:\nBU_: A B\n";

// --- Identity ---

using Identity = DatabaseTest;

TEST_F(Identity, IsThatOfTheUnchangedFile) {
  const std::string path = folder_.write("a.dbc", kNodes), other = folder_.write("b.dbc", kNodes);
  const OwnDatabase one(path), same(path), different(other), none, none_either;
  EXPECT_TRUE(one == same && none == none);
  EXPECT_FALSE(one == different || one == none || none == one || none == none_either);
  for (const OwnDatabase* database : {&one, &none}) EXPECT_FALSE(database->IsPathEqual(nullptr));
  EXPECT_FALSE(none.IsPathEqual(path.c_str()));
  for (const char* name : {"b.dbc", "a.db", "", "missing.dbc"}) {
    EXPECT_FALSE(one.IsPathEqual(folder_.path(name).c_str())) << name;
  }
  const std::string capitals = folder_.path("A.DBC");
  EXPECT_EQ(one.IsPathEqual(capitals.c_str()), std::filesystem::exists(capitals));
  Folder::touch(path, 1);
  EXPECT_FALSE(one.IsPathEqual(path.c_str()));
  EXPECT_FALSE(one == same);
  EXPECT_TRUE(one == one);
  std::filesystem::remove(other);
  EXPECT_FALSE(different.IsPathEqual(other.c_str()));
}

// --- The content as a whole ---

using Content = DatabaseTest;

TEST_F(Content, IsClearedButForWhatBelongsToTheFile) {
  const std::string path = ZELK_SOURCE_DIR "/tests/data/ok_every_statement.dbc";
  OwnDatabase database(path);
  const int64_t time = database.file_time;
  database.ref_count = 3;
  database.RenameAttrDef(*database.GetAttrDef("Var"), "SystemNodeLongSymbol");
  EXPECT_NE(database.predefined.slots[2], nullptr);
  for (int twice = 0; twice < 2; ++twice) {
    database.Clear();
    EXPECT_EQ(database.predefined.slots[2], nullptr);
    EXPECT_EQ(database.path, path);
    EXPECT_EQ(database.file_time, time);
    EXPECT_EQ(database.ref_count, 3u);
  }
  database.SetUserData(nullptr);
  EXPECT_EQ(describe(database), "");
}

TEST_F(Content, IsReadAgain) {
  const std::string path = folder_.write("a.dbc", kNodes);
  OwnDatabase none, database(path);
  const int64_t time = database.file_time;
  EXPECT_EQ(none.ReopenDatabaseFile(), 2);
  struct Case {
    const char* name;
    std::string_view content;
    int expected;
    const char *model, *told;
    bool has_cut_names = false;
  };
  for (const Case& c : std::vector<Case>{
           {"cut", "BS_:\nBU_:\nVAL_TABLE_ abcdefghijklmnopqrstuvwxyz0123456 ;\n", 0,
            "table abcdefghijklmnopqrstuvwxyz012345\n", "", true},
           {"changed", "VERSION \"2\"\nBS_:\nBU_: C\n", 0, "version \"2\"\nnode C\n", ""},
           {"faulty", "BS_:\nBU_: D\nBO_ 1 M 8 D\n", 1, "node D\n", ", line 2, error: syntax\n"},
           {"well again", kNodes, 0, "node A\nnode B\n", ""}}) {
    folder_.write("a.dbc", c.content, 1);
    zelk_clear_error_text();
    database.filter.mode = 5;
    EXPECT_EQ(database.ReopenDatabaseFile(), c.expected) << c.name;
    EXPECT_EQ(describe(database), c.model) << c.name;
    EXPECT_STREQ(zelk_get_error_text(), c.told) << c.name;
    EXPECT_EQ(database.SymbolsShortenedOnRead(), c.has_cut_names) << c.name;
    database.symbols_shortened = c.has_cut_names ? 0 : 1;  // to be set anew by the next read
    EXPECT_EQ(database.file_time, time) << c.name;
    EXPECT_FALSE(database.IsPathEqual(path.c_str())) << c.name;
  }
  std::filesystem::remove(path);
  EXPECT_EQ(database.ReopenDatabaseFile(), 1);
  EXPECT_EQ(describe(database), "");
}

// A database that was read in part must not replace its file.
TEST_F(Content, IsNotSavedUnlessItIsWhole) {
  const std::string path = folder_.write("a.dbc", kNodes);
  struct Case {
    const char* name;
    void (*mend)(OwnDatabase& half, const OwnDatabase& whole);
    int expected;
  };
  for (const Case& c : std::vector<Case>{
           {"changed", [](auto&half, auto&) { half.SetComment("edited"); }, 9},
           {"assigned its own copy", [](auto&half, auto&) { half.assign(OwnDatabase(half)); }, 9},
           {"of a missing file",
            [](auto&half, auto&) {
              std::filesystem::remove(half.path);
              half.ReopenDatabaseFile();
            },
            9},
           {"cleared", [](auto&half, auto&) { half.Clear(); }, 0},
           {"assigned to", [](auto&half, auto&whole) { half.assign(whole); }, 0},
           {"read",
            [](auto&half, auto&) {
              std::ofstream(half.path) << kNodes;
              half.ReopenDatabaseFile();
            },
            0}}) {
    folder_.write("a.dbc", kNodes);
    OwnDatabase database(path), whole(path);
    folder_.write("a.dbc", "BS_:\nBU_: D\nBO_ 1 M 8 D\n");
    EXPECT_EQ(database.ReopenDatabaseFile(), 1) << c.name;
    c.mend(database, whole);
    zelk_clear_error_text();
    const std::string before = bytes_of(path);
    EXPECT_EQ(database.Write(nullptr), c.expected) << c.name;
    if (c.expected == 0) continue;
    EXPECT_STREQ(zelk_get_error_text(),
                 "database: could not write, only a part of it has been read or copied\n");
    EXPECT_EQ(OwnDatabase(database).Write(folder_.path("b.dbc").c_str()), 9) << c.name;
    EXPECT_EQ(bytes_of(path), before) << c.name;
  }
}

}  // namespace

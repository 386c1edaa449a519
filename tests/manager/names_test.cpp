#include "manager/manager_test.hpp"
#include "support/building.hpp"

namespace {

using Names = ManagerTest;

TEST_F(Names, AreComparedByAddress) {
  const std::string path = folder.write("a.dbc", kDatabase);
  Manager manager, other;
  const char* const own = open(manager, path);
  const char* const foreign = open(other, path);
  ASSERT_TRUE(manager.LockDatabase(own, nullptr));
  const auto is_unknown = [&](auto result) {
    const bool is_told = !result && manager.Status() == 2;
    return is_told && manager.IsDatabaseName(own) && manager.Status() == 0;
  };
  const std::string same_text = "a";
  const char* const nothing = nullptr;
  for (const char* const db : {same_text.c_str(), foreign, nothing}) {
    char buffer[] = "#";
    EXPECT_TRUE(is_unknown(manager.IsDatabaseName(db)));
    EXPECT_TRUE(is_unknown(manager.GetDatabase(db)));
    EXPECT_TRUE(is_unknown(manager.GetPriority(db)));
    EXPECT_TRUE(is_unknown(manager.AssignDatabaseInfo(&manager, db)));
    EXPECT_TRUE(is_unknown(manager.GetSelectionPattern(db).key));
    EXPECT_TRUE(is_unknown(manager.AssignSelectionPattern({1, 1}, db)));
    EXPECT_TRUE(is_unknown(manager.GetDatabaseInfo(db)));
    EXPECT_TRUE(is_unknown(manager.SymbolsShortenedOnRead(db)));
    EXPECT_TRUE(is_unknown(manager.GetDefaultDatabaseName(db, buffer, sizeof buffer)));
    EXPECT_STREQ(buffer, "#");
    EXPECT_TRUE(is_unknown(manager.LockDatabase(db, "reason")));
    EXPECT_EQ(manager.SetDatabaseName(db, nullptr, "free"), 1);
    if (!db) continue;
    EXPECT_EQ(manager.ReopenDatabase(db), 1);
    manager.UnlockDatabase(db);
    manager.CloseDatabase(db, false);
  }
  EXPECT_EQ(manager.DatabaseCount(), 1U);
  EXPECT_EQ(locks_alive(), 1);
}

TEST_F(Names, CanBeChanged) {
  Manager manager;
  const char* name = open(manager, folder.write("a.dbc", kDatabase));
  open(manager, folder.write("b.dbc", kDatabase));
  const struct {
    const char* new_name;
    int expected;
    const char* name;
  } cases[] = {{"1x", 7, "a"}, {nullptr, 7, "a"}, {"b", 3, "a"},
               {"a", 0, "a"},  {"B", 0, "B"},     {"A1", 0, "A1"}};
  for (const auto& c : cases) {
    const char* const before = name;
    const char* received = "untouched";
    EXPECT_EQ(manager.SetDatabaseName(name, &received, c.new_name), c.expected);
    EXPECT_STREQ(received, c.expected == 0 ? c.name : "untouched");
    name = manager.GetUniqueDatabaseName(c.name);
    EXPECT_EQ(name == before, c.name == std::string("a")) << "a handle";
    EXPECT_STREQ(manager.GetDatabasePath(c.name), folder.path("a.dbc").c_str());
    EXPECT_EQ(manager.Status(), 0U);
  }
  for (const char* unknown : {"a", "a1", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(manager.GetUniqueDatabaseName(unknown), nullptr);
    EXPECT_EQ(manager.GetDatabasePath(unknown), nullptr);
    EXPECT_EQ(manager.Status(), 2U);
  }
}

// A private member can be named in an explicit instantiation.
using FindBySelection = const char* (ZelkManager::*)(const ZelkSelection&);
FindBySelection find_by_selection();
template <FindBySelection kMember>
struct Private {
  friend FindBySelection find_by_selection() { return kMember; }
};
template struct Private<&ZelkManager::GetDbNameBySelectionPattern>;

TEST_F(Names, OfSelections) {
  constexpr std::uint32_t kAnyKey = 0xFFFFFFFF;
  constexpr std::uint16_t kAny = 0xFFFF;
  const struct {
    ZelkSelectionPattern patterns[3];
    const char* expected;  ///< for the key 7 and the sub key 1
    unsigned status;
  } cases[] = {{{{kAnyKey, kAny}, {7, 1}, {7, 1}}, "b", 0},
               {{{7, kAny}, {7, kAny}, {kAnyKey, kAny}}, "b", 2},
               {{{kAnyKey, kAny}, {kAnyKey, kAny}, {7, 2}}, "b", 2},
               {{{7, 2}, {8, 1}, {8, kAny}}, nullptr, 2}};
  Manager manager;
  for (const char* file : {"a", "b", "c"}) open(manager, folder.write(file, kDatabase));
  for (const auto& c : cases) {
    const ZelkSelectionPattern* pattern = c.patterns;
    for (const auto* node : manager.GetDatabaseNameIterator()) {
      manager.AssignSelectionPattern(*pattern++, node->name);
    }
    EXPECT_STREQ((manager.*find_by_selection())({7, 1}), c.expected) << &c - cases;
    EXPECT_EQ(manager.Status(), c.status) << &c - cases;
  }
}

TEST_F(Names, OfFiles) {
  const std::string a = folder.write("1-My Net.dbc", "BS_:\nBU_: Old\n");
  const std::string faulty = folder.write("faulty.dbc", kFaulty);
  Manager manager;
  const zelk::OwnedText default_name(const_cast<char*>(manager.GetDatabaseName(a.c_str())));
  EXPECT_STREQ(default_name.get(), "__MyNet");
  EXPECT_EQ(manager.Status(), 0U);
  EXPECT_EQ(manager.DatabaseCount(), 0U);
  folder.write("1-My Net.dbc", "BS_:\nBU_: New\n");
  const char* const name = open(manager, a, "wanted");
  EXPECT_STREQ(manager.GetDatabase(name)->nodes->name, "Old") << "it was in the cache";
  EXPECT_EQ(manager.GetDatabaseName(a.c_str()), name);
  for (const char* const path :
       {"missing.dbc", faulty.c_str(), static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(manager.GetDatabaseName(path), nullptr);
    EXPECT_EQ(manager.Status(), 2U);
  }
  EXPECT_EQ(databases_alive(), 1);
}

TEST_F(Names, GoIntoBuffers) {
  Manager manager;
  const char* const name = open(manager, folder.write("motor.dbc", kDatabase), "wanted");
  const struct {
    std::size_t size;
    bool is_whole;
    const char* text;  ///< in a buffer of "########"
  } cases[] = {{0, false, "########"}, {1, false, ""}, {5, false, "moto"}, {6, true, "motor"}};
  EXPECT_FALSE(manager.GetDefaultDatabaseName(name, nullptr, 10));
  for (const auto& c : cases) {
    char buffer[] = "########";
    EXPECT_EQ(manager.GetDefaultDatabaseName(name, buffer, c.size), c.is_whole) << c.size;
    EXPECT_STREQ(buffer, c.text) << c.size;
    EXPECT_EQ(buffer[c.size], '#') << c.size;
  }
}

TEST_F(Names, TellOfExtendedMultiplexing) {
  const struct {
    const char* what;
    int expected;
    void (*edit)(sigblk& s, sigblk& t, sigblk& u);
  } cases[] = {
      {"plain", 0,
       [](auto& s, auto& t, auto& u) {
         s.flags |= 4;
         t.mux_signal = u.mux_signal = &s;
         add_range(&t, 1, 1);
         add_range(&u, 2, 2);
       }},
      {"multiplexed multiplexor", 1,
       [](auto& s, auto& t, auto&) { t.flags |= 4, t.mux_signal = &s; }},
      {"two multiplexors", 1,
       [](auto& s, auto& t, auto& u) { t.mux_signal = &s, s.mux_signal = &u; }},
      {"a wide range", 1, [](auto&, auto&, auto& u) { add_range(&u, 1, 2); }},
      {"the same range twice", 0,
       [](auto&, auto&, auto& u) { add_range(&u, 1, 1), add_range(&u, 1, 1); }},
      {"further ranges", 1,
       [](auto&, auto&, auto& u) { add_range(&u, 1, 1), add_range(&u, 3, 3); }},
  };
  Manager manager;
  const char* const name =
      open(manager, folder.write("a.dbc",
                                 "BS_:\nBU_: A\nBO_ 1 Empty: 8 A\nBO_ 2 M: 8 A\n"
                                 "SG_ S : 0|8 (1,0) [0|0] \"\" A\nSG_ T : 0|8 (1,0) [0|0] \"\" A\n"
                                 "SG_ U : 0|8 (1,0) [0|0] \"\" A\n"));
  for (const auto& c : cases) {
    ASSERT_EQ(manager.ReopenDatabase(name), 0);
    sigblk* const s = manager.GetDatabase(name)->messages->next->signals;
    c.edit(*s, *s->next, *s->next->next);
    EXPECT_EQ(manager.IsNewFeatureUsed(1, name), c.expected) << c.what;
  }
  EXPECT_EQ(manager.IsNewFeatureUsed(2, name), -1);
}

}  // namespace

// Lookups by the index of a database give what walks over its lists give, and the index is not used
// while a host can change the lists.

#include <functional>
#include <random>
#include <utility>
#include <vector>

#include "database/own_database.hpp"
#include "manager/manager_test.hpp"
#include "zelk/query.h"
#include "zelk/write_manager.hpp"

namespace {

constexpr const char* kAll = nullptr;

constexpr char kPairs[] =
    "BS_:\nBU_: A B\nVAL_TABLE_ A;\nVAL_TABLE_ B;\nBO_ 1 A: 8 Ostrel__XXX\n\n"
    "BO_ 2147483904 B: 8 Ostrel__XXX\n\nEV_ A: 0 [0|0] \"\" 0 0 DUMMY_NODE_OSTREL0 Ostrel__XXX;\n"
    "EV_ B: 0 [0|0] \"\" 0 0 DUMMY_NODE_OSTREL0 Ostrel__XXX;\n"
    "SGTYPE_ A : 8@0- (1,0) [0|0] \"\" 0 A;\nSGTYPE_ B : 8@0- (1,0) [0|0] \"\" 0 A;\n"
    "BA_DEF_ \"A\" INT 0 0;\nBA_DEF_ \"B\" INT 0 0;\n";

/// Whether a lookup finds a record that no walk can reach.
template <typename Record, typename Lookup>
bool finds_unlinked(const Record* first, Lookup lookup) {
  auto*& link = const_cast<Record*>(first)->next;
  auto* const second = std::exchange(link, nullptr);
  const bool is_found = second && lookup() == second;
  link = second;
  return is_found;
}

/// Of the lookups of each kind.
std::vector<bool> finds_all_unlinked(ZelkManager& m, const char* db) {
  const msgblk* const messages = *m.GetMessageIterator(db);
  return {finds_unlinked(*m.GetNodeIterator(db), [&] { return m.GetNode("B", db); }),
          finds_unlinked(messages, [&] { return m.GetMessage("B", db); }),
          finds_unlinked(messages, [&] { return m.GetMessage(0x80000100UL, db); }),
          finds_unlinked(messages, [&] { return m.GetJ1939Message(0x80000100, 0, db); }),
          finds_unlinked(*m.GetEnvvarIterator(db), [&] { return m.GetEnvvar("B", db); }),
          finds_unlinked(*m.GetSignalTypeIterator(db), [&] { return m.GetSignalType("B", db); }),
          finds_unlinked(*m.GetValueTableIterator(db), [&] { return m.GetValueTable("B", db); }),
          finds_unlinked(*m.GetAttrDefinitionIterator(db),
                         [&] { return m.GetAttrDefinition("B", db); })};
}

using Index = ManagerTest;

TEST_F(Index, ServesUntilARecordIsHandedOut) {
  const std::vector<bool> all(8, true), none(8, false);
  Manager m;
  ZelkWriteManager editor(static_cast<void*>(nullptr));
  const std::string file = folder.write("a.dbc", kPairs);
  const char* const db = open(m, file);
  const char* const edited = open(editor, file);
  // Before anything has made an index, cut lists would be indexed as they are.
  EXPECT_TRUE(m.GetNode("A", db));
  EXPECT_EQ(finds_all_unlinked(m, db), all);
  EXPECT_EQ(finds_all_unlinked(editor, edited), all) << "by the lookups of the other class";

  char buffer[9];
  m.GetDefaultDatabaseName(db, buffer, sizeof buffer);
  m.IsAttributeDefined("A", ZELK_OBJ_NETWORK, db);
  m.GetAttrValue(*m.GetNode("A", db), "A");
  m.GetAttrDefinition(*m.GetNode("A", db), "A");
  editor.LockDatabase(edited, nullptr);
  editor.UnlockDatabase(edited);
  EXPECT_EQ(editor.MessageCount(edited), 2U);
  EXPECT_FALSE(editor.GetNode("none", edited) || editor.GetMessage(7UL, kAll));
  EXPECT_EQ(finds_all_unlinked(m, db), all) << "none of these hands a record out";

  const auto named = [&] { return editor.ZelkManager::GetNode("A", edited); };
  using D = ZelkDatabase;
  const std::function<void(D&)> ways[] = {
      [&](D&) { m.GetDatabase(db); },
      [&](D&) { editor.GetNode("A", kAll); },
      [&](D&) { editor.GetAttrDefinition("A", edited); },
      [&](D&) { editor.GetAttrDefinition(*named(), "A"); },
      [&](D&) { editor.GetMessageIterator(edited); },
      [&](D&) { editor.CreateBitTiming(edited, 0); },
      [&](D&) { editor.SetName(*const_cast<symblk*>(named()), "C"); },
      [&](D&) { editor.SetAttrValue(edited, "A", {}); },
      [](D& d) { d.GetNode("A"); },
      [](D& d) { d.CreateNode(9); },
      [](D& d) { d.GetMessage("A"); },
      [](D& d) { d.GetJ1939Message(1, 0); },
      [](D& d) { d.GetEnvvar("A"); },
      [](D& d) { d.GetValueTable("A"); },
      [](D& d) { d.GetSignalType("A"); },
      [](D& d) { d.GetAttrDef("A"); },
      [](D& d) { d.DeleteAttrDef(*d.attr_defs->next); },
      [](D& d) { d.Walk<msgblk>(nullptr); }};
  for (const auto& way : ways) {
    EXPECT_EQ(m.ReopenDatabase(db), 0);
    EXPECT_TRUE(m.GetNode("B", db));
    EXPECT_EQ(finds_all_unlinked(m, db), all) << "reading again allows an index again";
    way(*OwnDatabase::find(file));
    EXPECT_EQ(finds_all_unlinked(m, db), none) << &way - ways;
  }
}

// --- Random edits ---

/// Names that agree in more characters than records hold inline, among them.
const std::vector<std::string> kNames = {
    "",  "a", "A", "ab", std::string(31, 'x'),      std::string(32, 'x'), std::string(33, 'x'),
    "b", "c", "d", "e",  std::string(32, 'x') + "y"};

/// Identifiers of frames and stored group numbers that compete for each other.
std::vector<std::uint32_t> identifiers() {
  std::vector<std::uint32_t> ids = {0, 1, 0x80000001, 0xFFFFFFFF};
  for (const std::uint32_t group : {0xEA00U, 0xEF00U, 0xFEF1U, 0xFF10U}) {
    for (const std::uint32_t destination : {0U, 0x0BU, 0xFEU}) {
      for (const std::uint32_t source : {0x21U, 0xFEU}) {
        const std::uint32_t number = group | (group < 0xF000 ? destination : 0);
        ids.push_back(0x98000000 | number << 8 | source);
        ids.push_back(0xB8000000 | number << 8 | source);  // of the same priority
        ids.push_back(0x0C000000 | number << 8 | source);
        ids.push_back(ZELK_ID_EXTENDED | source << 21 | number);
        ids.push_back(ZELK_ID_EXTENDED | number);
      }
    }
  }
  return ids;
}

const std::vector<std::uint32_t> kIds = identifiers();

/// Makes every lookup.
void expect_answers_of_the_walk(const ZelkDatabase& d) {
  for (const std::string& name : kNames) {
    const char* const n = name.c_str();
    EXPECT_EQ(d.GetNode(n), zelk_get_symbol_name(d.nodes, n)) << n;
    EXPECT_EQ(d.GetMessage(n), zelk_get_message_name(d.messages, n)) << n;
    EXPECT_EQ(d.GetEnvvar(n), zelk_get_evblk_name(d.env_vars, n)) << n;
    EXPECT_EQ(d.GetValueTable(n), zelk_get_valtable_name(d.value_tables, n)) << n;
    EXPECT_EQ(d.GetSignalType(n), zelk_get_sigtype_name(d.signal_types, n)) << n;
    EXPECT_EQ(d.GetAttrDef(n), zelk_get_attr_def_name(d.attr_defs, n)) << n;
  }
  for (const std::uint32_t id : kIds) {
    const msgblk* const stored = zelk_get_message(d.messages, id);
    EXPECT_EQ(d.GetMessage(static_cast<unsigned long>(id)), stored) << id;
    for (unsigned flags = 0; flags < 4; ++flags) {
      const auto all = ZelkDatabase::J1939Flags(flags, d.HasJ1939GroupNumbers());
      const bool is_frame = (id & ZELK_ID_EXTENDED) != 0;
      EXPECT_EQ(d.GetJ1939Message(id, flags),
                is_frame ? zelk_get_j1939_message(d.messages, d.attr_defs, id, all) : stored)
          << id << ", " << flags;
    }
  }
}

using EditedIndex = DatabaseTest;

TEST_F(EditedIndex, AnswersAsTheWalk) {
  const std::string start =
      folder_.write("a.dbc",
                    "BS_:\nBU_:\nBA_DEF_ \"J1939PGN\" INT 0 1;\n"
                    "BA_DEF_ BO_ \"VFrameFormat\" ENUM \"other\",\"J1939PG\";\n"
                    "BA_DEF_DEF_ \"VFrameFormat\" \"other\";\nBA_ \"J1939PGN\" 1;\n");
  using D = ZelkDatabase;
  std::mt19937 random;
  const auto below = [&random](std::size_t n) { return static_cast<unsigned>(random() % n); };
  const auto create = [&](D& to, unsigned count, auto create_at) {
    for (; count > 0; --count) {
      auto* const record = (to.*create_at)(below(9));
      set(record->name, kNames[below(kNames.size())]);
      if constexpr (std::is_same_v<decltype(record), msgblk* const>) {
        record->id = kIds[below(kIds.size())];
      }
    }
  };
  OwnDatabase d(start);
  for (int round = 0; round < 200; ++round) {
    OwnDatabase made(start);
    made.attr_values->value.number = round % 2;
    set(made.attr_defs->next->default_value.text, round / 2 % 2 == 0 ? "J1939PG" : "other");
    create(made, 6, &D::CreateNode);
    create(made, 6, &D::CreateEnvvar);
    create(made, 6, &D::CreateValueTable);
    create(made, 6, &D::CreateSignalType);
    create(made, below(60), &D::CreateMessage);
    create(made, 6, &D::CreateAttrDef);
    d.assign(made);
    SCOPED_TRACE(round);
    expect_answers_of_the_walk(d);
    create(d, 1, &D::CreateMessage);
    expect_answers_of_the_walk(d);
  }
}

}  // namespace

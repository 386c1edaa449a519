// Lookups by the index of a database answer as walks over its lists do, and cease when somebody
// can change the lists.

#include <functional>
#include <random>
#include <utility>
#include <vector>

#include "manager/database_lookup.hpp"
#include "manager/manager_test.hpp"
#include "manager/own_database.hpp"
#include "zelk/iterator.hpp"

namespace {

using zelk::DatabaseLookup;

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
  return {finds_unlinked(*m.GetNodeIterator(db), [&] { return m.GetNode("B", db); }),
          finds_unlinked(*m.GetMessageIterator(db), [&] { return m.GetMessage("B", db); }),
          finds_unlinked(*m.GetMessageIterator(db), [&] { return m.GetMessage(0x80000100UL, db); }),
          finds_unlinked(*m.GetMessageIterator(db),
                         [&] { return m.GetJ1939Message(0x80000100, 0, db); }),
          finds_unlinked(*m.GetEnvvarIterator(db), [&] { return m.GetEnvvar("B", db); }),
          finds_unlinked(*m.GetSignalTypeIterator(db), [&] { return m.GetSignalType("B", db); }),
          finds_unlinked(*m.GetValueTableIterator(db), [&] { return m.GetValueTable("B", db); }),
          finds_unlinked(*m.GetAttrDefinitionIterator(db),
                         [&] { return m.GetAttrDefinition("B", db); })};
}

using Index = ManagerTest;

TEST_F(Index, ServesWhileNobodyCanChangeTheDatabase) {
  const std::vector<bool> all(8, true), none(8, false);
  Manager m, other;
  const std::string file = folder.write("a.dbc", kPairs);
  const char* const db = open(m, file);
  const char* const shared = open(other, file);
  // Before anything has made an index, cut lists would be indexed as they are.
  EXPECT_TRUE(m.GetNode("A", db));
  EXPECT_EQ(finds_all_unlinked(m, db), all);

  char buffer[9];
  m.GetDefaultDatabaseName(db, buffer, sizeof buffer);
  m.GetDatabaseName(file.c_str());
  m.GetUniqueDatabaseName("a");
  m.IsNewFeatureUsed(1, db);
  m.SymbolsShortenedOnRead(db);
  m.IsAttributeDefined("A", ZELK_OBJ_NETWORK, db);
  m.GetAttrValue(*m.GetNode("A", db), "A");
  m.LockDatabase(db, nullptr);
  m.UnlockDatabase(db);
  EXPECT_EQ(m.MessageCount(db), 2U);
  EXPECT_EQ(finds_all_unlinked(m, db), all) << "none of these gives anything away";

  EXPECT_TRUE(other.GetDatabase(shared));
  EXPECT_EQ(finds_all_unlinked(m, db), none) << "another manager can change it";
  EXPECT_EQ(m.ReopenDatabase(db), 0);
  EXPECT_TRUE(m.GetNode("B", db));
  EXPECT_EQ(finds_all_unlinked(m, db), none) << "for good";
}

TEST_F(Index, CeasesWithEveryWayToARecord) {
  using D = ZelkDatabase;
  const std::function<void(D&)> ways[] = {
      [](D& d) { d.GetNode("A"); },         [](D& d) { d.CreateNode(9); },
      [](D& d) { d.GetMessage("A"); },      [](D& d) { d.CreateMessage(9); },
      [](D& d) { d.GetMessage(1UL); },      [](D& d) { d.GetJ1939Message(1, 0); },
      [](D& d) { d.GetEnvvar("A"); },       [](D& d) { d.CreateEnvvar(9); },
      [](D& d) { d.GetValueTable("A"); },   [](D& d) { d.CreateValueTable(9); },
      [](D& d) { d.GetSignalType("A"); },   [](D& d) { d.CreateSignalType(9); },
      [](D& d) { d.GetAttrDef("A"); },      [](D& d) { d.CreateAttrDef(9); },
      [](D& d) { d.Walk<msgblk>(nullptr); }};
  const std::string file = folder.write("a.dbc", kPairs);
  for (const auto& way : ways) {
    OwnDatabase d(file);
    const auto lookup = [&d] { return DatabaseLookup::named<symblk>(d, "B"); };
    EXPECT_TRUE(lookup() && d.Walk<const symblk>(nullptr));
    EXPECT_TRUE(finds_unlinked(d.nodes, lookup));
    way(d);
    EXPECT_FALSE(finds_unlinked(d.nodes, lookup)) << &way - ways;
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
        ids.push_back(0x0C000000 | number << 8 | source);
        ids.push_back(ZELK_ID_EXTENDED | source << 21 | number);
        ids.push_back(ZELK_ID_EXTENDED | number);
      }
    }
  }
  return ids;
}

const std::vector<std::uint32_t> kIds = identifiers();

/// Answers to every question there is, by the index.
std::vector<const void*> asked(const ZelkDatabase& d) {
  std::vector<const void*> answers;
  for (const std::string& name : kNames) {
    const char* const n = name.c_str();
    answers.insert(answers.end(),
                   {DatabaseLookup::named<symblk>(d, n), DatabaseLookup::named<msgblk>(d, n),
                    DatabaseLookup::named<env_var_blk>(d, n), DatabaseLookup::named<valtable>(d, n),
                    DatabaseLookup::named<sigtype>(d, n), DatabaseLookup::named<attr_def>(d, n)});
  }
  for (const std::uint32_t id : kIds) {
    answers.push_back(DatabaseLookup::message(d, id));
    for (std::uint32_t flags = 0; flags < 4; ++flags) {
      answers.push_back(DatabaseLookup::j1939_message(d, id, flags));
    }
  }
  return answers;
}

/// The same by walks: the database ceases to use an index.
std::vector<const void*> walked(const ZelkDatabase& d) {
  std::vector<const void*> answers;
  for (const std::string& name : kNames) {
    const char* const n = name.c_str();
    answers.insert(answers.end(), {d.GetNode(n), d.GetMessage(n), d.GetEnvvar(n),
                                   d.GetValueTable(n), d.GetSignalType(n), d.GetAttrDef(n)});
  }
  for (const std::uint32_t id : kIds) {
    answers.push_back(d.GetMessage(static_cast<unsigned long>(id)));
    for (unsigned flags = 0; flags < 4; ++flags) answers.push_back(d.GetJ1939Message(id, flags));
  }
  return answers;
}

class RandomEdits {
 public:
  /// Makes one record of a random kind, or takes one away or renames it.
  void edit(OwnDatabase& d, bool creates) {
    using D = ZelkDatabase;
    switch (below(6)) {
      case 0:
        return edit(d, creates, d.nodes, &D::CreateNode, &D::DeleteNode);
      case 1:
        return edit(d, creates, d.env_vars, &D::CreateEnvvar, &D::DeleteEnvvar);
      case 2:
        return edit(d, creates, d.value_tables, &D::CreateValueTable, &D::DeleteValueTable);
      case 3:
        return edit(d, creates, d.signal_types, &D::CreateSignalType, &D::DeleteSignalType);
      case 4:
        return edit(d, creates, d.messages, &D::CreateMessage, &D::DeleteMessage);
      default:
        return edit_definitions(d, creates);
    }
  }

 private:
  // The first two definitions stay, because there are values of them.
  void edit_definitions(OwnDatabase& d, bool creates) {
    attr_def* const third = d.attr_defs->next->next;
    if (creates) {
      d.RenameAttrDef(*d.CreateAttrDef(2 + below(5)), name());
    } else if (third && below(2) == 0) {
      d.RenameAttrDef(*third, name());
    } else if (third) {
      d.DeleteAttrDef(*third);
    }
  }

  template <typename Record>
  void edit(ZelkDatabase& d, bool creates, Record*& list, Record* (ZelkDatabase::*create)(unsigned),
            void (ZelkDatabase::*remove)(Record&)) {
    if (creates) {
      Record* const record = (d.*create)(below(9));
      set(record->name, name());
      if constexpr (std::is_same_v<Record, msgblk>) record->id = kIds[below(kIds.size())];
      return;
    }
    Record* record = list;
    for (unsigned i = below(6); i > 0 && record && record->next; --i) record = record->next;
    if (!record) return;
    if constexpr (std::is_pointer_v<decltype(record->name)>) zelk_mfree(record->name);
    (d.*remove)(*record);
  }

  unsigned below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }
  const char* name() { return kNames[below(kNames.size())].c_str(); }

  std::mt19937 random_;
};

using EditedIndex = DatabaseTest;

TEST_F(EditedIndex, AnswersAsTheWalk) {
  const std::string start =
      folder_.write("a.dbc",
                    "BS_:\nBU_:\nBA_DEF_ \"J1939PGN\" INT 0 1;\n"
                    "BA_DEF_ BO_ \"VFrameFormat\" ENUM \"other\",\"J1939PG\";\n"
                    "BA_DEF_DEF_ \"VFrameFormat\" \"other\";\nBA_ \"J1939PGN\" 1;\n");
  RandomEdits random;
  OwnDatabase edited(start);
  for (int round = 0; round < 400; ++round) {
    OwnDatabase d(edited);
    asked(d);
    for (int edits = 0; edits < 6; ++edits) random.edit(edited, round % 2 != 0);
    edited.attr_values->value.number = round / 4 % 2;
    set(edited.attr_defs->next->default_value.text, round / 2 % 2 == 0 ? "J1939PG" : "other");
    if (round % 4 == 0) {
      d.assign(edited);
    } else {
      random.edit(d, false);
    }
    const std::vector<const void*> answers = asked(d);
    ASSERT_EQ(answers, walked(d)) << round;
  }
}

TEST_F(EditedIndex, KnowsLongNames) {
  OwnDatabase d(folder_.write("a.dbc",
                              "BS_:\nBU_: A B\nBA_DEF_ BU_ \"Long\" STRING ;\n"
                              "BA_ \"Long\" BU_ A \"LongNameOfA\";\n"));
  attr_def& definition = *d.attr_defs;
  const symblk* const node = DatabaseLookup::named<symblk>(d, "A");
  EXPECT_TRUE(node && DatabaseLookup::named<attr_def>(d, "Long"));
  set(definition.name, "SystemNodeLongSymbol");
  d.CheckAndInsertPredefinedAttrs(definition);
  EXPECT_EQ(DatabaseLookup::named<symblk>(d, "LongNameOfA"), node);
  EXPECT_EQ(DatabaseLookup::named<symblk>(d, "A"), nullptr);
  EXPECT_EQ(DatabaseLookup::named<attr_def>(d, "Long"), nullptr);
}

}  // namespace

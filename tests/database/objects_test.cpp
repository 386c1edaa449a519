#include <algorithm>
#include <random>
#include <vector>

#include "database/own_database.hpp"
#include "model/memory.hpp"
#include "support/failing.hpp"

namespace {

using Objects = DatabaseTest;

/// Creates and deletes records anywhere, now and then by the functions of the C interface, and does
/// the same in a vector.
template <typename Record>
void expect_creation(const char* name, Record* ZelkDatabase::*list,
                     Record* (ZelkDatabase::*create)(unsigned),
                     void (ZelkDatabase::*remove)(Record&), void (*c_remove)(Record**, Record*)) {
  OwnDatabase database;
  std::vector<Record*> expected;
  std::mt19937 random;
  const auto below = [&random](std::size_t limit) {
    return static_cast<unsigned>(random() % limit);
  };
  for (int step = 0; step < 600; ++step) {
    const unsigned at = below(expected.size() + 3);
    const bool is_inside = at < expected.size();
    const auto place =
        expected.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(at, expected.size()));
    if (step == 300) {
      database.Clear();
      expected.clear();
    } else if (is_inside && below(3) == 0) {
      if (step % 2 == 0) (database.*remove)(**place);
      if (step % 2 != 0) c_remove(&(database.*list), *place);
      expected.erase(place);
    } else if (below(5) == 0) {
      expected.push_back(append(database.*list, zelk::create_record<Record>()));
    } else {
      const unsigned index = is_inside || below(2) == 0 ? at : 0xFFFFFFFF;
      expected.insert(place, (database.*create)(index));
    }
    ASSERT_EQ(records_of(database.*list), expected) << name << ", " << step;
  }
  const FailingCalloc failure(0);
  EXPECT_EQ((database.*create)(0), nullptr) << name;
  EXPECT_EQ(records_of(database.*list), expected) << name << ", none made without memory";
}

TEST_F(Objects, AreCreatedAndDeletedAnywhere) {
  using D = ZelkDatabase;
  OwnDatabase d;
  for (const uint32_t id : {7u, 0xFFFFFFFFu, 9u}) d.CreateEnvvar(0)->id = id;
  EXPECT_EQ(d.GetMaxEnvvarHandle(), 0xFFFFFFFFu);
  expect_creation("node", &D::nodes, &D::CreateNode, &D::DeleteNode, can_delete_symbol);
  expect_creation("message", &D::messages, &D::CreateMessage, &D::DeleteMessage, can_delete_msg);
  expect_creation("variable", &D::env_vars, &D::CreateEnvvar, &D::DeleteEnvvar, can_delete_evblk);
  expect_creation("timing", &D::bit_timings, &D::CreateBitTiming, &D::DeleteBitTiming,
                  can_delete_btl);
  expect_creation("table", &D::value_tables, &D::CreateValueTable, &D::DeleteValueTable,
                  can_delete_valtable);
  expect_creation("type", &D::signal_types, &D::CreateSignalType, &D::DeleteSignalType,
                  can_delete_sigtype);
  expect_creation("category", &D::categories, &D::CreateCategory, &D::DeleteCategory,
                  can_delete_category);
  expect_creation("definition", &D::attr_defs, &D::CreateAttrDef, &D::DeleteAttrDef,
                  can_delete_attr_def);
}

// The frame 0x98FEF121 has the group number 0xFEF1. The message "Id" stores identifiers, "Group" a
// group number. A message of any source is found by its identifier only with the frame format.
TEST_F(Objects, OfJ1939FramesAsTheNetworkAttributesSay) {
  const std::string messages =
      "BS_:\nBU_:\nBO_ 2566844705 Id: 8 Ostrel__XXX\n\nBO_ 2147548913 Group: 8 Ostrel__XXX\n\n"
      "BO_ 2566844926 Any: 8 Ostrel__XXX\n\n"
      "BA_DEF_ \"J1939PGN\" INT -1 1;\nBA_DEF_ \"IsNMEA\" ENUM \"no\",\"yes\";\n"
      "BA_DEF_ BO_ \"VFrameFormat\" STRING ;\n";
  const std::string on = "BA_ \"J1939PGN\" 1;\n", off = "BA_ \"J1939PGN\" 0;\n";
  const std::string default_on = "BA_DEF_DEF_ \"J1939PGN\" 1;\n", nmea = "BA_ \"IsNMEA\" 1;\n";
  const struct {
    std::string statements;
    unsigned long id, flags;
    const char* expected;
  } cases[] = {{"", 0x98FEF121, 0, "Id"},
               {on, 0x98FEF121, 0, "Group"},
               {default_on + off, 0x98FEF121, 0, "Group"},
               {off + nmea, 0x98FEF121, 0, "Group"},
               {"BA_DEF_DEF_ \"IsNMEA\" \"yes\";\n", 0x98FEF121, 0, "Id"},
               {on, 0x98FEF121, 2, "Id"},
               {"", 0x98FEF121, 1, "Group"},
               {on, 0x98FEF122, 0, "Group"},
               {"BA_DEF_DEF_ \"VFrameFormat\" \"J1939PG\";\n", 0x98FEF122, 0, "Any"}};
  for (const auto& c : cases) {
    const OwnDatabase d(folder_.write("a.dbc", messages + c.statements));
    const msgblk* const found = d.GetJ1939Message(c.id, c.flags);
    EXPECT_STREQ(found ? found->name : nullptr, c.expected) << c.statements << c.id << c.flags;
  }
}

}  // namespace

// A database's objects, the texts it has by itself, and the long names of its objects.

#include <algorithm>
#include <random>
#include <vector>

#include "database/own_database.hpp"
#include "model/memory.hpp"
#include "support/failing.hpp"

namespace {

using Objects = DatabaseTest;

/// Creates and deletes records anywhere, and now and then behind the database's back with the
/// functions of the C interface; a vector follows.
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
      Record** link = &(database.*list);
      while (*link) link = &(*link)->next;
      expected.push_back(*link = zelk::create_record<Record>());
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

// --- Texts ---

using Texts = DatabaseTest;

TEST_F(Texts, AreCopiedAndReplaced) {
  OwnDatabase d;
  d.SetComment("one");
  d.SetUserData("1");
  d.SetComment(d.comment + 1);
  d.SetUserData(d.user_data);
  EXPECT_EQ(describe(d), "version \"1\"\ncomment \"ne\"\n");
  d.SetComment(nullptr);
  d.SetUserData(nullptr);
  EXPECT_EQ(d.comment, nullptr);
  EXPECT_STREQ(d.user_data, "");
}

std::string default_name(const ZelkDatabase& database) {
  return zelk::OwnedText(database.GetDefaultName()).get();
}

TEST_F(Texts, DefaultNameIsThatOfTheAttributeOrTheFile) {
  const std::string text = "BA_DEF_ \"DBName\" STRING ;\n";
  const std::string with_default = text + "BA_DEF_DEF_ \"DBName\" \"De fault\";\n";
  const std::string of_item = "BA_DEF_ \"DBName\" ENUM \"a\";\nBA_ \"DBName\" 0;\n";
  const std::tuple<const char*, std::string, std::string> cases[] = {
      {"1-My Net.dbc", "", "__MyNet"},
      {"folder.d/Net.old.2.dbc", "", "Netold2"},
      {"C:\\a.b\\Net", "", "Net"},
      {".dbc", "", ""},
      {"\xC3\x84.dbc", "", "__"},
      {"7777777777777777777777777777777777777777a", "", std::string(32, '_')},
      {"value", with_default + "BA_ \"DBName\" \"1 My-Net\";\n", "__MyNet"},
      {"default", with_default, "Default"},
      {"empty_value", with_default + "BA_ \"DBName\" \"\";\n", ""},
      {"of_a_message", "BA_DEF_ BO_ \"DBName\" STRING ;\n", "of_a_message"},
      {"of_an_item", of_item, "of_an_item"}};
  for (const auto& [path, statements, expected] : cases) {
    OwnDatabase d(folder_.write("file.dbc", "BS_:\nBU_:\n" + statements));
    set(d.path, path);
    EXPECT_EQ(default_name(d), expected) << path;
    if (path != std::string_view("value")) continue;
    zelk_mfree(std::exchange(d.attr_values->value.text, nullptr));
    EXPECT_EQ(default_name(d), "Default") << "of a value without a text";
  }
  const OwnDatabase none;
  EXPECT_EQ(default_name(none), "");
  const FailingCalloc failure(0);
  EXPECT_EQ(none.GetDefaultName(), nullptr);
}

// --- Long names ---

using LongNames = DatabaseTest;

constexpr std::string_view kNamed =
    "BS_:\nBU_: A\nBO_ 1 M: 8 A\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" A\n\n"
    "EV_ V: 0 [0|0] \"\" 0 1 DUMMY_NODE_OSTREL0 A;\n"
    "BA_DEF_ BU_ \"NodeAlias\" STRING ;\nBA_DEF_ BO_ \"MessageAlias\" STRING ;\n"
    "BA_DEF_ SG_ \"SignalAlias\" STRING ;\nBA_DEF_ EV_ \"VariableAlias\" STRING ;\n"
    "BA_ \"NodeAlias\" BU_ A \"NewA\";\nBA_ \"MessageAlias\" BO_ 1 \"NewM\";\n"
    "BA_ \"SignalAlias\" SG_ 1 S \"NewS\";\nBA_ \"VariableAlias\" EV_ V \"NewV\";\n";

TEST_F(LongNames, FollowTheNameOfTheDefinition) {
  const struct {
    const char *alias, *name;
    int slot;
    const char* names;  // of node, message, signal and variable
  } cases[] = {{"SignalAlias", "SystemSignalLongSymbol", 0, "A M NewS V"},
               {"MessageAlias", "SystemMessageLongSymbol", 1, "A NewM S V"},
               {"NodeAlias", "SystemNodeLongSymbol", 2, "NewA M S V"},
               {"VariableAlias", "SystemEnvVarLongSymbol", 3, "A M S NewV"},
               {"NodeAlias", "SystemNodeLongSymbolOfSomeoneElse", -1, "A M S V"},
               {"NodeAlias", "systemnodelongsymbol", -1, "A M S V"}};
  for (const auto& c : cases) {
    OwnDatabase d(folder_.write("a.dbc", kNamed));
    attr_def& definition = *d.GetAttrDef(c.alias);
    const auto expect_slot = [&](int slot) {
      for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(d.predefined.slots[i], i == slot ? &definition : nullptr) << c.name << i;
      }
      const std::string names = std::string(d.nodes->name) + " " + d.messages->name + " " +
                                d.messages->signals->name + " " + d.env_vars->name;
      EXPECT_EQ(names, c.names) << c.name << slot;
    };
    d.RenameAttrDef(definition, c.name);
    EXPECT_EQ(definition.name, std::string(c.name).substr(0, 32));
    EXPECT_EQ(ZelkPredefinedAttributes::IsPredefinedAttribute(definition), c.slot >= 0) << c.name;
    expect_slot(c.slot);
    d.CheckAndRemovePredefinedAttrs(definition);
    expect_slot(-1);
    EXPECT_FALSE(d.predefined.Remove(definition)) << c.name;
    attr_def other = definition;
    other.value_type = ZELK_ATTR_ENUM;
    EXPECT_FALSE(ZelkPredefinedAttributes::IsPredefinedAttribute(other)) << "no text";
  }
}

TEST_F(LongNames, AreSuchAsAFileCanHold) {
  OwnDatabase d(folder_.write("a.dbc", kNamed));
  attr_def& definition = *d.GetAttrDef("NodeAlias");
  for (const char* refused : {"", "two words", "BO_", "a\nb", ZELK_NO_NODE}) {
    set(d.nodes->attrs->value.text, refused);
    zelk_clear_error_text();
    d.RenameAttrDef(definition, nullptr);
    EXPECT_STREQ(zelk_get_error_text(), "") << "null is no name";
    d.RenameAttrDef(definition, "SystemNodeLongSymbol");
    EXPECT_STREQ(d.nodes->name, "A") << refused;
    const std::string line = zelk_format_error(ZELK_ERR_FORMAT, 0, refused);
    EXPECT_EQ(zelk_get_error_text(), *refused ? line + "\n" : "") << refused;
  }
  zelk_mfree(std::exchange(d.nodes->attrs->value.text, nullptr));
  d.CheckAndInsertPredefinedAttrs(definition);
  EXPECT_STREQ(d.nodes->name, "A");
  set(d.nodes->attrs->value.text, std::string(200, 'n'));
  {
    const FailingCalloc failure(0);
    d.CheckAndInsertPredefinedAttrs(definition);
  }
  EXPECT_STREQ(d.nodes->name, "A") << "without memory";
  d.CheckAndInsertPredefinedAttrs(definition);
  EXPECT_EQ(d.nodes->name, std::string(200, 'n'));
}

}  // namespace

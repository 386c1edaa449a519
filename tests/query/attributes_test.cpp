// Effective attribute values, texts of enumerations, value descriptions, membership in filters.

#include <cstring>
#include <initializer_list>
#include <tuple>

#include "manager/manager_test.hpp"
#include "model/memory.hpp"
#include "support/failing.hpp"
#include "zelk/write_manager.hpp"

namespace {

constexpr const char* kAll = nullptr;
constexpr const char* kNoName = nullptr;

/// Of each kind a first object, with a value of its own kind's attribute (20 to 26), and a second
/// one without; the defaults are 10 to 16.
const std::string kObjects =
    "BS_:\nBU_: A B\nVAL_TABLE_ Tab;\nBO_ 1 M: 8 A\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" B,A\n"
    " SG_ T : 8|8@1+ (1,0) [0|0] \"\" Ostrel__XXX\n\nBO_ 2 N: 8 A\n\n"
    "EV_ V: 0 [0|0] \"\" 0 0 DUMMY_NODE_OSTREL0 Ostrel__XXX;\n"
    "EV_ W: 0 [0|0] \"\" 0 0 DUMMY_NODE_OSTREL0 Ostrel__XXX;\n"
    "SGTYPE_ Y : 8@1+ (1,0) [0|0] \"\" 0 Tab;\nSGTYPE_ Z : 8@1+ (1,0) [0|0] \"\" 0 Tab;\n"
    "BA_DEF_ \"Net\" INT 0 99;\nBA_DEF_ BU_ \"Nod\" INT 0 99;\nBA_DEF_ BO_ \"Msg\" INT 0 99;\n"
    "BA_DEF_ SG_ \"Sig\" INT 0 99;\nBA_DEF_ EV_ \"Var\" INT 0 99;\n"
    "BA_DEF_ \"Switch\" ENUM \"On\",\"Off\";\nBA_DEF_ BO_ \"Holes\" ENUM \"A\",\"\",\"B\",\"\";\n"
    "BA_DEF_ EV_ \"Two\" STRING ;\nBA_DEF_ BO_ \"Two\" INT 0 9;\nBA_DEF_ \"Two\" HEX 0 9;\n"
    "BA_DEF_ \"Text\" STRING ;\nBA_DEF_ SG_ \"Typ\" INT 0 99;\nBA_DEF_SGTYPE_ \"Typ\";\n"
    "BA_DEF_REL_ BU_SG_REL_ \"Rel\" INT 0 99;\nBA_DEF_REL_ BU_SG_REL_ \"Two\" FLOAT 0 9;\n"
    "BA_DEF_DEF_ \"Net\" 10;\nBA_DEF_DEF_ \"Nod\" 11;\nBA_DEF_DEF_ \"Msg\" 12;\n"
    "BA_DEF_DEF_ \"Sig\" 13;\nBA_DEF_DEF_ \"Var\" 14;\nBA_DEF_DEF_ \"Typ\" 15;\n"
    "BA_DEF_DEF_ \"Switch\" \"Off\";\nBA_DEF_DEF_ \"Holes\" \"B\";\n"
    "BA_DEF_DEF_ \"Text\" \"t\";\nBA_DEF_DEF_REL_ \"Rel\" 16;\n";
constexpr char kValues[] =
    "BA_ \"Net\" 20;\nBA_ \"Nod\" BU_ A 21;\nBA_ \"Msg\" BO_ 1 22;\nBA_ \"Sig\" SG_ 1 S 23;\n"
    "BA_ \"Var\" EV_ V 24;\nBA_ \"Two\" BU_ A \"text\";\nBA_SGTYPE_ \"Typ\" SGTYPE_ Y 25;\n"
    "BA_REL_ \"Rel\" BU_SG_REL_ B SG_ 1 S 26;\n"
    "VAL_ 1 S 0 \"off\" 1 \"on\" 1 \"again\" 4294967295 \"top\" 7 \"off\" ;\nVAL_ V 5 \"five\" ;\n"
    "CAT_DEF_ 1 In 0;\nCAT_DEF_ 2 Out 0;\nFILTER 1 CAT_ 1 BU_ A ;\n";

class AttributeAccess : public ManagerTest {
 protected:
  /// Opens two databases of the same objects, the second of which has defaults of 20 more and no
  /// values.
  void open_both(ZelkManager& manager) {
    std::string others = kObjects;
    for (std::size_t at; (at = others.find("\" 1")) != std::string::npos;) others[at + 2] = '3';
    first = open(manager, folder.write("first.dbc", kObjects + kValues), nullptr, 2);
    second = open(manager, folder.write("second.dbc", others), nullptr, 1);
  }

  const char* first = nullptr;
  const char* second = nullptr;
};

/// What `GetAttrValueEx` gives: the value, or the negative status; -99 when they disagree on what
/// is written, or with the manager.
template <typename... Arguments>
int value_ex(ZelkManager& m, const char* db, const char* name, const Arguments&... object) {
  zelk_attr_value_t value = {.number = -1};
  const ZelkStatus status = m.GetAttrValueEx(object..., name, value, db);
  if (m.Status() != static_cast<unsigned>(status) || (status != 0) != (value.number == -1)) {
    return -99;
  }
  return status == 0 ? static_cast<int>(value.number) : -status;
}

TEST_F(AttributeAccess, OfObjectsOfEveryKind) {
  Manager m;
  open_both(m);
  // An object with a value, which is 10 more than the default, one without, and one of the other
  // database, where the default is 20 more.
  const auto expect = [&](const char* name, int expected, const auto& own, const auto& without,
                          const auto& other) {
    SCOPED_TRACE(name);
    EXPECT_EQ(m.GetAttrValue(own, name).number, expected + 10);
    EXPECT_EQ(m.GetAttrValue(without, name).number, expected);
    EXPECT_EQ(m.GetAttrValue(other, name).number, expected + 20);
    EXPECT_EQ(m.GetAttrValue(own, kNoName).number, 0);
    EXPECT_TRUE(m.IsAttrValueDefined(own, name));
    EXPECT_FALSE(m.IsAttrValueDefined(without, name) || m.IsAttrValueDefined(own, kNoName));
    EXPECT_EQ(value_ex(m, kAll, name, other), expected + 20);
    EXPECT_EQ(value_ex(m, second, name, without), expected + 20);
    EXPECT_EQ(value_ex(m, kAll, "Net", own), -5) << "another kind's";
    using Object = std::remove_cvref_t<decltype(own)>;
    constexpr bool kIsType = std::is_same_v<Object, sigtype>;
    EXPECT_EQ(value_ex(m, "no handle", name, without), kIsType ? -5 : -2);
    EXPECT_EQ(value_ex(m, "no handle", name, own), expected + 10);
    EXPECT_EQ(value_ex(m, kAll, name, Object()), kIsType ? expected : -2) << "held by none";
  };
  const msgblk &message = *m.GetMessage("M", first), &other = *m.GetMessage("M", second);
  const rxblk& link = *message.signals->receivers;
  expect("Nod", 11, *m.GetNode("A", first), *m.GetNode("B", first), *m.GetNode("A", second));
  expect("Msg", 12, message, *m.GetMessage("N", first), other);
  expect("Sig", 13, *message.signals, *message.signals->next, *other.signals);
  expect("Var", 14, *m.GetEnvvar("V", first), *m.GetEnvvar("W", first), *m.GetEnvvar("V", second));
  expect("Typ", 15, *m.GetSignalType("Y", first), *m.GetSignalType("Z", first),
         *m.GetSignalType("Y", second));
  expect("Rel", 16, link, *link.next, *other.signals->receivers);
}

TEST_F(AttributeAccess, OfTheNetworkAndTheirDefaults) {
  Manager m;
  open_both(m);
  EXPECT_EQ(m.GetAttrValue("Net", second).number, 30);
  EXPECT_EQ(m.GetAttrValue("Net", first).number, 20);
  EXPECT_EQ(value_ex(m, first, "Net"), 20);
  EXPECT_EQ(m.GetAttrValue("Net", kAll).number, 0);
  EXPECT_EQ(value_ex(m, first, "Msg"), -5);
  EXPECT_EQ(value_ex(m, first, "Switch"), 1);
  EXPECT_EQ(value_ex(m, kAll, "Net"), -2);
  EXPECT_TRUE(m.IsAttrValueDefined("Net", first) && m.IsAttrValueDefined("Net", kAll));
  EXPECT_FALSE(m.IsAttrValueDefined("Net", second) || m.IsAttrValueDefined("Nod", first) ||
               m.IsAttrValueDefined(kNoName, kAll) || m.IsAttrValueDefined("Net", "first"));
  EXPECT_TRUE(m.IsAttributeDefined("Typ", ZELK_OBJ_SIGTYPE, kAll));
  EXPECT_FALSE(m.IsAttributeDefined("Typ", ZELK_OBJ_SIGNAL, kAll) ||
               m.IsAttributeDefined("Net", ZELK_OBJ_NETWORK, "first") ||
               m.IsAttributeDefined(kNoName, ZELK_OBJ_NODE, kAll));
  EXPECT_EQ(m.GetAttrDefault("Msg", second).number, 32);
  EXPECT_EQ(m.GetAttrDefault(kNoName, kAll).text, nullptr);
  zelk_attr_value_t value = {};
  const auto default_ex = [&](const char* name, const char* db) {
    const ZelkStatus status = m.GetAttrDefaultEx(name, value, db);
    EXPECT_EQ(m.Status(), static_cast<unsigned>(status));
    return status == 0 ? value.number : -status;
  };
  EXPECT_EQ(default_ex("Holes", kAll), 1) << "empty items do not count";
  EXPECT_EQ(default_ex("Msg", second), 32);
  EXPECT_EQ(default_ex("none", kAll), -5);
  EXPECT_EQ(value.number, 32) << "written on success only";
}

TEST_F(AttributeAccess, DefinitionsAreThoseOfTheObject) {
  ZelkWriteManager m(static_cast<void*>(nullptr));
  open_both(m);
  const msgblk& message = *m.GetMessage("M", first);
  const sigblk& signal = *message.signals;
  const symblk& node = *m.GetNode("A", first);
  const auto kind = [](const attr_def* found) { return found ? found->object_type : -1; };
  const auto kind_of_two = [&](const auto& object) {
    return kind(m.GetAttrDefinition(object, "Two"));
  };
  EXPECT_EQ(kind(m.GetAttrDefinition("Two", first)), ZELK_OBJ_ENVVAR) << "the first of all";
  EXPECT_EQ(kind(m.GetNetworkAttrDefinition(first, "Two")), ZELK_OBJ_NETWORK);
  EXPECT_EQ(kind_of_two(message), ZELK_OBJ_MESSAGE);
  EXPECT_EQ(kind_of_two(*signal.receivers), ZELK_OBJ_REL_SIGNAL);
  EXPECT_EQ(kind_of_two(signal), ZELK_OBJ_ENVVAR) << "none of its kind";
  EXPECT_EQ(kind(m.GetAttrDefinition(*m.GetSignalType("Y", first), "Typ")), ZELK_OBJ_SIGTYPE);
  EXPECT_EQ(kind(m.GetAttrDefinition(node, "Rel")), -1) << "no file could hold the value";
  attr_def& late = *m.CreateAttrDefinition(first, 0);
  std::strcpy(late.name, "Two");
  late.object_type = ZELK_OBJ_NODE;
  EXPECT_EQ(kind_of_two(*m.GetNode("B", first)), ZELK_OBJ_NODE);
  EXPECT_EQ(kind_of_two(node), ZELK_OBJ_ENVVAR) << "that of the value that it has";

  EXPECT_FALSE(m.GetAttrDefinition(message, "Two", second)) << "another database holds it";
  EXPECT_FALSE(m.GetAttrDefinition(message, kNoName, first) ||
               m.GetNetworkAttrDefinition("first", "Two"));
}

// What a lookup did not find has no value, no definition and no description.
TEST_F(AttributeAccess, OfMissingObjects) {
  Manager m;
  open_both(m);
  zelk_attr_value_t value = {.number = -1};
  const symblk* const node = m.GetNode("none", kAll);
  const sigblk* const signal = m.GetSignal(*m.GetMessage("M", first), "none");
  EXPECT_EQ(m.GetAttrValue(node, "Nod").number, 0);
  EXPECT_EQ(m.GetAttrValueEx(signal, "Sig", value, first), ZelkStatusNotFound);
  EXPECT_EQ(m.Status(), 2U);
  EXPECT_EQ(value.number, -1);
  EXPECT_FALSE(m.IsAttrValueDefined(node, "Nod") || m.GetAttrDefinition(node, "Nod", first) ||
               m.AttributeCount(signal));
  EXPECT_EQ(m.GetValueDescription(signal, 0), nullptr);
  EXPECT_EQ(m.Status(), 4U);
  EXPECT_EQ(m.GetDescriptionValue(m.GetEnvvar("none", kAll), "five"), 0x7FFFFFFF);
  EXPECT_EQ(m.Status(), 3U);
  EXPECT_EQ(m.GetAttrValueIndex(m.GetAttrDefinition("none", kAll), "On"), -1);
  EXPECT_EQ(m.GetAttrValue(m.GetMessage("M", first), "Msg").number, 22) << "one that was found";
}

// Empty items count for the text of an index, and not for the index of a text.
TEST_F(AttributeAccess, EnumerationsHaveTexts) {
  Manager m;
  open_both(m);
  const auto items = [&m](const char* name, std::initializer_list<long> indexes) {
    std::string texts;
    for (const long index : indexes) {
      const zelk::OwnedText text(const_cast<char*>(m.GetAttrValueString(name, index, kAll)));
      texts += (text ? text.get() : std::string("null")) + ",";
    }
    return texts;
  };
  EXPECT_EQ(items("Switch", {-1, 0, 1, 2, 0x7FFFFFFF}), "On,On,Off,null,null,");
  EXPECT_EQ(items("Holes", {0, 1, 2, 3, 4}), "A,,B,,null,");
  EXPECT_EQ(items("Net", {0}) + items("Text", {0}) + items(kNoName, {0}), "null,null,null,");
  const std::tuple<const char*, const char*, long> indexes[] = {
      {"Switch", "Off", 1}, {"Switch", "On\nOff", -1}, {"Holes", "B", 1},
      {"Holes", "", -1},    {"Net", "0", -1},          {kNoName, "On", -1}};
  for (const auto& [name, text, index] : indexes) {
    EXPECT_EQ(m.GetAttrValueIndex(name, text, kAll), index) << text;
  }
  const FailingCalloc failure(0);
  EXPECT_EQ(m.GetAttrValueString("Switch", 0, kAll), nullptr) << "without memory";
}

TEST_F(AttributeAccess, ValuesHaveDescriptions) {
  Manager m;
  open_both(m);
  const sigblk& signal = *m.GetMessage("M", first)->signals;
  const env_var_blk& variable = *m.GetEnvvar("V", first);
  const std::pair<long, const char*> texts[] = {{1, "on"}, {-1, "top"}, {7, "off"}, {5, nullptr}};
  for (const auto& [value, text] : texts) {
    EXPECT_STREQ(m.GetValueDescription(signal, value), text) << value;
    EXPECT_EQ(m.Status(), text ? 0U : 4U);
  }
  const std::pair<const char*, long> values[] = {
      {"off", 0}, {"again", 1}, {"top", -1}, {"OFF", 0x7FFFFFFF}, {nullptr, 0x7FFFFFFF}};
  for (const auto& [text, value] : values) {
    EXPECT_EQ(m.GetDescriptionValue(signal, text), value);
    EXPECT_EQ(m.Status(), value == 0x7FFFFFFF ? 3U : 0U);
  }
  EXPECT_STREQ(m.GetValueDescription(variable, 5), "five");
}

TEST_F(AttributeAccess, FiltersKnowTheirOwnRecords) {
  Manager m;
  open_both(m);
  const cat& category = *m.GetCategory("In", first);
  const symblk& node = *m.GetNode("A", first);
  EXPECT_TRUE(m.IsCategoryInFilter(category, first) && m.IsCategoryInFilter(category, kAll) &&
              m.IsNodeInFilter(node, first) && m.IsNodeInFilter(node, kAll));
  EXPECT_FALSE(m.IsCategoryInFilter(*m.GetCategory("Out", first), first) ||
               m.IsCategoryInFilter(category, second) || m.IsCategoryInFilter(category, "first") ||
               m.IsNodeInFilter(*m.GetNode("A", second), kAll) || m.IsNodeInFilter(node, second));
  EXPECT_FALSE(m.IsCategoryInFilter(ZelkNoneFilterCategory(), first) ||
               m.IsNodeInFilter(ZelkNoneFilterNode(), first));
}

}  // namespace

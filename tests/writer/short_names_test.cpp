#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "support/building.hpp"

namespace {

using testing::HasSubstr;
using Names = std::vector<std::string>;

// 32 characters, the first 27 of them, and the substitute of an empty name.
const std::string kPrefix = "Abcdefghijklmnopqrstuvwxyz012345";
const std::string kStem = "Abcdefghijklmnopqrstuvwxyz0_";
const std::string kInvalid = "invalidShortSymbolicName";

Names names_in_line(const std::string& text, const std::string& start) {
  const std::size_t begin = text.find(start) + start.size();
  std::istringstream line(text.substr(begin, text.find('\n', begin) - begin));
  Names names;
  for (std::string name; line >> name;) names.push_back(name);
  return names;
}

TEST(ShortNames, OfNodes) {
  const std::string other = "Abcdefghijklmnopqrstuvwxyz0other";
  const struct {
    Names full, written;
  } cases[] = {
      {{kPrefix, kPrefix}, {kPrefix, kPrefix}},
      // A name that fits keeps its text wherever it stands.
      {{kPrefix + "6", kPrefix}, {kStem + "0000", kPrefix}},
      {{kPrefix + "a", kPrefix + "b", kStem + "0000", kPrefix, kStem + "0002"},
       {kStem + "0001", kStem + "0003", kStem + "0000", kPrefix, kStem + "0002"}},
      // Different beginnings share the numbers behind their common 27 characters.
      {{kPrefix + "a", other + "a", kPrefix + "b", other + "b"},
       {kPrefix, other, kStem + "0000", kStem + "0001"}},
      {{"", "", ""}, {kInvalid, kInvalid + "_0000", kInvalid + "_0001"}},
      {{"", kInvalid}, {kInvalid + "_0000", kInvalid}},
  };
  for (const auto& c : cases) {
    Database database;
    for (const std::string& name : c.full) append_named(database.nodes, zelk_create_symbol(), name);
    EXPECT_EQ(names_in_line(written(database), "BU_:"), c.written)
        << testing::PrintToString(c.full);
  }
}

TEST(ShortNames, EndAfterAThousandNumbers) {
  Database database;
  for (int i = 0; i < 1003; ++i) {
    append_named(database.nodes, zelk_create_symbol(), kPrefix + std::to_string(i));
  }
  const Names names = names_in_line(written(database), "BU_:");
  ASSERT_EQ(names.size(), 1003u);
  EXPECT_EQ(names[0], kPrefix);
  EXPECT_EQ(names[1], kStem + "0000");
  EXPECT_EQ(names[1000], kStem + "0999");
  EXPECT_EQ(names[1001], kInvalid);
  EXPECT_EQ(names[1002], kInvalid);
}

/// In the texts below * stands for the 32 characters, # for the numbered name that follows, and an
/// apostrophe for a double quote.
std::string expanded(const std::string& text) {
  std::string result;
  for (const char c : text) {
    result += c == '*' ? kPrefix : c == '#' ? kStem + "0000" : std::string(1, c == '\'' ? '"' : c);
  }
  return result;
}

/// Every kind of object with a name of 33 characters, two signals among them.
constexpr char kLong[] =
    "BS_: BU_: *n BO_ 1 *m: 1 *n SG_ *s : 0|1@1+ (1,0) [0|0] '' *n "
    "BO_ 2 Second: 1 Ostrel__XXX SG_ *s : 0|1@1+ (1,0) [0|0] '' Ostrel__XXX "
    "EV_ *v: 0 [0|0] '' 0 0 DUMMY_NODE_OSTREL0 Ostrel__XXX; ";

TEST(ShortNames, GoWithTheFullOnesAsAttributes) {
  Database database, read_back;
  ASSERT_EQ(database.read(expanded(kLong)), 0u) << database.reported;
  const std::string model = describe(database), text = written(database, 0);
  EXPECT_EQ(text.substr(text.find("BS_:")),
            expanded("BS_:\n\nBU_: *\n\n\nBO_ 1 *: 1 *\n"
                     " SG_ * : 0|1@1+ (1,0) [0|0] ''  *\n\nBO_ 2 Second: 1 Ostrel__XXX\n"
                     " SG_ # : 0|1@1+ (1,0) [0|0] '' Ostrel__XXX\n\n\n"
                     "\nEV_ *: 0 [0|0] '' 0 0 DUMMY_NODE_OSTREL0 Ostrel__XXX;\n\n"
                     "BA_DEF_ SG_  'SystemSignalLongSymbol' STRING ;\n"
                     "BA_DEF_ BO_  'SystemMessageLongSymbol' STRING ;\n"
                     "BA_DEF_ BU_  'SystemNodeLongSymbol' STRING ;\n"
                     "BA_DEF_ EV_  'SystemEnvVarLongSymbol' STRING ;\n"
                     "BA_DEF_DEF_  'SystemSignalLongSymbol' '';\n"
                     "BA_DEF_DEF_  'SystemMessageLongSymbol' '';\n"
                     "BA_DEF_DEF_  'SystemNodeLongSymbol' '';\n"
                     "BA_DEF_DEF_  'SystemEnvVarLongSymbol' '';\n"
                     "BA_ 'SystemNodeLongSymbol' BU_ * '*n';\n"
                     "BA_ 'SystemMessageLongSymbol' BO_ 1 '*m';\n"
                     "BA_ 'SystemSignalLongSymbol' SG_ 1 * '*s';\n"
                     "BA_ 'SystemSignalLongSymbol' SG_ 2 # '*s';\n"
                     "BA_ 'SystemEnvVarLongSymbol' EV_ * '*v';\n"));
  EXPECT_EQ(describe(database), model);
  EXPECT_EQ(written(database, 0), text) << "a write starts afresh";
  ASSERT_EQ(read_back.read(text), 0u) << read_back.reported;
  EXPECT_EQ(describe(read_back), model);
}

TEST(ShortNames, WithADefinitionOfTheUser) {
  const std::string quoted = "\"SystemNodeLongSymbol\"", definition = quoted + " STRING ;";
  for (const bool counts : {true, false}) {  // in place of the automatic one
    Database database;
    ASSERT_EQ(database.read(expanded(kLong)), 0u) << database.reported;
    add_definition(database, counts ? ZELK_OBJ_NODE : ZELK_OBJ_NETWORK, "SystemNodeLongSymbol",
                   ZELK_ATTR_STRING, "", "user");
    const std::string text = written(database);
    EXPECT_THAT(text, HasSubstr(quoted + " \"user\";"));
    EXPECT_THAT(text, HasSubstr("\nBA_ " + quoted)) << "the values are written";
    EXPECT_EQ(text.find("BA_DEF_DEF_  " + quoted + " \"\";") == std::string::npos, counts);
    EXPECT_EQ(text.find(definition) == text.rfind(definition), counts);
  }
}

}  // namespace

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "support/database.hpp"

// The statements behind the messages, one or a few at a time within a small database. In the tables
// an apostrophe stands for a double quote.

namespace {

constexpr char kMessages[] =
    "BS_:\n"
    "BU_: A B C\n"
    "VAL_TABLE_ Tab 1 'one' ;\n"
    "BO_ 1 M: 8 A\n"
    " SG_ S M : 0|8@1+ (1,0) [0|0] '' A,B\n"
    " SG_ T m1 : 8|8@1+ (1,0) [0|0] '' A\n"
    "BO_ 2 N: 8 Ostrel__XXX\n";
constexpr char kVariable[] = "EV_ V: 0 [0|1] '' 0 7 DUMMY_NODE_OSTREL0 A;\n";
constexpr char kType[] = "SGTYPE_ Typ : 8@1+ (1,0) [0|0] '' 0;\n";

const std::string kObjects = std::string(kMessages) + kVariable + kType;

// How the objects above are described, without what a statement adds.
#define NODE_C "node C"
#define MESSAGE "message 1 M 8 from A[A]"
#define MESSAGE_N "message 2 N 8 from -[]"
#define SIGNAL_S "signal S 0|8 flags 4 (1,0) [0|0] '' to [A,B]"
#define SIGNAL_T "signal T 8|8 flags 0 (1,0) [0|0] '' to [A]"
#define VARIABLE "variable V type 0 [0|1] '' 0 id 7 access 0[A]"
#define TYPE "type Typ 8 flags 0 (1,0) [0|0] '' 0"
#define UNKNOWN "database: unknown symbol newly defined, line "

struct Outcome {
  uint32_t number;
  std::vector<std::string> lines;  ///< of the description
  std::string reported;
};

Outcome outcome(const std::string& text) {
  Database database;
  Outcome result = {database.read(with_quotes(text)), {}, database.reported};
  std::istringstream description(describe(database));
  for (std::string line; std::getline(description, line);) result.lines.push_back(line);
  return result;
}

struct StatementCase {
  std::string statements;
  std::string result;  ///< the lines that differ from the database without the statements
  std::string reported = "";
  uint32_t number = 0;
};

void expect_outcomes(const std::string& before, const std::string& behind,
                     const std::vector<StatementCase>& cases) {
  const std::vector<std::string> plain = outcome(before + behind).lines;
  for (const StatementCase& c : cases) {
    const Outcome found = outcome(before + c.statements + behind);
    std::string changes;
    for (const std::string& line : found.lines) {
      if (std::count(plain.begin(), plain.end(), line) == 0) changes += line + "\n";
    }
    EXPECT_EQ(found.number, c.number) << c.statements;
    EXPECT_EQ(found.reported, c.reported.empty() ? "" : c.reported + "\n") << c.statements;
    if (c.number != 0) continue;
    EXPECT_EQ(changes, c.result.empty() ? "" : with_quotes(c.result) + "\n") << c.statements;
    EXPECT_GE(found.lines.size(), plain.size()) << c.statements;
  }
}

/// Cases of statements at the end of the file, which is line 9.
void expect_outcomes(const std::vector<StatementCase>& cases) {
  expect_outcomes(kObjects, "", cases);
}

TEST(Statements, Transmitters) {
  expect_outcomes(kMessages, std::string(kVariable) + kType,
                  {{"BO_TX_BU_ 1 : D ; BO_TX_BU_ 2:C,B;",
                    "node D\nmessage 1 M 8 from A[D]\nmessage 2 N 8 from -[C,B]"},
                   {"BO_TX_BU_ 1 : ;", ""},
                   {"BO_TX_BU_ 1 : Ostrel__XXX ;", "message 1 M 8 from A[]"},
                   {"BO_TX_BU_ 3 : A;", "", UNKNOWN "7, Msg &lu", 20}});
}

TEST(Statements, EnvironmentVariables) {
  const std::string u40(40, 'u'), u32(32, 'u');
  const std::string long_unit = "EV_ W: 0 [0|1] '" + u40 + "' 0 0 DUMMY_NODE_OSTREL0 A;";
  expect_outcomes(
      std::string(kMessages) + kVariable, kType,
      {{"EV_ W: 1 [-0.5|10] 'V' 2.5 32768 DUMMY_NODE_OSTREL3 D,Ostrel__XXX,A;",
        "node D\nvariable W type 1 [-0.5|10] 'V' 2.5 id 32768 access 3[D,A]"},
       {"EV_ W: 0 [0|0] '' 0 0 DUMMY_NODE_OSTREL8001 Ostrel__XXX;",
        "variable W type 2 [0|0] '' 0 id 0 access 1[]"},
       {"EV_ W: 4 [0|0] '' 0 0 DUMMY_NODE_OSTREL0 A;", "",
        "type of environment variable not allowed, line 8, W", 25},
       {long_unit, "variable W type 0 [0|1] '" + u32 + "' 0 id 0 access 0[A]"},
       {"ENVVAR_DATA_ V: 10;", "variable V type 3 [0|1] '' 0 id 7 access 0[A] size 10"},
       {"EV_DATA_ V: 5; ENVVAR_DATA_ X: 1;\nEV_DATA_ V:9;",
        "variable V type 3 [0|1] '' 0 id 7 access 0[A] size 9",
        "database: unknown environment variable of type data, type ignored, line 8, X"}});
}

TEST(Statements, SignalTypes) {
  expect_outcomes(std::string(kMessages) + kVariable, "",
                  {{"SGTYPE_ Ty : 12@0- (0.5,1) [-1|10] 'u'  3 Tab;",
                    "type Ty 12 flags 3 (0.5,1) [-1|10] 'u' 3 table Tab"},
                   {"SGTYPE_ Ty:8(1,0)[0|1]'' SGTYPE_ Tz:8@1-(1,0)[0|1]'' -2.5 ;",
                    "type Ty 8 flags 0 (1,0) [0|1] '' 0\n"
                    "type Tz 8 flags 2 (1,0) [0|1] '' -2.5"},
                   {"SGTYPE_ Ty:8(1,0)[0|1]'' 0 X;", "", UNKNOWN "8, X", 20}});
}

TEST(Statements, Comments) {
  expect_outcomes({{"CM_ 'x'; CM_ 'a\nb\\'c' ;", "comment 'a|b'c'"},
                   {"CM_ BO_ 1 'x'; CM_ BO_ 1 '';", MESSAGE " // ''"},
                   {"CM_ BU_ Ostrel__XXX 'x';", ""},
                   {"CM_ SG_ 2 S\n'x' ;", "", UNKNOWN "10, S", 20}});
}

TEST(Statements, AttributeDefinitions) {
  const std::string a40(40, 'a'), a32(32, 'a');
  const std::string long_used = "BA_DEF_ '" + a40 + "' INT; BA_DEF_DEF_ '" + a40 + "' 3; BA_ '" +
                                a40 + "' 1; BA_ '" + a32 + "b' 2;";
  expect_outcomes(
      {{"BA_DEF_ 'D' INT;", "definition D of 0 INT [0|0] 0"},
       {"BA_DEF_ 'D' ENUM  'a','ostrel_leerstring','','b c';",
        "definition D of 0 ENUM 'a|||b c' ''"},
       {"BA_DEF_ 'D' ENUM ; BA_DEF_ 'E' ENUM 'ostrel_leerstring';",
        "definition D of 0 ENUM '' ''\ndefinition E of 0 ENUM '' ''"},
       {"BA_DEF_REL_ 'D' INT; BA_DEF_ 'D' INT; BA_DEF_REL_ BU_SG_REL_ 'E' STRING;",
        "definition D of 6 INT [0|0] 0\ndefinition D of 0 INT [0|0] 0\n"
        "definition E of 6 STRING ''"},
       {"BA_DEF_ SG_ 'D' INT 0 1; BA_DEF_SGTYPE_ 'D'; BA_DEF_REL_ 'E' INT;",
        "definition D of 5 INT [0|1] 0\ndefinition E of 6 INT [0|0] 0"},
       {"BA_DEF_ 'D' INT; BA_DEF_ SG_ 'D' INT 1 2; BA_DEF_SGTYPE_ 'D';",
        "definition D of 0 INT [0|0] 0\ndefinition D of 5 INT [1|2] 0"},
       {"BA_DEF_REL_ 'D' INT; BA_DEF_SGTYPE_ 'D';", "", "undefined attribute, line 9, D", 21},
       {long_used,
        "network {" + a32 + "=1 " + a32 + "=2}\ndefinition " + a32 + " of 0 INT [0|0] 3"}});
}

/// Statements of one definition with a default.
std::string with_default(const std::string& type, const std::string& value) {
  return "BA_DEF_ 'D' " + type + "; BA_DEF_DEF_ 'D' " + value + ";";
}

TEST(Statements, AttributeDefaults) {
  const std::string found = "definition D of 0 ", error = "database: syntax error, line 9";
  expect_outcomes({
      {with_default("INT", "'-25e-1'"), found + "INT [0|0] -2.5"},
      {with_default("INT", ""), found + "INT [0|0] 0"},
      {with_default("ENUM 'a'", ""), found + "ENUM 'a' ''"},
      {with_default("INT", "' 5'"), "", error + ",  5", 14},
      {with_default("INT", "'0x10'"), "", error + ", 0x10", 14},
      {with_default("FLOAT", "'inf'"), "", error + ", inf", 14},
      {with_default("INT", "''"), "", error, 14},
      {with_default("STRING", "'ostrel_leerstring'"), found + "STRING 'ostrel_leerstring'"},
      {with_default("STRING", "123456789012345678"), found + "STRING '1.2345678901235E+17'"},
      {with_default("ENUM 'a','b'", "1"), found + "ENUM 'a|b' 'b'"},
      {with_default("ENUM 'a','b'", "''"), found + "ENUM 'a|b' ''"},
      {with_default("ENUM 'a','b'", "'ostrel_leerstring'"), found + "ENUM 'a|b' ''"},
      {with_default("ENUM 'a','b'", "'c'"), "", error + ", c", 14},
  });
  expect_outcomes(
      {{"BA_DEF_ 'D' INT; BA_DEF_ BU_ 'D' INT; BA_DEF_DEF_ 'D' 1; BA_DEF_DEF_ 'D' 2;",
        "definition D of 0 INT [0|0] 1\ndefinition D of 1 INT [0|0] 2"},
       {"BA_DEF_ 'D' INT; BA_DEF_REL_ 'D' INT; BA_DEF_DEF_REL_ 'D' 1; BA_DEF_DEF_ 'D' 2;",
        "definition D of 0 INT [0|0] 2\ndefinition D of 6 INT [0|0] 1"},
       {"BA_DEF_REL_ 'D' INT; BA_DEF_DEF_ 'D' 1;", "", "undefined attribute, line 9, D", 21},
       {"BA_DEF_ 'D' INT; BA_DEF_DEF_REL_ 'D' ;", "", "undefined attribute, line 9, D", 21}});
}

TEST(Statements, AttributeValues) {
  const std::string definitions =
      "BA_DEF_ 'D' INT; BA_DEF_ BU_ 'D' STRING; BA_DEF_ BO_ 'OfMsg' HEX; BA_DEF_ SG_ 'OfSig' INT;"
      "BA_DEF_ EV_ 'OfVar' FLOAT; BA_DEF_ 'E' ENUM 'a','','c'; BA_DEF_ SG_ 'OfType' STRING;"
      "BA_DEF_REL_ BU_SG_REL_ 'RSig' INT; BA_DEF_REL_ BU_BO_REL_ 'RMsg' STRING;"
      "BA_DEF_REL_ BU_EV_REL_ 'RVar' ENUM 'a','b'; BA_DEF_SGTYPE_ 'OfType';";
  expect_outcomes(
      kObjects + definitions, "",
      {{"BA_ 'D' -5; BA_ 'D' '+7.5'; BA_ 'D' '5E-1';", "network {D=-5 D=7.5 D=0.5}"},
       {"BA_ 'D' '5 ';", "", "database: syntax error, line 9, 5 ", 14},
       {"BA_ 'E' 'c'; BA_ 'E' ''; BA_ 'E' 'ostrel_leerstring'; BA_ 'E' 9; BA_ 'E' 'a';",
        "network {E=2 E=1 E=1 E=9 E=0}"},
       {"BA_ 'E' 'x';", "", "database: syntax error, line 9, x", 14},
       {"BA_ 'D' BU_ C 5; BA_ 'D' BU_ C 'ostrel_leerstring'; BA_ 'D' BU_ C -1e20;",
        NODE_C " {D='5' D='ostrel_leerstring' D='-1E+20'}"},
       {"BA_ 'D' BU_ Ostrel__XXX 5;", ""},
       {"BA_ 'OfMsg' BO_ 1 4294967295; BA_ 'OfSig' BO_ 2 1;",
        MESSAGE " {OfMsg=4294967295}\n" MESSAGE_N " {OfSig=1}"},
       {"BA_SGTYPE_ 'OfType' SGTYPE_ Typ word; BA_SGTYPE_ 'OfType' SGTYPE_ Typ 'x' ;",
        TYPE " {OfType='word' OfType='x'}"},
       {"BA_REL_ 'RMsg' BU_BO_REL_ A 1 word;", "message 1 M 8 from A[A {RMsg='word'}]"},
       {"BA_REL_ 'RVar' BU_EV_REL_ A V b;",
        "variable V type 0 [0|1] '' 0 id 7 access 0[A {RVar=1}]"},
       {"BA_REL_ 'RSig' BU_SG_REL_ C SG_ 1 T 5;\n", "", UNKNOWN "9, C"},
       {"BA_REL_ 'RMsg' BU_BO_REL_ A 2 'x';", "", UNKNOWN "9, A"},
       {"BA_REL_ 'RVar' BU_EV_REL_ Ostrel__XXX V 1;", ""},
       {"BA_ 'X' BU_ X 5;", "", "undefined attribute, line 9, X", 21},
       {"BA_REL_ 'D' BU_SG_REL_ A SG_ 1 S 5;", "", "undefined attribute, line 9, D", 21}});
}

TEST(Statements, LongNames) {
  const std::string definitions =
      "BA_DEF_ SG_ 'SystemSignalLongSymbol' STRING; BA_DEF_ BO_ 'SystemMessageLongSymbol' STRING;"
      "BA_DEF_ BU_ 'SystemNodeLongSymbol' STRING; BA_DEF_ EV_ 'SystemEnvVarLongSymbol' STRING;"
      "BA_DEF_DEF_ 'SystemNodeLongSymbol' '';";
  const std::string n40(40, 'n'), node = "BA_ 'SystemNodeLongSymbol' BU_ C ";
  const std::string names = node + "'x'; " + node + "'" + n40 +
                            "'; BA_ 'SystemSignalLongSymbol' SG_ 1 T 'T_long';" +
                            "BA_ 'SystemMessageLongSymbol' BO_ 2 'Ostrel__XXX'; BA_ "
                            "'SystemEnvVarLongSymbol' EV_ V '_V';" +
                            "CAT_DEF_ 1 K 1; CAT_ BU_ C 1;";
  expect_outcomes(kObjects + definitions, "",
                  {{names, "node " + n40 + " in K\n" +
                               "signal T_long 8|8 flags 0 (1,0) [0|0] '' to [A] by S 1-1\n"
                               "message 2 Ostrel__XXX 8 from -[]\n"
                               "variable _V type 0 [0|1] '' 0 id 7 access 0[A]\ncategory 1 K 1"},
                   {node + "'';", ""}});
  for (const std::string value : {"1x", "a-b", "BO_", "Ostrel__XXX"}) {
    expect_outcomes(kObjects + definitions, "",
                    {{node + "'" + value + "';", "", "database: format error, line 9, " + value}});
  }
  expect_outcomes({{"BA_DEF_ BU_ 'SystemNodeLongSymbol' INT; BA_ 'SystemNodeLongSymbol' BU_ C 5;",
                    NODE_C " {SystemNodeLongSymbol=5}\n"
                           "definition SystemNodeLongSymbol of 1 INT [0|0] 0"}});
  Database database;
  std::string text = kObjects + definitions + "BA_ 'SystemNodeLongSymbol' BU_ C 'Long'; VAL_";
  EXPECT_NE(database.read(with_quotes(text)), 0u);
  EXPECT_STREQ(zelk_get_symbol_n(database.nodes, 3)->name, "C") << "only an accepted file renames";
}

TEST(Statements, ValueDescriptions) {
  expect_outcomes(
      {{"VAL_ 1 T 1 'b' 0 'a' 1 'c' ; VAL_ 1 T -1 'd' ;",
        SIGNAL_T " by S 1-1 1'b' 0'a' 1'c' -1'd'"},
       {"VAL_ V 3.9 'a' -3.9 'b' 4294967295 'c' 2147483648 'd' 4294967297 'e' 1e300 'f' ;",
        VARIABLE " 3'a' -3'b' -1'c' -2147483648'd' 1'e' 0'f'"},
       {"VAL_ V ;", ""}});
}

TEST(Statements, CategoriesAndFilter) {
  const std::string a40(40, 'a'), long_name = "CAT_DEF_ 32767 " + a40 + " 65535;";
  expect_outcomes(
      {{long_name, "category 32767 " + std::string(32, 'a') + " 65535"},
       {"CAT_DEF_ 5 K 1; CAT_DEF_ -32768 L 0; CAT_ BU_ C 5; CAT_ BO_ 1 -32768; CAT_ EV_ V 5;",
        NODE_C " in K\n" MESSAGE " in L\n" VARIABLE " in K\ncategory 5 K 1\ncategory -32768 L 0"},
       {"CAT_DEF_ 0 K 1; CAT_ BU_ C 0;", NODE_C " in K\ncategory 0 K 1"},
       {"CAT_DEF_ 5 K 1; CAT_ BO_ 1 5; CAT_ BO_ 1 0;", "category 5 K 1"},
       {"CAT_ BU_ C 7;", "", "unknown category, line 9, 7", 28},
       {"CAT_DEF_ 5 K 1; FILTER 3 CAT_ 5 0 BU_ A '<<none>>' C ;",
        "category 5 K 1\nfilter 3 K - [A,-,C]"},
       {"FILTER -1 CAT_ 0 BU_ '<<none>>' ; FILTER 2 CAT_ BU_ B;", "filter 2 [B]"},
       {"FILTER 1 CAT_ 7 BU_ ;", "", "unknown category, line 9, 7", 28}});
}

TEST(Statements, SignalsAndGroups) {
  expect_outcomes(
      {{"SIG_TYPE_REF_ 3 T : Typ;", "", "database: syntax error, line 9, Msg &lu", 14},
       {"SIG_TYPE_REF_ 1 X : Typ;", "", "database: syntax error, line 9, X", 14},
       {"SIG_GROUP_ 1 G 3 : T S; SIG_GROUP_ 1 H 1 :;", "group G x3 T S\ngroup H x1"},
       {"SIG_VALTYPE_ 1 S : 2; SIGTYPE_VALTYPE_ Typ : 1; SIG_VALTYPE_ 1 S : 1;",
        SIGNAL_S " value type 1\n" TYPE " value type 1"},
       {"SG_MUL_VAL_ 1 T S 0-3, 5-5, 40000-4294967295;", SIGNAL_T " by S 0-3 5-5 40000-4294967295"},
       {"SG_MUL_VAL_ 1 T S 0-3; SG_MUL_VAL_ 1 T S 7-7;", SIGNAL_T " by S 7-7"}});
}

// The objects that a statement names must be there.
TEST(Statements, AboutUnknownObjects) {
  const std::string definition = "BA_DEF_ 'D' INT; BA_DEF_REL_ 'D' INT; ";
  const struct {
    const char *statement, *unknown;
  } cases[] = {{"CM_ BU_ X 'x';", "X"},
               {"CM_ BO_ 3 'x';", "msg 3"},
               {"CM_ SG_ 4294967295 S 'x';", "msg 4294967295"},
               {"VAL_ 1 X 0 'a';", "X"},
               {"CAT_ BU_ X 0;", "X"},
               {"FILTER 1 CAT_ BU_ X ;", "X"},
               {"SIG_TYPE_REF_ 1 T : X;", "X"},
               {"SIG_GROUP_ 2 G 1 : S;", "S"},
               {"SIGTYPE_VALTYPE_ X : 2;", "X"},
               {"SG_MUL_VAL_ 1 T X 1-1;", "X"},
               {"BA_SGTYPE_ 'D' SGTYPE_ X 5;", "X"}};
  for (const auto& c : cases) {
    const std::string attribute = std::string(c.statement).starts_with("BA") ? definition : "";
    const Outcome found = outcome(kObjects + attribute + c.statement);
    EXPECT_EQ(found.number, 20u) << c.statement;
    EXPECT_EQ(found.reported, UNKNOWN "9, " + std::string(c.unknown) + "\n") << c.statement;
  }
}

TEST(Statements, OfDoubledObjectsTheFirstIsMeant) {
  expect_outcomes(kMessages, "",
                  {{"BO_ 1 M2: 8 A SG_ S: 0|8(1,0)[0|0]'' A SG_ S : 8|8(1,0)[0|0]'' A\n"
                    "EV_ V: 0 [0|1] '' 0 7 DUMMY_NODE_OSTREL0 A;EV_ V: 0 [0|1] '' 0 8 "
                    "DUMMY_NODE_OSTREL0 A;"
                    "CM_ SG_ 1 T 'c'; CM_ EV_ V 'c';",
                    SIGNAL_T " by S 1-1 // 'c'\nmessage 1 M2 8 from A[A]\n"
                             "signal S 0|8 flags 0 (1,0) [0|0] '' to [A]\n"
                             "signal S 8|8 flags 0 (1,0) [0|0] '' to [A]\n" VARIABLE " // 'c'\n"
                             "variable V type 0 [0|1] '' 0 id 8 access 0[A]"}});
}

// Every statement behind the nodes has its place.
TEST(Statements, StandInAFixedOrder) {
  std::istringstream list(
      "VAL_TABLE_ U ;\nBO_ 5 O: 8 A\nBO_TX_BU_ 5 : A;\n"
      "EV_ W: 0 [0|1] '' 0 8 DUMMY_NODE_OSTREL0 A;\nEV_DATA_ W : 8;\nSGTYPE_ Ty:8(1,0)[0|1]''\n"
      "CM_ 'x';\nBA_DEF_ SG_ 'D' INT;\nBA_DEF_SGTYPE_ 'D';\nBA_DEF_DEF_ 'D' ;\nBA_ 'D' 1;\n"
      "VAL_ W ;\nCAT_DEF_ 1 K 1;\nCAT_ BU_ A 1;\nFILTER 1 CAT_ BU_ ;\nSIG_TYPE_REF_ 1 S : Ty;\n"
      "SIG_GROUP_ 1 G 1 : ;\nSIG_VALTYPE_ 1 S : 1;\nSG_MUL_VAL_ 1 S S ;\n");
  std::vector<std::string> statements;
  for (std::string line; std::getline(list, line);) statements.push_back(line);
  const std::size_t count = statements.size();
  ASSERT_EQ(count, 19u);
  const std::string start =
      "BS_: BU_: A B VAL_TABLE_ Tab ; BO_ 1 M: 8 A SG_ S : 0|8 (1,0) [0|0] '' A ";
  std::string all;
  for (std::size_t i = 1; i < count; ++i) all += statements[i] + " " + statements[i] + "\n";
  EXPECT_EQ(outcome(start + all).reported, "");
  for (std::size_t early = 0; early < count; ++early) {
    for (std::size_t late = std::max<std::size_t>(early + 1, 2); late < count; ++late) {
      std::string text = start;  // what the two need, in its order
      for (std::size_t i = 1; i <= late; ++i) text += statements[i] + " ";
      EXPECT_EQ(outcome(text + "\n" + statements[early]).reported, ", line 1, error: syntax\n")
          << statements[early] << " behind " << statements[late];
    }
  }
  for (const char* keyword :
       {"NS_DESC_", "SGTYPE_VAL_", "BU_SG_REL_", "BU_EV_REL_", "BU_BO_REL_"}) {
    EXPECT_EQ(outcome(start + keyword).number, 27u) << "a keyword at the end of the file";
    EXPECT_EQ(outcome(start + keyword + " ;").number, 1u) << keyword;
  }
}

}  // namespace

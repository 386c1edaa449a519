#include <gtest/gtest.h>

#include "support/database.hpp"

namespace {

#define FRAME "BS_:\nBU_: A\n"
#define MESSAGE FRAME "BO_ 1 M: 8 A\n"
#define LAYOUT " : 0|8@1+ (1,0) [0|0] \"\" A"
#define SEGMENTATION "database: illegal segmentation description"

TEST(ReaderErrors, NumberAndLine) {
  const std::string a1024(1024, 'a');
  const struct {
    std::string text;
    uint32_t number;
    std::string reported;
  } cases[] = {
      // A line is the count of line feeds before the token that shows the fault.
      {"", 1, ", error: syntax"},
      {"\n\n// only a comment\n", 1, ", line 3, error: syntax"},
      {"BU_:\nBS_:\n", 1, ", error: syntax"},
      {"BS_: 32768:1,2\nBU_:", 1, ", error: syntax"},
      {"BS_:\nBU_: A,\nB\n", 1, ", line 1, error: syntax"},
      {"BS_:\nBU_: VAL_TABLE_ T 0\n\"a\",1 \"b\";", 1, ", line 2, error: syntax"},
      {FRAME "BO_ 4294967296 M: 8 A\n", 1, ", line 2, error: syntax"},
      {FRAME "BO_ 1 M: 32768 A\n", 1, ", line 2, error: syntax"},
      {MESSAGE "SG_ S : 0|40000 (1,0) [0|0] \"\" A\n", 1, ", line 3, error: syntax"},
      {MESSAGE "SG_ S" LAYOUT ",\n;", 1, ", line 4, error: syntax"},
      {FRAME "CM_ \"two\nlines\" \n X\n;", 1, ", line 4, error: syntax"},
      {FRAME "CM_ \"open\n\n", 1, ", line 4, error: syntax"},
      {"NS_: FOO\n" FRAME "FOO 1\n2\n", 1,
       "new symbol not supported, line 3, FOO\n, line 5, error: syntax"},
      {FRAME "BO_ 1 Geschw\xFC : 8 A\n", 27,
       "database: invalid char in symbol, line 2, Geschw :\xFC"},
      {FRAME "BO_ 1 M: 8 " + a1024 + "\n", 1, ", line 2, " + a1024.substr(0, 989)},
      // "SG_" acts at the token behind its receivers: first the indicator, then the segmentation.
      {MESSAGE "SG_ S" LAYOUT "\nSG_ T x1" LAYOUT "\n\nSG_ U q" LAYOUT "\n\n\n;", 11,
       "database: illegal mode, line 9, U"},
      {MESSAGE "SG_ S _1 : 0|0 (1,0) [0|0] \"\" A ;", 11, "database: illegal mode, line 3, S"},
      {MESSAGE "SG_ S : 0|0 (1,0) [0|0] \"\" A\n\n;", 12, SEGMENTATION ", line 5, S"},
      {MESSAGE "SG_ S : 0|8:8@7 (1,0) [0|0] \"\" A ", 12, SEGMENTATION ", line 3, S"},
      {MESSAGE "SG_ S : 0|8:8:8 (1,0) [0|0] \"\" A ", 12, SEGMENTATION ", line 3, S"},
      {MESSAGE "SG_ S : 0|0 (1,0) [0|0] \"\" A B", 27,
       "database: invalid char in symbol, line 3, B :\xFF"},
      // The whole-file checks come before a syntax error at a token that no place takes.
      {MESSAGE "SG_ S M" LAYOUT "\nSG_ T m1M" LAYOUT "\nSG_MUL_VAL_ 1 T T ;\n\n)", 31,
       "Not allowed: Message contains cyclic dependencies for multiplexor signal (error-linenumber "
       "may ignored), line 7, M::T"},
      {MESSAGE "SG_ S M" LAYOUT "\nSG_ T m1M" LAYOUT "\nSG_MUL_VAL_ 1 T S ;\n\n)", 1,
       ", line 7, error: syntax"}};
  for (const auto& c : cases) {
    Database database;
    EXPECT_EQ(database.read(c.text), c.number) << c.text;
    EXPECT_EQ(database.reported, c.reported + "\n") << c.text;
  }
}

TEST(ReaderErrors, WhatWasLinkedStaysAndTheNextReadGoesOn) {
  Database database;
  EXPECT_EQ(database.read("VERSION \"1\" BS_: 1:2,3\nBU_: A\nVAL_TABLE_ T 0 \"a\" ;\n"
                          "BO_ 1 M: 8 A SG_ S m1" LAYOUT "\nBO_ 2 N: 8 B\n SG_ X" LAYOUT
                          ",C\n SG_ Y : 0|0 (1,0) [0|0] \"\" D\n SG_ Z" LAYOUT "\n"),
            12u);
  const std::string first =
      "version \"1\"\ntiming 1:2,3\nnode A\nnode C\ntable T 0\"a\"\n"
      "message 1 M 8 from A[A]\nsignal S 0|8 flags 0 (1,0) [0|0] \"\" to [A] 1-1\n";
  EXPECT_EQ(describe(database), first);
  EXPECT_EQ(database.read("VERSION \"2\" BS_: 4:5,6 7:8,9\nBU_: B A\nVAL_TABLE_ T ;\n"
                          "BO_ 1 O: 8 A SG_ U M" LAYOUT "\nCM_ SG_ 1 S \"old\"; CM_ \"new\";"
                          "BA_DEF_ SG_ \"I\" INT; BA_ \"I\" SG_ 1 S 1; CAT_DEF_ 1 K 2;"
                          "FILTER 1 CAT_ 1 BU_ ;"),
            0u);
  const std::string second =
      "version \"2\"\ncomment \"new\"\ntiming 4:5,6\ntiming 7:8,9\ntiming 1:2,3\n"
      "node A\nnode C\nnode B\ntable T 0\"a\"\ntable T\nmessage 1 M 8 from A[A]\n"
      "signal S 0|8 flags 0 (1,0) [0|0] \"\" to [A] 1-1 {I=1} // \"old\"\nmessage 1 O 8 from A[A]\n"
      "signal U 0|8 flags 4 (1,0) [0|0] \"\" to [A]\ndefinition I of 3 INT [0|0] 0\n"
      "category 1 K 2\nfilter 1 K []\n";
  EXPECT_EQ(describe(database), second);
  EXPECT_EQ(database.read(FRAME "CM_ BO_ 1 \"again\"; BA_ \"I\" SG_ 1 S 2; CAT_ BU_ C 1;"
                                "SIG_VALTYPE_ 9 S : 1;"),
            20u);
  std::string third = second;
  third.replace(third.find("node C"), 6, "node C in K");
  third.replace(third.find("from A[A]"), 9, "from A[A] // \"again\"");
  third.replace(third.find("{I=1}"), 5, "{I=1 I=2}");
  EXPECT_EQ(describe(database), third);
}

TEST(ReaderErrors, FilesThatAreNotThere) {
  for (const char* path : {"missing/no.dbc", ".", "", static_cast<const char*>(nullptr)}) {
    Database database;
    attr_def* const kept = database.slots[2] = database.definitions = zelk_create_attr_def();
    EXPECT_EQ(database.read_file(path), path ? 16u : 0u);
    const std::string detail = path && *path ? std::string(", ") + path : "";
    EXPECT_EQ(database.reported, path ? "database: not found" + detail + "\n" : "");
    EXPECT_STREQ(database.version, "");
    EXPECT_EQ(database.slots[2], kept);
    EXPECT_EQ(database.definitions, kept);
  }
}

TEST(ReaderErrors, SlotsHoldDefinitionsUntilAFileIsAccepted) {
  const std::string definition = FRAME "BA_DEF_ BU_ \"SystemNodeLongSymbol\" STRING ;\n";
  Database database;
  EXPECT_EQ(database.read(definition + "X"), 27u);
  attr_def* const left = database.definitions;
  ASSERT_NE(left, nullptr);
  EXPECT_EQ(database.slots[2], left);
  symblk stale{};  // what a careless host leaves in a slot
  database.slots[0] = reinterpret_cast<attr_def*>(&stale);
  EXPECT_EQ(database.read(definition + "BA_DEF_ \"D\" INT;"), 0u);
  EXPECT_EQ(describe(database), "node A\ndefinition D of 0 INT [0|0] 0\n");
  for (const attr_def* slot : database.slots) EXPECT_EQ(slot, nullptr);
  EXPECT_EQ(database.read(definition + "BA_DEF_SGTYPE_ \"SystemNodeLongSymbol\"; X"), 27u);
  EXPECT_EQ(database.slots[2], nullptr) << "it is one for signal types now";
}

}  // namespace

// Mends, each with what is left of the text; every mended text is read strictly, and needs no
// second repair.

#include "check/repair/repair.hpp"

#include <gtest/gtest.h>

#include "check/statements/edits.hpp"
#include "support/files.hpp"
#include "support/paths.hpp"
#include "support/quoted.hpp"

using namespace zelk::check;

namespace {

/// Three lines, then the text of the case. Apostrophes stand for quotes.
const std::string kHead = "BS_:\nBU_: A B\nBO_ 1 M: 8 A\n SG_ s : 0|8@1+ (1,0) [0|1] '' B\n";

struct Case {
  std::string text;
  std::string mended;           ///< empty: cannot be mended
  const char* mends = nullptr;  ///< names, where they are not plain
};

std::string names_of(const Mended& mended) {
  std::string names;
  for (const Finding& finding : mended.mends.list)
    names += (names.empty() ? "" : " ") + std::string(finding.rule);
  return names;
}

void check(const Case& each) {
  SCOPED_TRACE(each.text);
  const std::string text = quoted(each.text);
  const Mended mended = repair(Source("t.dbc", text), {});
  const bool is_same = quoted(each.mended) == text;
  const Outcome outcome = each.mended.empty() ? Outcome::kUnmendable
                          : is_same           ? Outcome::kUnneeded
                                              : Outcome::kMended;
  EXPECT_EQ(mended.outcome, outcome);
  EXPECT_EQ(mended.text, quoted(each.mended));
  if (each.mends) {
    EXPECT_EQ(names_of(mended), each.mends);
  }
  for (const Finding& finding : mended.mends.list) EXPECT_LE(finding.span.end, text.size());
  EXPECT_EQ(each.mended.empty(), !mended.faults.list.empty());
  const bool is_done =
      each.mended.empty() || repair(Source("t.dbc", mended.text), {}).outcome == Outcome::kUnneeded;
  EXPECT_TRUE(is_done);
}

TEST(Mends, Forms) {
  const std::string tail = "CM_ 'x';\n";
  const Case cases[] = {
      {kHead + tail, kHead + tail},
      {kHead + "CM_ SG_ 1 s 'x'\n", kHead + "CM_ SG_ 1 s 'x';\n"},
      {kHead + "CM_ 'a 'b' c';;\n", kHead + "CM_ 'a \\'b\\' c';\n"},
      {kHead + "CM_ BO_ 1 a b';\nCM_ 'x", kHead + "CM_ BO_ 1 'a b';\nCM_ 'x';"},
      // Where a text ends behind a keyword, that begins a statement with the quote that is added.
      {kHead + "CM_ 'x\nBA_;\nCM_ 'y';\n", kHead + "CM_ 'x';\nCM_ 'y';\n"},
      // No semicolon closes a unit: with it, what tells that would be dropped.
      {kHead + " SG_ t : 8|8@1+ (1,0) [0|1] 'a\nBS_ b';B\n SG_ u : 8|8@1+ (1,0) [0|1] '' B\n",
       kHead + " SG_ t : 8|8@1+ (1,0) [0|1] 'a' Ostrel__XXX\n"
               "\n SG_ u : 8|8@1+ (1,0) [0|1] '' B\n"},
      // A word that is added in front of a mark does not become one with the next word.
      {kHead + " SG_ t : 8|8@1+ (1,0) [0|1] ''(SG_ u : 8|8@1+ (1,0) [0|1] '' B\n",
       kHead + " SG_ t : 8|8@1+ (1,0) [0|1] '' Ostrel__XXX SG_ u : 8|8@1+ (1,0) [0|1] '' B\n",
       "stray missing"},
      // What the list has behind a name that it must not announce would come into the list.
      {"BS_:\nBU_: A\nBO_ 1 M: 8 A\nNS_ :\n A :\nA ;\n", "NS_ :\n \nBS_:\nBU_: A\nBO_ 1 M: 8 A\n",
       "stray order stray order"},
      {"NS_ : e\n 9 e A ;\nBS_:\nBU_: A\nBO_ 1 M: 8 A\n",
       "NS_ : e\n \nBS_:\nBU_: A\nBO_ 1 M: 8 A\n", "stray stray"},
      {"NS_ : e\nNS_ : ANodeWhoseNameIsLongerThanThirtyTwo\nBS_:\nBU_: "
       "ANodeWhoseNameIsLongerThanThirty\n",
       "NS_ : e\nBS_:\nBU_: ANodeWhoseNameIsLongerThanThirty\n"},
      {"BS_:\nNS_ : e\nBS_:\ne A ;\nBU_: A\nBO_ 1 M: 8 A\n",
       "NS_ : e\nBS_:\nBU_: A\nBO_ 1 M: 8 A\n"},
      // What is added to a statement goes with it.
      {"VERSION ''\n" + kHead + "VERSION '", "VERSION ''\n" + kHead},
      // A keyword is no value, where a name may be one.
      {"BS_:\nBU_: A\nEV_ V: 1 [0|0] '' 0 1 DUMMY_NODE_OSTREL0 A;\n"
       "BA_DEF_REL_ BU_EV_REL_ 'R' STRING ;\nBA_REL_ 'R' BU_EV_REL_ A V CM_;\n",
       "BS_:\nBU_: A\nEV_ V: 1 [0|0] '' 0 1 DUMMY_NODE_OSTREL0 A;\n"
       "BA_DEF_REL_ BU_EV_REL_ 'R' STRING ;\nBA_REL_ 'R' BU_EV_REL_ A V 'CM_';\n",
       "unquoted-text"},
      {kHead + "?\nFOO_ 1;\n" + tail, kHead + tail, "stray"},
      {kHead + "CM_ 'a\xFFz';\n\xFF" + tail, kHead + "CM_ 'a\xFFz';\n " + tail, "end-byte"},
      {"BS_:\rBU_: A\r// c", "BS_:\nBU_: A\n// c\n", "line-ends final-line-feed"},
      {"BS_ :\rBU_: A B ;\rBO_ 1 M: 8 A '\nN", "BS_ :\nBU_: A B\nBO_ 1 M: 8 A ",
       "stray surplus line-ends"},
      // Where a name is announced, the reader would skip an odd one that begins with it.
      {"SG_ U \xFEU:2|2 BS_:\nBU_: A\nNS_: U\nBO_ 1 M: 8 A\n",
       "NS_:\n BS_:\nBU_: A\nBO_ 3221225472 Signals_without_message: 0 Ostrel__XXX\n"
       " SG_ U_thU : 2|2@1+ (1,0) [0|0] '' Ostrel__XXX\nBO_ 1 M: 8 A\n"},
      {"BO_ 31FOO_: 8 A\nBS_:\nBU_: A\nNS_ : FOO_\n", "NS_ :\nBS_:\nBU_: A\nBO_ 31FOO_: 8 A\n"},
      {std::string("BS_:\nBU_: A\0\0\nCM_ 'a\0b';\n", 26), "BS_:\nBU_: A\nCM_ 'a b';\n"},
      // A blank stays where two would become one: a byte that is space, and a keyword.
      {std::string("BS_:\nBU_: A\nBO_\0\xFE\x31 M: 8 A\nCM_ 'a\\\0';\n", 37),
       "BS_:\nBU_: A\nBO_ \xFE\x31 M: 8 A\nCM_ 'a\\ ';\n"},
      // What a signal or a message lacks; nothing is made up for place, order and scale.
      {kHead + " SG_ a : 8|8@1-\n SG_ b : 8|8@1+ (0,5,0) [0|0x10] B,\n",
       kHead + " SG_ a : 8|8@1- (1,0) [0|0] '' Ostrel__XXX\n SG_ b : 8|8@1+ (0.5,0) [0|16] '' B\n"},
      {kHead + " SG_ a : 8|8@ (1,0) [0|1] '' B\n", ""},
      {kHead + " SG_ a : 88@1+ (1,0) [0|1] '' B\n", ""},
      {kHead + "BO_ 2 N: A\nBO_ 3 : 4 A\nBO_ 4 O\nBO_ ",
       kHead + "BO_ 2 N: 8 A\nBO_ 3 Message_3: 4 A\nBO_ 4 O: 8 Ostrel__XXX\n"},
      // A keyword in what is left for later begins no statement with what comes to stand behind it.
      {kHead + "BO_ BA_:BO_ 2 N: 3 A\n", kHead + "BO_ 2 N: 3 A\n"},
      {kHead + " SG_ BA_DEF_ BA_DEF_''BO_ 3 N: 3 A\n", kHead + " BO_ 3 N: 3 A\n"},
      {kHead + " SG_ t : 8|8@1+(\nx 1 BA_'A\nBO_ 6 N: 0 A\n",
       kHead + " SG_ t : 8|8@1+ (0,1) [0|0] '' Ostrel__XXX\nBO_ 6 N: 0 A\n"},
      {kHead + "BO_\n SG_ t : 8|8@1+ (1,0) [0|1] '' B\n", ""},
      {kHead + "BO_.2 N: 8 A\n", kHead + "BO_ 0 N: 8 A\n", "odd-number"},
      {"'\rSIG_GROUP_'BO_ 0 I: 6 A\rBS_:\rBU_:A\r", "BS_:\nBU_:A\n"},
      {"BS_:\nBU_:\n SG_ s : 0|8@1+ (1,0) [0|1] '' B\n",
       "BS_:\nBU_:\n BO_ 3221225472 Signals_without_message: 0 Ostrel__XXX\n"
       " SG_ s : 0|8@1+ (1,0) [0|1] '' B\n"},
  };
  for (const Case& each : cases) check(each);
}

// Mends that would lose a message are none.
TEST(Mends, LoseNoMessage) {
  const std::string text = content_of(ZELK_SOURCE_DIR "/fuzz/corpus/repair/message_within_a_text");
  const Mended mended = repair(Source("t.dbc", text), {});
  EXPECT_EQ(mended.outcome, Outcome::kUnmendable);
  EXPECT_TRUE(mended.mends.list.empty());
  EXPECT_FALSE(mended.faults.list.empty());
}

TEST(Mends, OrderAndSections) {
  const std::string message = " // of M\n\nBO_ 1 M: 8 A\n SG_ s : 0|8@1+ (1,0) [0|1] '' B\n";
  const Case cases[] = {
      {"// head\n\nBO_ 1 M: 8 A\n", "// head\n\nBS_:\n\nBU_: A\n\nBO_ 1 M: 8 A\n"},
      {"BU_: A\nBS_:\nCM_ 'x'; // c\n// of M\nBO_ 1 M: 8 A\nBA_ 'q' 1;\nBA_DEF_ 'q' INT 0 1;",
       "BS_:\nBU_: A\n// of M\nBO_ 1 M: 8 A\nCM_ 'x'; // c\nBA_DEF_ 'q' INT 0 1;\nBA_ 'q' 1;\n"},
      {"BS_:\r\nBU_: A\r\nCM_ 'x';\r\nBO_ 1 M: 8 A",
       "BS_:\r\nBU_: A\r\nBO_ 1 M: 8 A\r\nCM_ 'x';\r\n"},
      {"VERSION ''\nBS_:\nBU_: A\nVERSION '2'\nBS_:\nBU_: B A\nBO_ 1 M: 8 A\n",
       "VERSION ''\nBS_:\nBU_: A B\nBO_ 1 M: 8 A\n"},
      // "A" announced would hide the message behind the one that it sends.
      {"NS_ :\n\tCM_\nBS_:\nBU_: A\nNS_ : BA_ A F_\nBO_ 1 M: 8 A\nBO_ 2 N: 8 A\nCM_ 'x';\n",
       "NS_ :\n\tCM_ F_\nBS_:\nBU_: A\nBO_ 1 M: 8 A\nBO_ 2 N: 8 A\nCM_ 'x';\n"},
  };
  for (const Case& each : cases) check(each);
}

TEST(Mends, Names) {
  const Case cases[] = {
      {kHead + " SG_ s-1 : 0|8@1+ (1,0) [0|1] '' B\n SG_ s_1 : 0|8@1+ (1,0) [0|1] '' B\n"
               "CM_ SG_ 1 s-1 'x';\nVAL_ 1 s-1 0 'x' ;\nSIG_GROUP_ 1 g 1 : s s-1;\n",
       kHead + " SG_ s_1_2 : 0|8@1+ (1,0) [0|1] '' B\n SG_ s_1 : 0|8@1+ (1,0) [0|1] '' B\n"
               "CM_ SG_ 1 s_1_2 'x\nOriginal name: s-1';\nVAL_ 1 s_1_2 0 'x' ;\n"
               "SIG_GROUP_ 1 g 1 : s s_1_2;\n"},
      {kHead + " SG_ Gr\xF6\xDF"
               "e m1 : 0|8@1+ (1,0) [0|1] '' INT\n",
       kHead + " SG_ Groesse m1 : 0|8@1+ (1,0) [0|1] '' INT_\n"
               "CM_ SG_ 1 Groesse 'Original name: Gr\xF6\xDF"
               "e';\nCM_ BU_ INT_ 'Original name: INT';\n"},
      {kHead + " SG_ a 2 big : 0|8@1+ (1,0) [0|1] '' B\nCM_ SG_ 1 a 2 big 'x';\n",
       kHead + " SG_ a_2_big : 0|8@1+ (1,0) [0|1] '' B\nCM_ SG_ 1 a_2_big 'x\n"
               "Original name: a 2 big';\n"},
      {kHead + " SG_ \n SG_ 2 fast : 0|8@1+ (1,0) [0|1] '' B\n SG_ SG_ : 0|8@1+ (1,0) [0|1] '' B\n"
               "CM_ SG_ 1 SG_ 'x';\nVAL_ 1 2 fast 0 'x' ;\n",
       kHead +
           " SG_ _2_fast : 0|8@1+ (1,0) [0|1] '' B\n SG_ SG__ : 0|8@1+ (1,0) [0|1] '' B\n"
           "CM_ SG_ 1 SG__ 'x\nOriginal name: SG_';\nCM_ SG_ 1 _2_fast 'Original name: 2 fast';\n"
           "VAL_ 1 _2_fast 0 'x' ;\n"},
      {kHead + "ENVVAR_DATA_ BA_REL_: 4;\n", kHead + "ENVVAR_DATA_ BA_REL__: 4;\n",
       "keyword-name unknown-variable"},
      // A signal type needs no end: a keyword behind it may begin the next one.
      {kHead + "SGTYPE_ x-y: 8@1+ (1,0) [0|1] '' SGTYPE_ u: 8@1+ (1,0) [0|1] '' 5 BA_;\n",
       kHead + "SGTYPE_ x_y: 8@1+ (1,0) [0|1] '' SGTYPE_ u: 8@1+ (1,0) [0|1] '' 5;\n"
               "CM_ SGTYPE_ x_y 'Original name: x-y';\n",
       "odd-name keyword-name unknown-table"},
  };
  for (const Case& each : cases) check(each);
}

TEST(Mends, ReferencesAndValues) {
  const std::string tail = "CM_ 'x';\n";
  const Case cases[] = {
      {kHead + "CM_ BO_ 2 'y';\nCM_ SG_ 1 t 'y';\nVAL_ 1 t 1 'y' ;\n" + tail, kHead + tail,
       "unknown-message unknown-signal unknown-signal"},
      {kHead + "CM_ BU_ C 'y';\nCM_ EV_ v 'y';\n",
       "BS_:\nBU_: A B C\n" + kHead.substr(kHead.find("BO_")) + "CM_ BU_ C 'y';\n"},
      {kHead + " SG_ a M : 8|8@1+ (1,0) [0|1] '' B\n SG_ b x1 : 8|0@9+ (1,0) [0|1] '' B\n",
       kHead + " SG_ a M : 8|8@1+ (1,0) [0|1] '' B\n SG_ b m1 : 8|1@1+ (1,0) [0|1] '' B\n"},
      {kHead + " SG_ a m0M : 8|8@1+ (1,0) [0|1] '' B\n SG_ b m1M : 8|8@1+ (1,0) [0|1] '' B\n"
               "SG_MUL_VAL_ 1 a b 1-1;\nSG_MUL_VAL_ 1 b a 1-1;\n",
       kHead + " SG_ a m0M : 8|8@1+ (1,0) [0|1] '' B\n SG_ b m1M : 8|8@1+ (1,0) [0|1] '' B\n"
               "SG_MUL_VAL_ 1 b a 1-1;\n",
       "circle"},
  };
  for (const Case& each : cases) check(each);
}

TEST(Mends, Options) {
  const std::string text = quoted(
      "BS_:\nBU_: A None B\nBO_ 1 M: 8 None\n SG_ s : 0|8@1+ (1,0) [0|1] '' None,A,None\n"
      "BO_TX_BU_ 1 : A,None;\nCM_ BU_ None 'x';\n");
  const Mended mended = repair(Source("t.dbc", text), {{}, {"None"}});
  EXPECT_EQ(mended.text, quoted("BS_:\nBU_: A B\nBO_ 1 M: 8 Ostrel__XXX\n"
                                " SG_ s : 0|8@1+ (1,0) [0|1] '' A\nBO_TX_BU_ 1 : A;\n"));
  EXPECT_EQ(repair(Source("t.dbc", "BU_: A\n"), {{"missing-bs"}, {}}).outcome,
            Outcome::kUnmendable);
}

/// The places are those of the decoded text, through all rounds.
TEST(Mends, PlacesInUtf16) {
  std::string text = "\xFF\xFE";
  for (const char c : std::string("BU_: A\nBO_ x\n?\nBO_ 1 : 8 A\n")) text += {c, '\0'};
  const Mended mended = repair(Source("t.dbc", text), {});
  EXPECT_EQ(mended.source.text(), "BU_: A\nBO_ x\n?\nBO_ 1 : 8 A\n");
  ASSERT_EQ(mended.outcome, Outcome::kUnmendable);
  EXPECT_EQ(mended.faults.list[0].span.begin, 11u);
}

TEST(Edits, MoveWithTheirPlaces) {
  Edits edits;
  edits.insert_behind(3, "<");
  edits.insert_before(3, ">");
  edits.replace(4, 6, "-");
  edits.erase(5, 6);  // within what is replaced
  const Part parts[] = {{3, 7}, {7, 7, "+"}, {0, 3}};
  Composition composition = edits.apply("abcdefg", parts);
  EXPECT_EQ(composition.text(), ">d-g+abc<");
  const std::uint32_t origins[] = {3, 3, 4, 6, 7, 0, 1, 2, 3};
  for (std::size_t i = 0; i < std::size(origins); ++i) EXPECT_EQ(composition.origin(i), origins[i]);
}

}  // namespace

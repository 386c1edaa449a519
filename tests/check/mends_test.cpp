// Each mend by its name: what is left of the text, where and how it is told, and what becomes of
// the file when it is switched off.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "check/includes/mend.hpp"
#include "support/quoted.hpp"

using namespace zelk::check;

namespace {

/// Four lines, then the text of a case. Apostrophes stand for quotes.
const std::string kHead = "BS_:\nBU_: A B\nBO_ 1 M: 8 A\n SG_ s : 0|8@1+ (1,0) [0|1] '' B\n";
const std::string kSignal = " : 0|8@1+ (1,0) [0|1] '' B\n";

/// "LINE:COLUMN: MESSAGE" of each mend of this name, parted by line feeds; with apostrophes.
std::string told(const MendedFile& mended, std::string_view rule) {
  std::string all;
  for (const Finding& finding : mended.mends.list) {
    if (finding.rule != rule) continue;
    const auto [line, column] = mended.source.position(finding.span.begin);
    all += (all.empty() ? "" : "\n") + std::to_string(line) + ':' + std::to_string(column) + ": " +
           finding.message;
  }
  std::ranges::replace(all, '"', '\'');
  return all;
}

struct Case {
  const char* rule;
  std::string text;    ///< behind `kHead`
  std::string mended;  ///< likewise
  std::string told;
  std::string kept = "";  ///< what is left of the text without this mend; empty: it is refused
};

/// Other mends help as well as they can.
const std::string kAnything = "*";

void check(const std::string& head, const Case& c) {
  SCOPED_TRACE(c.rule + (' ' + c.text));
  const MendedFile mended = mend(Source("t.dbc", quoted(head + c.text)), {});
  EXPECT_EQ(mended.outcome, Outcome::kMended);
  EXPECT_EQ(mended.text, quoted(head + c.mended));
  EXPECT_EQ(told(mended, c.rule), c.told);
  MendOptions options;
  options.kept.insert(c.rule);
  const MendedFile kept = mend(Source("t.dbc", quoted(head + c.text)), options);
  EXPECT_EQ(told(kept, c.rule), "");
  if (c.kept == kAnything) return;
  EXPECT_EQ(kept.text, c.kept.empty() ? "" : quoted(head + c.kept));
  EXPECT_EQ(kept.outcome == Outcome::kUnmendable, c.kept.empty());
}

TEST(MendNames, OfForms) {
  const std::string long_name(1100, 'n');
  const Case cases[] = {
      {"final-line-feed", "// x", "// x\n", "5:5: line feed added at the end of the file"},
      {"end-byte",
       "\xFF \xFF"
       "CM_ 'a\xFF';\n",
       "   CM_ 'a\xFF';\n", "5:1: 2 bytes 0xFF removed, at which reading would end",
       "\xFF \xFF"
       "CM_ 'a\xFF';\n"},
      {"open-text", "CM_ BU_ A 'a\nb;\nCM_ BU_ B 'c';\n", "CM_ BU_ A 'a\nb';\nCM_ BU_ B 'c';\n",
       "6:2: quote added at the end of a text that had none"},
      {"odd-space", "CM_ BU_ A\xA0'x';\n", "CM_ BU_ A \xA0'x';\n",
       "5:10: plain blank added between a name and a blank outside ASCII"},
      {"odd-space", " SG_ u : 0|8@1+ (1,0) [0|1] '' B\xE4\xF6SG_ t\xE4 : 8|8@1+ (1,0) [0|1] '' B\n",
       " SG_ u : 0|8@1+ (1,0) [0|1] '' B \xE4\xF6SG_ tae : 8|8@1+ (1,0) [0|1] '' B\n"
       "CM_ SG_ 1 tae 'Original name: t\xE4';\n",
       "5:33: plain blank added between a name and a blank outside ASCII", kAnything},
      {"missing", "CM_ BU_ A 'x' // c\nCM_ 'y';\n", "CM_ BU_ A 'x'; // c\nCM_ 'y';\n",
       "5:14: ';' behind the comment added"},
      {"missing", " SG_ t : 8|8@1+ (1,0) [0|1] ''SG_ u : 0|8@1+ (1,0) [0|1] '' B\n",
       " SG_ t : 8|8@1+ (1,0) [0|1] '' Ostrel__XXX SG_ u : 0|8@1+ (1,0) [0|1] '' B\n",
       "5:31: 'Ostrel__XXX' added for the receivers' names", kAnything},
      {"surplus", "CM_ BU_ A 'x' 7;;\n", "CM_ BU_ A 'x';\n",
       "5:15: surplus `7` removed\n5:17: surplus `;` removed"},
      {"stray", "hello world;\nCM_ 'x';\n", "CM_ 'x';\n",
       "5:1: text dropped, it begins no statement: `hello world;`"},
      {"unreadable", "CM_ BU_ ;\nCM_ 'x';\n", "CM_ 'x';\n",
       "5:1: comment of the database dropped, expected the object's name: `CM_ BU_ ;`"},
      {"odd-number", "BO_ 0x10 N: 8.0 A\n SG_ t : 0|8@1+ (1,5,0) [-.5|+7] '' B\n",
       "BO_ 16 N: 8 A\n SG_ t : 0|8@1+ (1.5,0) [-0.5|+7] '' B\n",
       "5:5: `0x10` spelled 16\n5:13: `8.0` spelled 8\n6:18: `1,5` spelled 1.5\n"
       "6:27: `.5` spelled 0.5"},
      {"unquoted-text", "VAL_ 1 s 0 off 1 on ;\n", "VAL_ 1 s 0 'off' 1 'on' ;\n",
       "5:12: quotes added around `off`\n5:18: quotes added around `on`"},
      {"comment-object", "CM_ 1 s 'x';\nCM_ A 'y';\nCM_ 1 'z';\n",
       "CM_ SG_ 1 s 'x';\nCM_ BU_ A 'y';\nCM_ BO_ 1 'z';\n",
       "5:5: 'SG_' added, the kind of the object\n6:5: 'BU_' added, the kind of the object\n"
       "7:5: 'BO_' added, the kind of the object"},
      {"order", "CM_ 'x';\nBO_ 2 N: 8 A\n", "BO_ 2 N: 8 A\nCM_ 'x';\n",
       "5:1: comment of the database moved to the place of 'CM_' statements, behind 'BO_'"},
      {"too-long", "BO_ 2 " + long_name + ": 8 A\nBO_ 3 " + std::string(128, 'n') + ": 8 A\n",
       "BO_ 2 " + std::string(126, 'n') + "_2: 8 A\nBO_ 3 " + std::string(128, 'n') +
           ": 8 A\nCM_ BO_ 2 'Original name: " + long_name + "';\n",
       "5:7: `" + std::string(300, 'n') + "...` renamed to " + std::string(126, 'n') + "_2"},
  };
  for (const Case& c : cases) check(kHead, c);
}

TEST(MendNames, OfFilesAndSections) {
  const std::string bus = "BS_:\nBU_: A\n";
  const Case cases[] = {
      {"missing-bs", "// c\n\nBU_: A\n", "// c\n\nBS_:\n\nBU_: A\n",
       "3:1: `BS_:` added, which no file can do without"},
      {"missing-bu", "BS_:\nBO_ 1 M: 8 A\nBO_ 2 N: 8 Ostrel__XXX\n",
       "BS_:\nBU_: A\n\nBO_ 1 M: 8 A\nBO_ 2 N: 8 Ostrel__XXX\n",
       "2:1: `BU_: A` added, which no file can do without"},
      {"doubled-section", "BS_:\nBU_:BO_ 1 M: 8 A\nBU_: A\n", "BS_:\nBU_: A BO_ 1 M: 8 A\n",
       "3:1: second 'BU_' merged into the first: A"},
      {"doubled-section", bus + "BU_: B A // c\n", "BS_:\nBU_: A B\n// c\n",
       "3:1: second 'BU_' merged into the first: B"},
      {"doubled-section", "VERSION '1'\nVERSION '2'\nBS_: 500 : 1,2\nBS_: 250 : 1,2\nBU_: A\n",
       "VERSION '1'\nBS_: 500 : 1,2 250 : 1,2\nBU_: A\n",
       "2:1: statement 'VERSION' dropped, the file has one already: `VERSION '2'`\n"
       "4:1: second 'BS_' merged into the first: 250 : 1,2"},
  };
  for (const Case& c : cases) check("", c);
}

TEST(MendNames, OfReferencesAndValues) {
  const std::string definitions = "BA_DEF_ 'n' INT 0 9;\nBA_DEF_ 'e' ENUM 'a','b';\n";
  const Case cases[] = {
      {"unknown-message", "CM_ BO_ 2 'a; b';\nCM_ 'y';\n", "CM_ 'y';\n",
       "5:1: comment of message 2 dropped, there is no message 2: `CM_ BO_ 2 'a; b';`"},
      {"unknown-message", "BO_ 2147483650 N: 8 A\nCM_ BO_ 2 'y';\n",
       "BO_ 2147483650 N: 8 A\nCM_ BO_ 2147483650 'y';\n",
       "6:9: message 2 taken for 2147483650, the one with extended frames"},
      {"unknown-signal", "VAL_ 1 t 0 'x' ;\nSIG_GROUP_ 1 g 1 : s t;\n", "SIG_GROUP_ 1 g 1 : s;\n",
       "5:1: value descriptions of signal t of message 1 dropped, there is no signal t: "
       "`VAL_ 1 t 0 'x' ;`\n6:22: `t` removed, there is no signal t"},
      {"unknown-variable", "CM_ EV_ v 'x';\n", "",
       "5:1: comment of environment variable v dropped, there is no environment variable v: "
       "`CM_ EV_ v 'x';`"},
      {"unknown-type", "SIG_TYPE_REF_ 1 s : t;\n", "",
       "5:1: type of signal s of message 1 dropped, there is no signal type t: "
       "`SIG_TYPE_REF_ 1 s : t;`"},
      {"unknown-category", "CAT_DEF_ 1 c 0;\nCAT_ BU_ A 2;\n", "CAT_DEF_ 1 c 0;\n",
       "6:1: category of node A dropped, there is no category 2: `CAT_ BU_ A 2;`"},
      {"unknown-attribute",
       "BA_ 'n' BU_ A 3;\nBA_ 'n' BU_ B 7;\nBA_ 'x' 0.5;\nBA_DEF_DEF_ 'z' 1;\n",
       "BA_DEF_ 'x' FLOAT 0.5 0.5;\nBA_DEF_ BU_ 'n' INT 3 7;\nBA_ 'n' BU_ A 3;\nBA_ 'n' BU_ B 7;\n"
       "BA_ 'x' 0.5;\n",
       "5:5: definition `BA_DEF_ BU_ 'n' INT 3 7;` added for 2 values\n"
       "7:5: definition `BA_DEF_ 'x' FLOAT 0.5 0.5;` added for 1 value\n"
       "8:1: default of attribute 'z' dropped, there is no such attribute, and no object has a "
       "value of it: `BA_DEF_DEF_ 'z' 1;`"},
      {"wrong-value", definitions + "BA_ 'e' 'c';\nBA_ 'n' 'five';\nBA_ 'n' ' 5 ';\n",
       "BA_DEF_ 'n' INT 0 9;\nBA_DEF_ 'e' ENUM 'a','b','c';\nBA_ 'e' 'c';\nBA_ 'n' 5;\n",
       "7:9: 'c' added to the items of the attribute, which lacked it\n"
       "8:1: value of attribute 'n' for the database dropped, the attribute's values are numbers: "
       "`BA_ 'n' 'five';`\n9:9: `' 5 '` replaced by 5"},
      {"indicator", " SG_ t x1" + kSignal + " SG_ u M" + kSignal,
       " SG_ t x1" + kSignal + " SG_ u X" + kSignal,
       "6:8: multiplexor indicator `M` replaced by X"},
      {"segments", " SG_ t : 8|0@9+ (1,0) [0|1] '' B\n", " SG_ t : 8|1@1+ (1,0) [0|1] '' B\n",
       "5:12: `0` replaced by 1\n5:14: `9` replaced by 1"},
  };
  for (const Case& c : cases) check(kHead, c);
}

TEST(MendNames, OfNames) {
  std::string many, mended, comments, told, values, mended_values;
  for (int i = 10; i < 30; ++i) {
    const std::string n = std::to_string(i), last = std::to_string(39 - i);
    many.append(" SG_ a b ").append(n).append(kSignal);
    mended.append(" SG_ a_b_").append(n).append(kSignal);
    told.append(told.empty() ? "" : "\n").append(std::to_string(i - 5)).append(":6: `a b ");
    told.append(n).append("` renamed to a_b_").append(n).append(", and in 1 reference");
    comments.append("CM_ SG_ 1 a_b_").append(n);
    comments.append(" 'Original name: a b ").append(n).append("';\n");
    values.append("VAL_ 1 a b ").append(last).append(" 0 'x' ;\n");
    mended_values.append("VAL_ 1 a_b_").append(last).append(" 0 'x' ;\n");
  }
  const Case cases[] = {
      {"odd-name", many + values, mended + comments + mended_values, told},
      // The new name is taken, in the message or among the messages.
      {"odd-name",
       "BO_ 2 a-b: 8 A\n SG_ s-1" + kSignal + " SG_ s_1" + kSignal + " SG_ s.1" + kSignal +
           "BO_ 3 a_b: 8 A\n SG_ s-1" + kSignal,
       "BO_ 2 a_b_2: 8 A\n SG_ s_1_2" + kSignal + " SG_ s_1" + kSignal + " SG_ s_1_3" + kSignal +
           "BO_ 3 a_b: 8 A\n SG_ s_1" + kSignal +
           "CM_ BO_ 2 'Original name: a-b';\nCM_ SG_ 2 s_1_2 'Original name: s-1';\n"
           "CM_ SG_ 2 s_1_3 'Original name: s.1';\nCM_ SG_ 3 s_1 'Original name: s-1';\n",
       "5:7: `a-b` renamed to a_b_2\n6:6: `s-1` renamed to s_1_2\n8:6: `s.1` renamed to s_1_3\n"
       "10:6: `s-1` renamed to s_1"},
      // A name with blanks of which another one is the beginning.
      {"odd-name",
       " SG_ my own" + kSignal + " SG_ my own one" + kSignal +
           "CM_ SG_ 1 my own one 'x';\nCM_ SG_ 1 my own '';\n",
       " SG_ my_own" + kSignal + " SG_ my_own_one" + kSignal +
           "CM_ SG_ 1 my_own_one 'x\nOriginal name: my own one';\n"
           "CM_ SG_ 1 my_own 'Original name: my own';\n",
       "5:6: `my own` renamed to my_own, and in 1 reference\n"
       "6:6: `my own one` renamed to my_own_one, and in 1 reference"},
      // The reader takes the second word for an indicator; a real one stays what it is.
      {"odd-name",
       " SG_ Engine Speed" + kSignal + " SG_ Engine Load" + kSignal + " SG_ u m1x" + kSignal +
           " SG_ w Unit" + kSignal +
           "CM_ SG_ 1 Engine Load 'x';\nCM_ SG_ 1 w 'y';\n"
           "VAL_ 1 Engine Speed 0 'x' ;\nSIG_GROUP_ 1 g 1 : Engine Speed s Engine Load;\n",
       " SG_ Engine_Speed" + kSignal + " SG_ Engine_Load" + kSignal + " SG_ u m1x" + kSignal +
           " SG_ w M" + kSignal +
           "CM_ SG_ 1 Engine_Load 'x\nOriginal name: Engine Load';\n"
           "CM_ SG_ 1 w 'y';\nCM_ SG_ 1 Engine_Speed 'Original name: Engine Speed';\n"
           "VAL_ 1 Engine_Speed 0 'x' ;\nSIG_GROUP_ 1 g 1 : Engine_Speed s Engine_Load;\n",
       "5:6: `Engine Speed` renamed to Engine_Speed, and in 2 references\n"
       "6:6: `Engine Load` renamed to Engine_Load, and in 2 references",
       kAnything},
      // Wherever a node stands, and in the comment that counts, which is the last one.
      {"odd-name",
       "BO_ 2 N: 8 N-1\n SG_ t : 0|8@1+ (1,0) [0|1] '' N-1,B\nBO_TX_BU_ 1 : A,N-1;\n"
       "EV_ v: 0 [0|1] '' 0 1 DUMMY_NODE_OSTREL0 N-1;\nCM_ BU_ N-1 'x';\nCM_ BU_ N-1 'y';\n",
       "BO_ 2 N: 8 N_1\n SG_ t : 0|8@1+ (1,0) [0|1] '' N_1,B\nBO_TX_BU_ 1 : A,N_1;\n"
       "EV_ v: 0 [0|1] '' 0 1 DUMMY_NODE_OSTREL0 N_1;\nCM_ BU_ N_1 'x';\n"
       "CM_ BU_ N_1 'y\nOriginal name: N-1';\n",
       "5:12: `N-1` renamed to N_1, and in 5 references"},
      {"keyword-name", "BO_ 2 BO_: 8 A\n", "BO_ 2 BO__: 8 A\nCM_ BO_ 2 'Original name: BO_';\n",
       "5:7: `BO_` renamed to BO__"},
  };
  for (const Case& c : cases) check(kHead, c);
  check("", {"odd-name", "BS_:\nBU_: A N-1 A.b\nBO_ 1 M: 8 A-\n",
             "BS_:\nBU_: A N_1 A_b\nBO_ 1 M: 8 A\nCM_ BU_ N_1 'Original name: N-1';\n"
             "CM_ BU_ A_b 'Original name: A.b';\n",
             "2:8: `N-1` renamed to N_1\n2:12: `A.b` renamed to A_b"});
  // Of tables the first 32 characters count, where a number must stand.
  const std::string kept(32, 'T');
  const std::string numbered = std::string(30, 'T') + "_2";
  check("", {"odd-name",
             "BS_:\nBU_: A\nVAL_TABLE_ " + kept + "-1 0 'x' ;\nVAL_TABLE_ " + kept + "-2 0 'x' ;\n",
             "BS_:\nBU_: A\nVAL_TABLE_ " + kept + " 0 'x' ;\nVAL_TABLE_ " + numbered + " 0 'x' ;\n",
             "3:12: `" + kept + "-1` renamed to " + kept + "\n4:12: `" + kept + "-2` renamed to " +
                 numbered});
}

// What has the looks of its parts is kept of a statement that cannot be read.
TEST(MendNames, OfStatementsInAnotherForm) {
  const Case cases[] = {
      {"missing", " SG_ t 8|8@0- 2 -1.5 [-3|+4] V A B\n",
       " SG_ t: 8|8@0- (2, -1.5) [-3|+4] '' V, A, B\n",
       "5:7: ':' behind the signal's name added\n5:14: '(' in front of the factor added\n"
       "5:16: ',' between factor and offset added\n5:21: ')' behind the offset added\n"
       "5:29: '''' added for the unit, a text\n5:31: ',' between names added\n"
       "5:33: ',' between names added"},
      {"missing", "BO_ 2 N 8 A\n", "BO_ 2 N: 8 A\n", "5:8: ':' behind the message's name added"},
      {"unreadable", "BO_ 2: 8 A\n", "BO_ 2 Message_2: 8 A\n",
       "5:1: `BO_ 2: 8 A` rewritten as `BO_ 2 Message_2: 8 A`, expected the message's name"},
      {"unknown-attribute",
       "BA_ 'x' BO_ 1 1;\nBA_ 'y' BO_ 1 2.5;\nBA_ 'z' BO_ 1 2;\nBA_ 'z' SG_ 1 s 'a';\n"
       "BA_ 'z' BO_ 1 'a';\n",
       "BA_DEF_ BO_ 'x' INT 1 1;\nBA_DEF_ BO_ 'y' FLOAT 2.5 2.5;\nBA_DEF_ BO_ 'z' STRING;\n"
       "BA_DEF_ SG_ 'z' STRING;\nBA_ 'x' BO_ 1 1;\nBA_ 'y' BO_ 1 2.5;\nBA_ 'z' BO_ 1 2;\n"
       "BA_ 'z' SG_ 1 s 'a';\nBA_ 'z' BO_ 1 'a';\n",
       "5:5: definition `BA_DEF_ BO_ 'x' INT 1 1;` added for 1 value\n"
       "6:5: definition `BA_DEF_ BO_ 'y' FLOAT 2.5 2.5;` added for 1 value\n"
       "7:5: definition `BA_DEF_ BO_ 'z' STRING;` added for 2 values\n"
       "8:5: definition `BA_DEF_ SG_ 'z' STRING;` added for 1 value"},
      {"indicator", " SG_ t mux1" + kSignal + " SG_ u x" + kSignal,
       " SG_ t mux1" + kSignal + " SG_ u M" + kSignal,
       "6:8: multiplexor indicator `x` replaced by M"},
      {"odd-name", "BO_ 2 N: 8 Node-1\nBO_ 3 O: 8 Node_1\n",
       "BO_ 2 N: 8 Node_1_2\nBO_ 3 O: 8 Node_1\nCM_ BU_ Node_1_2 'Original name: Node-1';\n",
       "5:12: `Node-1` renamed to Node_1_2"},
  };
  for (Case c : cases) {
    c.kept = kAnything;
    check(kHead, c);
  }
}

/// The text of a file in UTF-16, with or without its mark.
std::string utf16(const std::string& text, bool is_little, bool has_mark) {
  std::string bytes = !has_mark ? "" : is_little ? "\xFF\xFE" : "\xFE\xFF";
  for (const char c : text) bytes += is_little ? std::string{c, '\0'} : std::string{'\0', c};
  return bytes;
}

TEST(MendNames, OfUtf16) {
  const std::string text = quoted(kHead + "CM_ 'IMPORT x';\n");
  MendOptions kept;
  kept.kept.insert("utf-16");
  for (const bool is_little : {true, false}) {
    for (const bool has_mark : {true, false}) {
      const std::string bytes = utf16(text, is_little, has_mark);
      const MendedFile mended = mend(Source("t.dbc", bytes), {});
      EXPECT_EQ(mended.outcome, Outcome::kMended);
      EXPECT_EQ(mended.text, text);
      EXPECT_EQ(told(mended, "utf-16"), "1:1: text decoded from UTF-16 to UTF-8");
      EXPECT_EQ(mended.mends.count, 1u);
      EXPECT_EQ(mended.notes.count, 1u);  // the comment names a file
      EXPECT_TRUE(has_mark ? mend(Source("t.dbc", bytes), kept).text.empty() : true);
    }
  }
  std::string odd = utf16(quoted("BU_: A\nCM_ '"), true, true);
  odd += std::string("\xAC\x20\x3D\xD8\x97\xDE\x00\xD8\x00\xDC\x3D\xD8", 12) +
         utf16("\";\n", true, false) + 'x';
  EXPECT_EQ(mend(Source("t.dbc", odd), {}).text,
            "BS_:\n\nBU_: A\nCM_ \"\u20AC\U0001F697\U00010000\uFFFD\";\n");
}

TEST(MendNames, NoNode) {
  const std::string text = quoted(
      "BS_:\r\nBU_: X A\r\nBO_ 1 M: 8 X\r\n SG_ s : 0|8@1+ (1,0) [0|1] '' X,X,A,X\r\n"
      " SG_ t : 8|8@1+ (1,0) [0|1] '' X\r\nBO_TX_BU_ 1 : X;\r\n"
      "EV_ v: 0 [0|1] '' 0 1 DUMMY_NODE_OSTREL0 X,A;\r\nCM_ BU_ X 'x';\r\n");
  MendOptions options;
  options.no_node.insert("X");
  const MendedFile mended = mend(Source("t.dbc", text), options);
  EXPECT_EQ(mended.text, quoted("BS_:\r\nBU_: A\r\nBO_ 1 M: 8 Ostrel__XXX\r\n"
                                " SG_ s : 0|8@1+ (1,0) [0|1] '' A\r\n"
                                " SG_ t : 8|8@1+ (1,0) [0|1] '' Ostrel__XXX\r\n"
                                "EV_ v: 0 [0|1] '' 0 1 DUMMY_NODE_OSTREL0 A;\r\n"));
  EXPECT_EQ(mended.mends.list.front().message, "node X stands for no node, taken out of 9 places");
  options.kept.insert("no-node");
  EXPECT_EQ(mend(Source("t.dbc", text), options).text, text);
}

}  // namespace

#include <gtest/gtest.h>

#include <string>

#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

const std::string kNetwork = bytes_of(ZELK_SOURCE_DIR "/tests/tools/edit.dbc");

TEST(Edit, Edits) {
  const std::string name(40, 'n');
  const struct {
    std::string edits;
    std::string told;
    std::string difference;  // from the file as it was
  } cases[] = {
      {"--rename-message Motion Move --set-attribute message:Move Cycle 0x10 --rename-message 0x64 "
       "Go",
       "message 0x064 Motion: renamed to Move\nmessage 0x064 Move: attribute \"Cycle\" = 16\n"
       "message 0x064 Move: renamed to Go\n",
       "~ message 0x064 Motion\n    name: Motion -> Go\n    attribute \"Cycle\": 20 -> 16\n"},
      {"--rename-node Engine " + name, "node Engine: renamed to " + name + "\n",
       "- node Engine\n+ node " + name + "\n~ message 0x064 Motion\n    transmitters: Engine -> " +
           name + "\n"},
      {"--reset-attribute message:100 Cycle --set-attribute message:200 Any 0x1FFFFFFFF",
       "message 0x064 Motion: attribute \"Cycle\" = 50, the default\n"
       "message 0x0C8 Twin: attribute \"Any\" = 0x1FFFFFFFF (8589934591)\n",
       "~ message 0x064 Motion\n    attribute \"Cycle\": 20 -> none\n"
       "~ message 0x0C8 Twin\n    attribute \"Any\": none -> 0x1FFFFFFFF (8589934591)\n"},
      {"--set-attribute signal:Motion.Page Kind 2 --set-attribute signal:Motion.Speed Kind 0 "
       "--set-attribute network Owner \"a b\"",
       "signal Motion.Page: attribute \"Kind\" = \"2\" (1)\n"
       "signal Motion.Speed: attribute \"Kind\" = \"a\" (0)\n"
       "network: attribute \"Owner\" = \"a b\"\n",
       "~ network\n    attribute \"Owner\": none -> \"a b\"\n"
       "~ signal Motion.Page\n    attribute \"Kind\": none -> \"2\" (1)\n"
       "~ signal Motion.Speed\n    attribute \"Kind\": none -> \"a\" (0)\n"},
      {"--set-comment variable:Lid [up,down] --set-comment node:Dash x --set-comment node:Dash "
       "\"\"",
       "environment variable Lid: comment \"[up,down]\"\nnode Dash: comment \"x\"\n"
       "node Dash: comment removed\n",
       "~ environment variable Lid\n    comment: none -> \"[up,down]\"\n"},
      {"--delete-signal Motion.Page --delete-message 201",
       "signal Motion.Page: deleted, also from 1 signal group, multiplexor of 1 signal\n"
       "message 0x0C9 Twin: deleted, with 0 signals\n",
       "- message 0x0C9 Twin\n- signal Motion.Page\n~ signal Motion.Speed\n"
       "    selected_by: Page -> none\n    selected_for: 1 -> none\n"
       "~ signal group Motion.Both\n    signals: Page, Speed -> Speed\n"},
  };
  for (const auto& c : cases) {
    write_file("a.dbc", kNetwork);
    write_file("b.dbc", kNetwork);
    check({"edit -n b.dbc " + c.edits, 0, c.told + "b.dbc not written\n"});
    check({"diff a.dbc b.dbc", 0, ""});
    check({"edit b.dbc " + c.edits, 0, c.told + "b.dbc written\n"});
    check({"diff a.dbc b.dbc", 1, c.difference});
  }
}

TEST(Edit, WritesAllOrNothing) {
  const struct {
    std::string edit;
    int exit_code;
    const char* err;
  } cases[] = {
      {"--rename-message Motio Go", 1, "no message is named \"Motio\"; did you mean Motion?"},
      {"--rename-message Twin Go", 1, "several messages are named \"Twin\""},
      {"--rename-message 200 Motion", 1, "\"Motion\" is taken"},
      {"--rename-message 200 BO_", 1, "keyword"},
      {"--rename-node Dash " + std::string(129, 'n'), 1, "128"},
      {"--set-comment thing:Lid x", 1, "\"thing:Lid\" is no object"},
      {"--set-attribute message:100 Cycl 1", 1, "did you mean Cycle?"},
      {"--set-attribute message:100 Cycle 1001", 1, "INT 0 to 1000"},
      {"--set-attribute signal:Motion.Page Kind 3", 1, "is no item"},
      {"--set-attribute signal:Motion.Page Kind", 2, "--set-attribute"},
      {"--set-comment message:Second x", 1, "shares its identifier"},
      {"--set-attribute signal:Second.T Kind a", 1, "shares its identifier"},
      {"--set signal:Motion.Speed start 50", 1, "reaches beyond the 8 bytes"},
      {"--set message:100 length 2", 1, "Motion.Speed: reaches beyond"},
      {"--set signal:Motion.Speed minimum 1", 1, "the minimum is above the maximum"},
      {"--set signal:Motion.Speed factor 0", 1, "a factor of 0"},
      {"--set signal:Motion.Speed name X", 1, "--rename-signal"},
      {"--set signal:Motion.Speed fctor 1", 1, "no property \"fctor\""},
      {"--set signal:Motion.Page multiplexing none", 1, "selects others"},
      {"--set signal:Motion.Page multiplexing Speed=1", 1, "select itself"},
      {"--set signal:Motion.Speed receivers Das", 1, "did you mean Dash?"},
      {"--set message:100 id 200", 1, "0x0C8 is the identifier of the message Twin"},
      {"--set message:100 id 0x20000000", 1, "29 bits"},
      {"--add-signal Motion.Page 0 1", 1, "\"Page\" is taken"},
      {"--add-attribute message Cycle STRING x", 1, "is taken"},
      {"--add-attribute node X \"ENUM a,b\" c", 1, "is no item"},
      {"--delete-description signal:Motion.Page 1", 1, "has no description of the value 1"},
      {"--output b.kcd", 2, "b.kcd\" is no DBC file"},
  };
  write_file("a.dbc", kNetwork);
  write_file("b.dbc", kNetwork);
  for (const auto& c : cases) {
    check({"edit b.dbc --rename-node Engine Motor " + c.edit, c.exit_code, "", c.err});
    check({"diff a.dbc b.dbc", 0, ""});
  }
  check({"edit b.dbc -n", 2, "", "at least one edit"});
  check({"edit b.dbc --output missing/c.dbc --delete-message 201", 1,
         "message 0x0C9 Twin: deleted, with 0 signals\n", "missing/c.dbc: could not be written"});
  check({"edit b.dbc --output c.dbc --delete-message 201", 0,
         "message 0x0C9 Twin: deleted, with 0 signals\nc.dbc written\n"});
  // An output that takes no report leaves the file as it was.
  EXPECT_EQ(run_tool("edit b.dbc --delete-message 201", Output::kRefused).exit_code, 1);
  check({"diff a.dbc b.dbc", 0});
  check({"diff a.dbc c.dbc", 1, "- message 0x0C9 Twin\n"});
}

// What the command line says in UTF-8 enters the file in its own encoding.
TEST(Edit, KeepsTheEncodingOfTheFile) {
  constexpr const char* kAttribute = "BA_DEF_ \"Gr\xF6\xDF\" ENUM \"a\",\"\x80\";\n";
  const auto a = write_file("a.dbc", std::string("BS_:\nBU_: A\n") + kAttribute);
  check({"edit a.dbc --set-comment node:A T\u00FCr --set-attribute network Gr\u00F6\u00DF \u20AC",
         0,
         "node A: comment \"T\u00FCr\"\nnetwork: attribute \"Gr\u00F6\u00DF\" = \"\u20AC\" (1)\n"
         "a.dbc written\n"});
  EXPECT_NE(bytes_of(a).find("T\xFCr"), std::string::npos);
  check({"edit a.dbc --set-comment node:A \u0416", 1, "", "not in Windows-1252"});
}

// Everything that an edit is not about stays byte for byte; `undo` gives the old bytes again.
TEST(Edit, LeavesTheRestOfTheFile) {
  const struct {
    std::string before;
    const char* edits;
    std::string after;
    const char* undo = nullptr;
  } cases[] = {
      // Spelling, blanks, comments and line ends, also of the statement that changes.
      {"BS_:\r\nBU_:  A\tB\r\n\r\nBO_ 007 M : 8  A // of A\r\n\tSG_ S:0|8@1+(1.0,0)[0|1e1] \"\" A, "
       "B\r\n",
       "--set signal:M.S offset -2.50 --rename-node A C",
       "BS_:\r\nBU_:  C\tB\r\n\r\nBO_ 007 M : 8  C // of A\r\n\tSG_ S:0|8@1+(1.0,-2.5)[0|1e1] \"\" "
       "C, B\r\n"},
      // A part that the library would write, and this statement does not have.
      {"BS_:\nBU_: N\nBO_ 1 M: 8 N\n SG_ S : 0|8(1,0)[0|1.50] \"\" N\n",
       "--set signal:M.S sign signed --set signal:M.S multiplexing M",
       "BS_:\nBU_: N\nBO_ 1 M: 8 N\n SG_ S M : 0|8@1-(1,0)[0|1.50] \"\" N\n"},
      // New statements: indentation, line ends, empty lines, and a section that there is not yet.
      {"BS_:\r\nBU_: N\r\n\r\nBO_ 1 M: 8 N\r\n\tSG_ S : 0|8@1+ (1,0) [0|0] \"\" N\r\n\r\nVAL_ 1 S "
       "0 \"a\" ;\r\n",
       "--add-signal M.T 8 8 --add-message L 2 8 --set-comment node:N x",
       "BS_:\r\nBU_: N\r\n\r\nBO_ 1 M: 8 N\r\n\tSG_ S : 0|8@1+ (1,0) [0|0] \"\" N\r\n"
       "\tSG_ T : 8|8@1+ (1,0) [0|0] \"\" Ostrel__XXX\r\n\r\nBO_ 2 L: 8 Ostrel__XXX\r\n\r\n"
       "CM_ BU_ N \"x\";\r\n\r\nVAL_ 1 S 0 \"a\" ;\r\n",
       "--delete-signal M.T --delete-message L --set-comment node:N \"\""},
      // Several statements on a line, and one that the reader ignores.
      {"BS_: BU_: N BO_ 1 M: 8 N BO_ 2 L: 8 N BO_TX_BU_ 1 : N; CM_ BO_ 1 \"m\"; CM_ BO_ 2 \"l\";\n",
       "--delete-message M", "BS_: BU_: N BO_ 2 L: 8 N CM_ BO_ 2 \"l\";\n"},
      // Statements in an order of their own; references follow the identifier.
      {"BS_:\nBU_: N\nBO_ 1 M: 8 N\nBO_ 2 L: 8 N\nBA_DEF_ BO_ \"A\" INT 0 9;\nBA_DEF_DEF_ \"A\" "
       "0;\n"
       "BA_ \"A\" BO_ 2 2;// two\nBA_ \"A\" BO_ 1 01;\n",
       "--set message:M id 0x800 --set-attribute message:L A 3",
       "BS_:\nBU_: N\nBO_ 2147485696 M: 8 N\nBO_ 2 L: 8 N\nBA_DEF_ BO_ \"A\" INT 0 9;\nBA_DEF_DEF_ "
       "\"A\" 0;\n"
       "BA_ \"A\" BO_ 2 3;// two\nBA_ \"A\" BO_ 2147485696 01;\n"},
      // Two names change places.
      {"BS_:\nBU_: A B\nBO_ 1 M: 8 A\nBO_ 2 L: 8 B\nCM_ BU_ A \"a\";\n",
       "--rename-node A X --rename-node B A --rename-node X B",
       "BS_:\nBU_: B A\nBO_ 1 M: 8 B\nBO_ 2 L: 8 A\nCM_ BU_ B \"a\";\n"},
      // Descriptions keep their order, those of two statements become one.
      {"BS_:\nBU_: N\nBO_ 1 M: 8 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\nVAL_ 1 S 3 \"c\"\n  1 "
       "\"a\";\n",
       "--set-description signal:M.S 2 b",
       "BS_:\nBU_: N\nBO_ 1 M: 8 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\nVAL_ 1 S 3 \"c\"\n  2 "
       "\"b\" 1 \"a\";\n"},
      {"BS_:\nBU_: N\nBO_ 1 M: 8 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\nVAL_ 1 S 1 \"a\";\nVAL_ 1 "
       "S 2 \"b\";\n",
       "--delete-description signal:M.S 1",
       "BS_:\nBU_: N\nBO_ 1 M: 8 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\nVAL_ 1 S 2 \"b\";\n"},
      // A node that only a sender introduces stays in the database.
      {"BS_:\nBU_: N\nBO_ 1 M: 8 O\nBO_ 2 L: 8 N\n", "--delete-message M",
       "BS_:\nBU_: N O\nBO_ 2 L: 8 N\n"},
      // Names of more than 32 characters in their places.
      {"BS_:\nBU_: N\nBO_ 1 A23456789012345678901234567890123: 8 N\nBO_ 2 "
       "A234567890123456789012345678901234: 8 N\n",
       "--rename-message 1 M",
       "BS_:\nBU_: N\nBO_ 1 M: 8 N\nBO_ 2 A234567890123456789012345678901234: 8 N\n",
       "--rename-message M A23456789012345678901234567890123"},
      // A new node stands behind those that are listed, and the others stay unlisted.
      {"BS_:\nBU_: N Ostrel__XXX\nBO_ 1 M: 8 O\n", "--add-node X",
       "BS_:\nBU_: N X Ostrel__XXX\nBO_ 1 M: 8 O\n", "--delete-node X"},
      {"BS_:\nBU_:\nBO_ 1 M: 8 O\n", "--add-node X --add-node Y --set message:M senders X",
       "BS_:\nBU_: X Y O\nBO_ 1 M: 8 X\n"},
      // Another name for what another edit replaces.
      {"BS_:\nBU_: A B\nBO_ 1 M: 8 A\n", "--set message:M senders B --rename-node A C",
       "BS_:\nBU_: C B\nBO_ 1 M: 8 B\n", "--rename-node C A --set message:M senders A"},
      // One line, of which most goes, and something new comes.
      {"BS_: BU_: A B CM_ BU_ A \"a\"; CM_ BU_ B \"b\"; BA_DEF_ \"O\" STRING ;\n",
       "--delete-node A --delete-attribute network O --add-attribute network P INT 3",
       "BS_: BU_: B CM_ BU_ B \"b\";\nBA_DEF_  \"P\" INT 0 0;\n\nBA_DEF_DEF_  \"P\" 3;\n"},
      {"BS_:\nBU_: A\nBO_ 1 M: 8 A BO_ 2 L: 8 A\n\nCM_ \"x\";\n",
       "--delete-message M --delete-message L", "BS_:\nBU_: A\n\nCM_ \"x\";\n"},
      // A list of the sender that the message's line has, too.
      {"BS_:\nBU_: A B\nBO_ 1 M: 8 A\nBO_TX_BU_ 1 :  A;\n", "--set message:M senders B",
       "BS_:\nBU_: A B\nBO_ 1 M: 8 B\nBO_TX_BU_ 1 :  B;\n", "--set message:M senders A"},
      {"BS_:\nBU_: A B\nBO_ 1 M: 8 A\nBO_TX_BU_ 1 :  A;\n", "--rename-node A C",
       "BS_:\nBU_: C B\nBO_ 1 M: 8 C\nBO_TX_BU_ 1 :  C;\n", "--rename-node C A"},
      {"BS_:\nBU_: A\nBO_ 1 M: 8 A\nBO_TX_BU_ 1 : A;\n", "--set message:M senders none",
       "BS_:\nBU_: A\nBO_ 1 M: 8 Ostrel__XXX\n"},
      // The last long name goes, the author's definition stays.
      {"BS_:\nBU_:\nBO_ 1 M23456789_123456789_123456789_12: 8 Ostrel__XXX\n"
       "BA_DEF_ BO_ \"SystemMessageLongSymbol\" STRING ;\nBA_DEF_ \"P\" STRING;\n"
       "BA_DEF_DEF_ \"SystemMessageLongSymbol\" \"\";\nBA_DEF_DEF_ \"P\" \"\";\n"
       "BA_ \"P\" \"q\";\nBA_ \"SystemMessageLongSymbol\" BO_ 1 "
       "\"M23456789_123456789_123456789_1234\";\n",
       "--rename-message 1 M",
       "BS_:\nBU_:\nBO_ 1 M: 8 Ostrel__XXX\n"
       "BA_DEF_ BO_ \"SystemMessageLongSymbol\" STRING ;\nBA_DEF_ \"P\" STRING;\n"
       "BA_DEF_DEF_ \"SystemMessageLongSymbol\" \"\";\nBA_DEF_DEF_ \"P\" \"\";\n"
       "BA_ \"P\" \"q\";\n",
       "--rename-message 1 M23456789_123456789_123456789_1234"},
      // What stands behind the end of the input.
      {"BS_:\nBU_: A B\n\xFF((( A\n", "--rename-node A C", "BS_:\nBU_: C B\n\xFF((( A\n",
       "--rename-node C A"},
  };
  for (const auto& c : cases) {
    const auto path = write_file("a.dbc", c.before);
    EXPECT_EQ(run_tool(std::string("edit a.dbc ") + c.edits).exit_code, 0) << c.edits;
    EXPECT_EQ(bytes_of(path), c.after) << c.edits;
    if (!c.undo) continue;
    EXPECT_EQ(run_tool(std::string("edit a.dbc ") + c.undo).exit_code, 0) << c.undo;
    EXPECT_EQ(bytes_of(path), c.before) << c.undo;
  }
}

// Each edit and its opposite, in files of several forms.
TEST(Edit, IsUndoneByItsOpposite) {
  const std::string name(40, 'n');
  const struct {
    std::string edit;
    std::string undo;
  } cases[] = {
      {"--rename-node Engine " + name, "--rename-node " + name + " Engine"},
      {"--rename-message Motion " + name, "--rename-message " + name + " Motion"},
      {"--rename-variable Lid Page", "--rename-variable Page Lid"},
      {"--add-node " + name, "--delete-node " + name},
      {"--add-message " + name + " 5 8", "--delete-message " + name},
      {"--add-signal Motion." + name + " 24 8", "--delete-signal Motion." + name},
      {"--add-table T --set-description table:T 1 a", "--delete-table T"},
      {"--add-attribute node Own STRING x --set-attribute node:Dash Own y",
       "--delete-attribute node Own"},
      {"--set-comment signal:Motion.Page x --set-comment network y",
       "--set-comment network \"\" --set-comment signal:Motion.Page \"\""},
      {"--set-description signal:Motion.Page 1 a", "--delete-description signal:Motion.Page 1"},
      {"--set signal:Motion.Speed receivers Engine,Dash --set message:Motion id 0x800",
       "--set message:Motion id 100 --set signal:Motion.Speed receivers Dash"},
      {"--set signal:Motion.Speed multiplexing 1-2 --set signal:Motion.Speed unit km/h",
       "--set signal:Motion.Speed multiplexing m1 --set signal:Motion.Speed unit \"\""},
      {"--set signal:Motion.Speed factor 0.5", "--set signal:Motion.Speed factor 1"},
  };
  const auto with = [](const std::string& from, const std::string& to) {
    std::string text;
    for (std::size_t at = 0; at < kNetwork.size();) {
      const bool is_here = kNetwork.compare(at, from.size(), from) == 0;
      text += is_here ? to : kNetwork.substr(at, 1);
      at += is_here ? from.size() : 1;
    }
    return text;
  };
  const std::string forms[] = {kNetwork, with("\n", "\r\n"), with("\n\n", "\n"),
                               with(";\n", "; // note\n"), kNetwork.substr(0, kNetwork.size() - 1)};
  for (const std::string& form : forms) {
    for (const auto& [edit, undo] : cases) {
      const auto path = write_file("a.dbc", form);
      EXPECT_EQ(run_tool("edit a.dbc " + edit).exit_code, 0) << edit;
      EXPECT_NE(bytes_of(path), form) << edit;
      EXPECT_EQ(run_tool("edit a.dbc " + undo).exit_code, 0) << undo;
      EXPECT_EQ(bytes_of(path), form) << undo;
    }
  }
}

// The library's own form keeps 14 digits of a number.
TEST(Edit, RoundsNothingInSilence) {
  const std::string file =
      "BS_:\nBU_: N\nBO_ 1 M: 8 N\n SG_ S : 0|48@1+ (1,0) [0|281474976710655] \"\" N\n"
      "BA_DEF_ \"F\" FLOAT 0 1;\nBA_DEF_DEF_ \"F\" 0;\nBA_ \"F\" 0.1234567890123456;\n";
  const char* const renamed = "message 0x001 M: renamed to X\n";
  const char* const of_signal = "signal X.S: max 281474976710655 would become 281474976710660\n";
  const ToolCase cases[] = {
      {"a.dbc --canonical --rename-message M X", 1, "", std::string("a.dbc: ") + of_signal},
      {"a.dbc --canonical --rename-message M X --delete-signal X.S --set-attribute network F "
       "0.6543210987654321",
       0,
       std::string(renamed) + "signal X.S: deleted\nnetwork: attribute \"F\" = "
                              "0.6543210987654321\na.dbc written\n",
       "attribute \"F\": 0.6543210987654321 -> 0.65432109876543"},
      {"a.dbc --canonical --allow-rounding --rename-message M X", 0,
       std::string(renamed) + "a.dbc written\n", "max: 281474976710655 -> 281474976710660"},
  };
  for (const ToolCase& c : cases) {
    const auto path = write_file("a.dbc", file);
    check({"edit " + c.arguments, c.exit_code, c.out, c.err});
    EXPECT_EQ(bytes_of(path) == file, c.exit_code == 1) << c.arguments;
  }
  const auto path = write_file("a.dbc", file);
  check({"edit a.dbc --rename-message M X --set-attribute network F 0.6543210987654321", 0,
         std::string(renamed) + "network: attribute \"F\" = 0.6543210987654321\na.dbc written\n"});
  EXPECT_EQ(bytes_of(path),
            "BS_:\nBU_: N\nBO_ 1 X: 8 N\n SG_ S : 0|48@1+ (1,0) [0|281474976710655] \"\" N\n"
            "BA_DEF_ \"F\" FLOAT 0 1;\nBA_DEF_DEF_ \"F\" 0;\nBA_ \"F\" 0.6543210987654321;\n");
}

}  // namespace

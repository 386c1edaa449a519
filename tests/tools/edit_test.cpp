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

// "zelk check": what is wrong with a file, in words and for programs.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tools/run_tool.hpp"

namespace {

TEST(Check, TellsWhatIsWrongAndWhere) {
  write_file("wide.dbc",
             "BS_:\nBU_: A\nBO_ 1 M: 8 A\n\n\nCM_ BO_ 1 \"\xE9\x80\x9F\xE5\xBA\xA6\t\x1B[2J\" "
             "\xE2\x80\xAE x;\n");
  write_file("long.dbc", "BS_:\nBU_: A\nCM_ \"" + std::string(200, 'x') + "\" BO_;\n");
  write_file("latin.dbc",
             "BS_:\nBU_: A\nCM_ \"Gr\xF6\xDF"
             "e\" BU_ A;");
  write_file("many.dbc",
             "BS_:\nBU_: A\nBO_ 1500 M: 8 A\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" A\n"
             "CM_ BO_ 1492 \"\";\nCM_ BO_ 1501 \"\";\nCM_ BO_ 1492 \"\";\n"
             "CM_ SG_ 3 S \"\";\nVALL_ 1500 S 0 \"\";\n");
  write_file("broken.dbc", "BS_:\nBU_: A\nBO_ 5 M; 8 A\nCM_ BO_ 5 \"\";\n");
  write_file("warned.dbc", "BS_:\nBU_: A\nBO_ 1 M: 8 A\nBO_ 1 N: 8 A\n");
  write_file("utf16.dbc", std::string("\xFF\xFE"
                                      "B\0S\0_\0",
                                      8));
  write_file("short.dbc", "BO_ 1");
  write_file("zero.dbc", std::string(1, '\0'));
  const ToolCase cases[] = {
      {"check short.dbc zero.dbc", 1, "zero.dbc:1:2: error: "},
      {"check wide.dbc", 1,
       "wide.dbc:6:23: error: expected ';' behind the comment, found \"x\" too many [surplus]\n"
       "    6 | CM_ BO_ 1 \"\u901F\u5EA6 \\x1B[2J\" \uFFFD x;\n"
       "      |                            ^\n"
       "      = in comment of message 1\n"},
      {"check long.dbc", 1,
       "    3 | ..." + std::string(58, 'x') +
           "\" BO_;\n"
           "      | " +
           std::string(63, ' ') + "^~~\n"},
      {"check latin.dbc", 1,
       "found \"BU_ A\" too many [surplus]\n    3 | CM_ \"Gr\u00F6\u00DFe\" BU_ A;\n      |        "
       "     ^~~~~\n"},
      {"check many.dbc", 1,
       "message 1492 is not defined [unknown-message]\n"
       "    5 | CM_ BO_ 1492 \"\";\n"
       "      |         ^~~~\n"
       "      = in comment of message 1492\n"
       "many.dbc:7:9: note: and here\n"
       "many.dbc:6:9: error: message 1501 is not defined [unknown-message]\n"
       "    6 | CM_ BO_ 1501 \"\";\n"
       "      |         ^~~~\n"
       "      = in comment of message 1501\n"
       "      = did you mean 1500?\n"},
      {"check many.dbc", 1, "= a signal of this name is in message 1500 M\n"},
      {"check many.dbc", 1, "= did you mean \"VAL_\"?\n"},
      {"check many.dbc --max-errors 1", 1, "1492", "many.dbc: 3 findings more"},
      {"check warned.dbc", 0, "warned.dbc:4:5: warning: another message with identifier 1"},
      {"check warned.dbc --fail-on warning", 1, "ok, 1 node"},
      {"check utf16.dbc", 1, "utf16.dbc:1:1: error: the file is in UTF-16"},
      {"check missing.dbc warned.dbc", 2, "warned.dbc: ok", "missing.dbc: database: not found"},
      {"show many.dbc", 1, "",
       "many.dbc: cannot be read; zelk repair mends what can be mended, --repair on the way\n"},
  };
  for (const ToolCase& c : cases) check_parts(c);
  // References to what a broken statement introduces are no faults of their own.
  EXPECT_EQ(nlohmann::json::parse(run_tool("check broken.dbc --json").out).size(), 1u);
}

TEST(Check, SpeaksToPrograms) {
  const std::string name = "\xC3\xA4 b.dbc";
  write_file(name, "BS_:\nBU_: A\nCM_ \"\xF0\x9F\x9A\x97\" x;\nCM_ BU_ B \"\";\n");
  using Json = nlohmann::json;
  const Json found = Json::parse(run_tool("check \"" + name + "\" --json").out);
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0]["column"], 9);
  EXPECT_EQ(found[0]["endColumn"], 10);
  EXPECT_EQ(found[1]["message"], "node B is not defined");
  const Json log = Json::parse(run_tool("check \"" + name + "\" --sarif").out);
  const Json& run = log["runs"][0];
  const Json& place = run["results"][0]["locations"][0]["physicalLocation"];
  EXPECT_EQ(place["artifactLocation"]["uri"], "%C3%A4%20b.dbc");
  EXPECT_EQ(place["region"]["startColumn"], 10);  // in units of UTF-16
  EXPECT_EQ(run["tool"]["driver"]["rules"][1]["id"], "unknown-node");
}

}  // namespace

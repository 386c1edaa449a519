// "zelk edit" in texts of all kinds: what changes, byte for byte, and what it refuses.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/files.hpp"
#include "tools/run_tool.hpp"

namespace {

const std::string kText =
    "VERSION \"1\" // first\n\nNS_ :\n\nBS_:\n\nBU_:  A  B\n\n// the motion\n"
    "BO_ 100 Motion: 8  A\n"
    " SG_ Speed :  0|16@1+ (0.10,0.0) [0|1E2] \"km/h\"  B // kept\n"
    " SG_ Page M : 16|8@1+ (1,0) [0|0] \"\" B\n"
    "\tSG_ Left m1:24|8@0- (1,0) [0|0] \"\" A,B\n"
    "\n"
    "BO_ 2147483848 Other: 4 Ostrel__XXX\n\n"
    "EV_ Lid: 0 [0|1] \"\" 0 7 DUMMY_NODE_OSTREL0 B;\n\n"
    "CM_ SG_ 100 Speed \"fast\";\n"
    "BA_DEF_ BO_ \"Cycle\" INT 0 1000;\nBA_DEF_DEF_ \"Cycle\" 0100;\n"
    "BA_ \"Cycle\" BO_ 100 020;\n"
    "VAL_ 100 Page 1 \"one\" 0 \"zero\" ;";

using Replacements = std::vector<std::pair<std::string, std::string>>;

/// The text with the first place of each `first` replaced, one behind the other.
std::string changed(const Replacements& replacements) {
  std::string text = kText;
  std::size_t at = 0;
  for (const auto& [before, after] : replacements) {
    at = text.find(before, at);
    if (at == text.npos) return "no place: " + before;
    text.replace(at, before.size(), after);
    at += after.size();
  }
  return text;
}

std::string with_crlf(const std::string& text) {
  std::string result;
  for (const char c : text) result += c == '\n' ? "\r\n" : std::string(1, c);
  return result;
}

struct Case {
  const char* edits;
  Replacements replacements;
};

/// In a file with line feeds, the last of them missing, and in one with carriage returns.
void check(const Case& c) {
  const auto crlf = [](const std::string& text) { return with_crlf(text + "\n"); };
  for (const bool has_returns : {false, true}) {
    const auto path = write_file("a.dbc", has_returns ? crlf(kText) : kText);
    const ToolRun run = run_tool(std::string("edit a.dbc ") + c.edits);
    EXPECT_EQ(run.exit_code, 0) << c.edits << '\n' << run.err;
    const std::string expected = changed(c.replacements);
    EXPECT_EQ(bytes_of(path), has_returns ? crlf(expected) : expected) << c.edits;
  }
}

TEST(EditText, SetsEachProperty) {
  const Case cases[] = {
      {"--set signal:Motion.Speed factor 0.25", {{"(0.10,", "(0.25,"}}},
      {"--set signal:Motion.Speed offset -40", {{",0.0)", ",-40)"}}},
      {"--set signal:Motion.Speed minimum 5", {{"[0|1E2]", "[5|1E2]"}}},
      {"--set signal:Motion.Speed maximum 99.5", {{"[0|1E2]", "[0|99.5]"}}},
      {"--set signal:Motion.Speed unit mph", {{"\"km/h\"", "\"mph\""}}},
      {"--set signal:Motion.Speed unit \"\"", {{"\"km/h\"", "\"\""}}},
      {"--set signal:Motion.Speed start 32", {{"0|16@1+", "32|16@1+"}}},
      {"--set signal:Motion.Speed length 12", {{"0|16@1+", "0|12@1+"}}},
      {"--set signal:Motion.Speed start 7 --set signal:Motion.Speed order motorola",
       {{"0|16@1+", "7|16@0+"}}},
      {"--set signal:Motion.Left order intel", {{"24|8@0-", "24|8@1-"}}},
      {"--set signal:Motion.Left sign unsigned", {{"24|8@0-", "24|8@0+"}}},
      {"--set signal:Motion.Speed receivers B,A", {{"\"  B //", "\"  B,A //"}}},
      {"--set signal:Motion.Left receivers none", {{"A,B\n", "Ostrel__XXX\n"}}},
      {"--set signal:Motion.Speed multiplexing m2", {{"Speed :", "Speed m2 :"}}},
      {"--set signal:Motion.Left multiplexing 3", {{"Left m1:", "Left m3:"}}},
      {"--set signal:Motion.Left multiplexing none", {{"Left m1:", "Left :"}}},
      {"--set message:Motion id 0x65",
       {{"BO_ 100", "BO_ 101"},
        {"SG_ 100", "SG_ 101"},
        {"BO_ 100", "BO_ 101"},
        {"VAL_ 100", "VAL_ 101"}}},
      {"--set message:Other id 0x800", {{"2147483848", "2147485696"}}},
      {"--set message:Other id 5", {{"2147483848", "5"}}},
      {"--set message:Motion length 5", {{": 8  A", ": 5  A"}}},
      {"--set message:Motion senders none", {{": 8  A", ": 8  Ostrel__XXX"}}},
      {"--set message:Other senders B", {{": 4 Ostrel__XXX", ": 4 B"}}},
      {"--set network version 2.0", {{"\"1\"", "\"2.0\""}}},
      {"--set-comment signal:Motion.Speed \"slow; or not\"", {{"fast", "slow; or not"}}},
      {"--set-comment signal:Motion.Speed \"\"", {{"CM_ SG_ 100 Speed \"fast\";\n", ""}}},
      {"--set-attribute message:100 Cycle 30", {{" 020;", " 30;"}}},
      {"--set-description signal:Motion.Page 1 uno", {{"\"one\"", "\"uno\""}}},
      {"--delete-description signal:Motion.Page 1", {{"1 \"one\" ", ""}}},
      {"--rename-message 100 Move", {{"Motion:", "Move:"}}},
      {"--rename-signal Motion.Page Mode", {{"SG_ Page", "SG_ Mode"}, {"100 Page", "100 Mode"}}},
      {"--rename-variable Lid Door", {{"EV_ Lid", "EV_ Door"}}},
      {"--rename-node B Dash",
       {{"A  B\n", "A  Dash\n"},
        {"  B //", "  Dash //"},
        {"\" B\n", "\" Dash\n"},
        {"A,B\n", "A,Dash\n"},
        {"0 B;", "0 Dash;"}}},
  };
  for (const Case& c : cases) check(c);
}

TEST(EditText, AddsAndDeletesStatements) {
  const Case cases[] = {
      {"--reset-attribute message:100 Cycle", {{"BA_ \"Cycle\" BO_ 100 020;\n", ""}}},
      {"--add-node C", {{"A  B\n", "A  B  C\n"}}},
      {"--delete-node B",
       {{"A  B\n", "A\n"},
        {"  B //", "  Ostrel__XXX //"},
        {"\" B\n", "\" Ostrel__XXX\n"},
        {"A,B\n", "A\n"},
        {"0 B;", "0 Ostrel__XXX;"}}},
      {"--delete-message 2147483848", {{"BO_ 2147483848 Other: 4 Ostrel__XXX\n\n", ""}}},
      {"--delete-signal Motion.Speed",
       {{" SG_ Speed :  0|16@1+ (0.10,0.0) [0|1E2] \"km/h\"  B // kept\n", ""},
        {"CM_ SG_ 100 Speed \"fast\";\n", ""}}},
      {"--delete-attribute message Cycle",
       {{"BA_DEF_ BO_ \"Cycle\" INT 0 1000;\nBA_DEF_DEF_ \"Cycle\" 0100;\n"
         "BA_ \"Cycle\" BO_ 100 020;\n",
         ""}}},
      {"--add-signal Motion.Flag 63 1",
       {{"\"\" A,B\n", "\"\" A,B\n\tSG_ Flag : 63|1@1+ (1,0) [0|0] \"\" Ostrel__XXX\n"}}},
      {"--add-attribute node Kind \"ENUM x,y\" y --set-attribute node:B Kind x",
       {{"INT 0 1000;\n", "INT 0 1000;\nBA_DEF_ BU_  \"Kind\" ENUM  \"x\",\"y\";\n"},
        {"0100;\n", "0100;\nBA_DEF_DEF_  \"Kind\" \"y\";\n"},
        {"020;\n", "020;\nBA_ \"Kind\" BU_ B 0;\n"}}},
      {"--set message:Motion senders A,B",
       {{"Ostrel__XXX\n\n", "Ostrel__XXX\n\nBO_TX_BU_ 100 : A,B;\n\n"}}},
      {"--set-comment message:100 x --set-comment network y",
       {{"\"fast\";\n", "\"fast\";\nCM_ \"y\";\nCM_ BO_ 100 \"x\";\n"}}},
  };
  for (const Case& c : cases) check(c);
}

TEST(EditText, RefusesAllOfTheEditsForOne) {
  const struct {
    const char* edit;
    const char* err;
  } cases[] = {
      {"--set signal:Motion.Speed factor 1,5", "\"1,5\""},
      {"--set signal:Motion.Speed offset nan", "\"nan\""},
      {"--set signal:Motion.Speed length 0", "\"0\""},
      {"--set signal:Motion.Speed length 1.5", "\"1.5\""},
      {"--set signal:Motion.Speed start 65536", "\"65536\""},
      {"--set signal:Motion.Speed order big", "\"big\" is neither intel nor motorola"},
      {"--set signal:Motion.Speed sign minus", "\"minus\" is neither unsigned nor signed"},
      {"--set signal:Motion.Speed unit 123456789012345678901234567890123", "32 characters"},
      {"--set signal:Motion.Speed multiplexing m4294967296", "4294967296"},
      {"--set signal:Motion.Speed multiplexing 5-3", "\"3\""},
      {"--set signal:Other.Speed factor 2", "Speed"},
      {"--set message:Motion id 2147483848", "Other"},
      {"--set message:Motion length 32768", "32768"},
      {"--set message:Motion cycle 10", "no property \"cycle\""},
      {"--set node:A length 1", "no property \"length\""},
      {"--set network name x", "no property \"name\""},
      {"--set-attribute message:Motion Cycle 10.5", "10.5"},
      {"--set-description node:A 1 x", "no value descriptions"},
      {"--set-description signal:Motion.Page 4294967296 x", "4294967296"},
      {"--add-node A", "\"A\" is taken"},
      {"--add-node \"A B\"", "A B"},
      {"--add-node 1st", "1st"},
      {"--add-message Other 1 8", "\"Other\" is taken"},
      {"--add-message New 100 8", "0x064 is the identifier of the message Motion"},
      {"--add-signal Motion.New 64 1", "beyond the 8 bytes"},
      {"--add-attribute thing X STRING x", "\"thing\" is no kind"},
      {"--add-attribute node X TEXT x", "\"TEXT\" is no type"},
      {"--add-attribute node X \"INT 5 1\" 2", "its minimum above its maximum"},
      {"--add-attribute node X \"INT 0 5\" 6", "6"},
      {"--delete-table none", "none"},
      {"--delete-node C", "no node is named \"C\""},
      {"--delete-attribute node Cycle", "no node attribute is named \"Cycle\""},
  };
  const auto path = write_file("a.dbc", kText);
  for (const auto& c : cases) {
    const ToolRun run = run_tool(std::string("edit a.dbc --rename-node B Dash ") + c.edit +
                                 " --set message:Motion senders none");
    EXPECT_EQ(run.exit_code, 1) << c.edit;
    EXPECT_EQ(run.out, "") << c.edit;
    EXPECT_NE(run.err.find(c.err), std::string::npos) << c.edit << '\n' << run.err;
    EXPECT_EQ(bytes_of(path), kText) << c.edit;
  }
}

TEST(EditText, ShowsTheLinesThatChange) {
  write_file("a.dbc", with_crlf(kText + "\n"));
  check(ToolCase{
      "edit a.dbc --dry-run --diff --set network version 2 --set-description signal:Motion.Page 0 "
      "null --set-description signal:Motion.Page 1 uno --set-attribute message:100 Cycle 30",
      0,
      "network: version = \"2\"\nsignal Motion.Page: description of 0 = \"null\"\n"
      "signal Motion.Page: description of 1 = \"uno\"\n"
      "message 0x064 Motion: attribute \"Cycle\" = 30\n"
      "@@ -1,4 +1,4 @@\n-VERSION \"1\" // first\n+VERSION \"2\" // first\n \n NS_ :\n \n"
      "@@ -19,5 +19,5 @@\n CM_ SG_ 100 Speed \"fast\";\n BA_DEF_ BO_ \"Cycle\" INT 0 1000;\n"
      " BA_DEF_DEF_ \"Cycle\" 0100;\n-BA_ \"Cycle\" BO_ 100 020;\n+BA_ \"Cycle\" BO_ 100 30;\n"
      "-VAL_ 100 Page 1 \"one\" 0 \"zero\" ;\n+VAL_ 100 Page 1 \"uno\" 0 \"null\" ;\n"
      "a.dbc not written\n"});
  write_file("open.dbc", kText);
  check(ToolCase{"edit open.dbc -n --diff --delete-description signal:Motion.Page 1", 0,
                 "signal Motion.Page: description of 1 deleted\n"
                 "@@ -20,4 +20,4 @@\n BA_DEF_ BO_ \"Cycle\" INT 0 1000;\n"
                 " BA_DEF_DEF_ \"Cycle\" 0100;\n BA_ \"Cycle\" BO_ 100 020;\n"
                 "-VAL_ 100 Page 1 \"one\" 0 \"zero\" ;\n\\ No newline at end of file\n"
                 "+VAL_ 100 Page 0 \"zero\" ;\n\\ No newline at end of file\n"
                 "open.dbc not written\n"});
  check(ToolCase{"edit a.dbc --diff --set signal:Motion.Speed factor 0.1", 0,
                 "signal Motion.Speed: factor = \"0.1\"\na.dbc unchanged\n"});
}

}  // namespace

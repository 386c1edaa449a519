// What check, lint and repair say of files, for programs: JSON, SARIF and exit codes.

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "support/files.hpp"
#include "tools/run_tool.hpp"

namespace {

using Json = nlohmann::json;

Json parsed(const std::string& arguments, int exit_code) {
  const ToolRun run = run_tool(arguments);
  EXPECT_EQ(run.exit_code, exit_code) << arguments << '\n' << run.err;
  return Json::parse(run.out, nullptr, false);
}

/// An error, a warning with another place, and a note; in a text of Windows-1252.
const std::string kLinted =
    "BS_:\r\nBU_: A B\r\nBO_ 256 M: 9 A\r\n SG_ P : 0|8@1+ (1,0) [0|0] \"\xB5V\" B\r\n"
    " SG_ Q : 7|8@1+ (1,0) [0|0] \"\" B\r\n SG_ R : 16|1@1- (1,0) [0|0] \"\" B\r\n";

TEST(Findings, AsJson) {
  write_file("a.dbc", kLinted);
  write_file("b.dbc", "BS_:\nBU_: A\nCM_ BO_ 1501 \"\";\nBO_ 1500 M 8 A\n");
  Json linted = parsed("lint a.dbc --json", 1);
  EXPECT_EQ(linted, Json::parse(R"([
    {"file": "a.dbc", "line": 3, "column": 12, "endLine": 3, "endColumn": 13,
     "severity": "error", "rule": "frame-length", "message": "no frame has 9 bytes of data",
     "statement": "message 256 M"},
    {"file": "a.dbc", "line": 5, "column": 10, "endLine": 5, "endColumn": 11,
     "severity": "warning", "rule": "overlapping-signals",
     "message": "the signal overlaps P: both have byte 0 bit 7",
     "statement": "signal Q of message 256",
     "related": [{"file": "a.dbc", "line": 4, "column": 10, "message": "signal P"}]},
    {"file": "a.dbc", "line": 6, "column": 16, "endLine": 6, "endColumn": 17,
     "severity": "note", "rule": "signed-bit",
     "message": "a signed signal of one bit has the values 0 and -1",
     "statement": "signal R of message 256"}])"));
  // A file that is refused has its faults, and a second one its own.
  Json both = parsed("lint b.dbc a.dbc --json --max-errors 1", 1);
  ASSERT_EQ(both.size(), 2u);
  EXPECT_EQ(both[0]["file"], "b.dbc");
  EXPECT_EQ(both[1]["rule"], "frame-length");
  EXPECT_EQ(parsed("lint a.dbc --json --disable all", 0), Json::array());
  Json rules = parsed("lint --list-rules --json", 0);
  ASSERT_EQ(rules.size(), 42u);
  EXPECT_EQ(rules[0]["rule"], "identifier-range");
  EXPECT_EQ(rules[0]["severity"], "error");
  Json checked = parsed("check b.dbc --json", 1);
  ASSERT_EQ(checked.size(), 3u);
  EXPECT_EQ(checked[0]["rule"], "order");
  EXPECT_EQ(checked[1]["cause"], "did you mean 1500?");
  EXPECT_EQ(checked[2]["rule"], "missing");
  EXPECT_EQ(checked[2]["column"], 11);
  EXPECT_EQ(checked[2]["endColumn"], 11);
  Json mended = parsed("repair b.dbc --dry-run --json", 0);
  ASSERT_EQ(mended.size(), 2u);
  EXPECT_EQ(mended[0]["severity"], "note");
  EXPECT_EQ(mended[0]["line"], 3);
  EXPECT_EQ(mended[1]["message"], "':' behind the message's name added");
  Json left = parsed("repair b.dbc --dry-run --json --keep missing", 1);
  ASSERT_EQ(left.size(), 1u);
  EXPECT_EQ(left[0]["severity"], "error");
}

TEST(Findings, AsSarif) {
  const auto folder = write_file("AZ#b.dbc", kLinted).parent_path();
  Json log = parsed("lint AZ#b.dbc --sarif --fail-on note", 1);
  EXPECT_EQ(log["version"], "2.1.0");
  Json& run = log["runs"][0];
  EXPECT_EQ(run["tool"]["driver"]["name"], "zelk");
  Json& rules = run["tool"]["driver"]["rules"];
  ASSERT_EQ(rules.size(), 3u);
  EXPECT_EQ(rules[0]["id"], "frame-length");
  EXPECT_EQ(rules[0]["shortDescription"]["text"], "No CAN or CAN FD frame has a message's length.");
  Json& results = run["results"];
  ASSERT_EQ(results.size(), 3u);
  const char* const levels[] = {"error", "warning", "note"};
  for (std::size_t i = 0; i < results.size(); ++i) EXPECT_EQ(results[i]["level"], levels[i]);
  EXPECT_EQ(results[1]["message"]["text"],
            "the signal overlaps P: both have byte 0 bit 7 (in signal Q of message 256)");
  Json& place = results[1]["locations"][0]["physicalLocation"];
  EXPECT_EQ(place["artifactLocation"]["uri"], "AZ%23b.dbc");
  EXPECT_EQ(place["region"], Json::parse(R"({"startLine": 5, "startColumn": 10, "endLine": 5,
                                             "endColumn": 11})"));
  Json& related = results[1]["relatedLocations"][0];
  EXPECT_EQ(related["physicalLocation"]["region"]["startLine"], 4);
  EXPECT_EQ(related["message"]["text"], "signal P");
  const std::string path = (folder / "AZ#b.dbc").generic_string();
  Json absolute = parsed("lint \"" + path + "\" --sarif", 1);
  const std::string uri = absolute["runs"][0]["results"][0]["locations"][0]["physicalLocation"]
                                  ["artifactLocation"]["uri"];
  EXPECT_TRUE(uri.starts_with("file:///") && uri.ends_with("/AZ%23b.dbc")) << uri;
  Json none = parsed("lint AZ#b.dbc --sarif --disable all", 0);
  EXPECT_EQ(none["runs"][0]["results"], Json::array());
  Json mended = parsed("repair AZ#b.dbc --dry-run --sarif", 0);
  EXPECT_EQ(mended["runs"][0]["results"], Json::array());
}

TEST(Findings, FailOnTheirSeverity) {
  write_file("note.dbc",
             "BS_:\nBU_: A\nBO_ 1 M: 8 Ostrel__XXX\n SG_ P : 0|8@1+ (1,0) [0|0] \"\" A\n");
  write_file("warning.dbc", "BS_:\nBU_: A\nBO_ 1 M: 8 A\nBO_ 1 N: 8 A\n");
  write_file("error.dbc", "BU_: A\n");
  const ToolCase cases[] = {
      {"lint note.dbc", 0, "note.dbc: 1 note"},
      {"lint note.dbc --fail-on warning", 0, "note.dbc: 1 note"},
      {"lint note.dbc --fail-on note", 1, "note.dbc: 1 note"},
      {"lint note.dbc --fail-on info", 2, "", "info"},
      {"lint note.dbc error.dbc", 1, "missing-bs"},
      {"lint error.dbc --disable all", 1, "missing-bs"},
      {"lint note.dbc none.dbc error.dbc", 2, "missing-bs", "none.dbc: cannot be read"},
      {"check warning.dbc", 0, "[doubled-message]"},
      {"check warning.dbc --fail-on note", 1, "[doubled-message]"},
      {"check note.dbc --fail-on note", 0, "note.dbc: ok"},
      {"check error.dbc --fail-on warning", 1, "[missing-bs]"},
      {"check error.dbc none.dbc", 2, "[missing-bs]", "none.dbc"},
      {"check error.dbc --max-errors -1", 2, "", "--max-errors: \"-1\" is no whole number"},
      {"check error.dbc --max-errors 010", 1, "[missing-bs]"},
      {"check error.dbc --json --sarif", 2, "", "--sarif"},
      {"lint --explain no-such-rule", 2, "", "there is no rule \"no-such-rule\""},
      {"lint --explain long-name", 0, "Parameter \"longest\", 32 unless set"},
      {"lint --explain factor-zero", 0, "factor-zero (error): A signal's factor is 0."},
      {"lint note.dbc --config x.json --no-config", 2, "", "--no-config"},
  };
  for (const ToolCase& c : cases) check_parts(c);
}

TEST(Findings, EndAtTheirLimit) {
  std::string text = "BS_:\nBU_: A\n";
  for (int i = 0; i < 150; ++i) text += "CM_ BO_ " + std::to_string(i) + " \"\";\n";
  write_file("a.dbc", text);
  const auto count = [](const std::string& arguments) {
    return Json::parse(run_tool(arguments).out).size();
  };
  EXPECT_EQ(count("check a.dbc --json"), 100u);
  EXPECT_EQ(count("check a.dbc --json --max-errors 0"), 150u);
  EXPECT_EQ(count("check a.dbc --json --max-errors 149"), 149u);
  EXPECT_EQ(count("repair a.dbc --dry-run --json"), 100u);
  EXPECT_EQ(count("repair a.dbc --dry-run --json --max-errors 0"), 150u);
  check_parts({"check a.dbc", 1, "a.dbc:102:9: ", "a.dbc: 50 findings more"});
  check_parts({"repair a.dbc --dry-run", 0,
               "and 50 more; see --max-errors\na.dbc can be mended in "
               "150 places: 150 unknown-message\n"});
}

TEST(Findings, FollowTheNearestConfiguration) {
  const std::string text = "BS_:\nBU_: A\nBO_ 256 M: 9 A\n";
  const auto folder = write_file("x.dbc", text).parent_path();
  std::filesystem::create_directories(folder / "a/b/c");
  write_file("a/b/c/x.dbc", text);
  write_file("a/x.dbc", text);
  write_file("a/.zelk-lint.json", R"({"rules": {"frame-length": "note"}})");
  check_parts({"lint a/b/c/x.dbc x.dbc", 1, "a/b/c/x.dbc: 1 note\n"});
  check_parts({"lint a/b/c/x.dbc", 0, ": 1 note\n"});
  write_file("a/b/.zelk-lint.json", "{}");  // hides the one around it
  check_parts({"lint a/b/c/x.dbc", 1, ": 1 error\n"});
  check_parts({"lint a/b/c/../../x.dbc", 0, ": 1 note\n"});
  write_file("a/b/.zelk-lint.json", R"({"fail-on": "note", "rules": {"frame-length": "warning"}})");
  check_parts({"lint a/b/c/x.dbc", 1, ": 1 warning\n"});
  check_parts({"lint a/b/c/x.dbc --fail-on error", 0, ": 1 warning\n"});
  check_parts({"lint a/b/c/x.dbc a/x.dbc", 1, "a/x.dbc: 1 note\n"});
  write_file("a/b/.zelk-lint.json", "{\"rules\": {\n  \"frame\": \"off\"}}");
  check_parts({"lint a/b/c/x.dbc", 2, "", ".zelk-lint.json:2:3: there is no rule \"frame\""});
  write_file("a/b/.zelk-lint.json", R"({"rules": {"narrow-range": {"share": 0.9}}})");
  write_file("a/b/r.dbc", "BS_:\nBU_: A\nBO_ 1 M: 8 A\n SG_ P : 0|8@1+ (1,0) [0|200] \"\" A\n");
  check_parts({"lint a/b/r.dbc --disable sender-receives", 0, "a/b/r.dbc: 1 note\n"});
}

// Files of a folder, nested, through the program: the places are those of the files.
TEST(Findings, StandInTheIncludedFiles) {
  const std::string main = "BS_:\nBU_: A\nCM_ \"IMPORT sub/a.dbc\";\nBO_ 3 C: 8 A\n";
  const auto folder = write_file("main.dbc", main).parent_path();
  std::filesystem::create_directories(folder / "sub");
  write_file("sub/a.dbc", "BO_ 1 A: 8 A\nCM_ \"IMPORT sub/b\";\n");
  write_file("sub/b.dbc", "BO_ 2 B 8 A\n");
  Json mended = parsed("repair main.dbc out.dbc --include . --json", 0);
  ASSERT_EQ(mended.size(), 3u);
  EXPECT_EQ(mended[0]["file"], "main.dbc");
  EXPECT_EQ(mended[1]["message"], "included \"sub/b.dbc\"");
  EXPECT_EQ(mended[2]["file"], "./sub/b.dbc");
  EXPECT_EQ(mended[2]["line"], 1);
  EXPECT_EQ(mended[2]["column"], 8);
  EXPECT_EQ(bytes_of(folder / "out.dbc"),
            "BS_:\nBU_: A\n\nBO_ 1 A: 8 A\n\nBO_ 2 B: 8 A\n\n\nBO_ 3 C: 8 A\n");
  Json log = parsed("repair main.dbc --dry-run --include . --sarif", 0);
  EXPECT_EQ(log["runs"][0]["tool"]["driver"]["rules"][0]["shortDescription"]["text"],
            "A comment names a file to include");
  for (const char* const name : {"../main", "/main", "sub/../main", "c:main", "none"}) {
    write_file("main.dbc", "BS_:\nBU_: A\nCM_ \"IMPORT " + std::string(name) + "\";\n");
    check_parts({"repair main.dbc out.dbc --include sub", 1, "", "cannot include"});
    check_parts({"list messages main.dbc --repair --include sub", 1, "", "cannot include"});
  }
}

}  // namespace

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

constexpr const char* kNetwork =
    "VERSION \"1\"\n\nBS_:\n\nBU_: Engine Dash\n\nBO_ 100 Motion: 8 Engine\n"
    " SG_ Speed : 8|16@1+ (0.1,0) [0|400] \"km/h\" Dash\n\n"
    "CM_ SG_ 100 Speed \"over ground\";\nBA_DEF_ BO_ \"Cycle\" INT 0 9;\n"
    "BA_DEF_DEF_ \"Cycle\" 1;\nBA_ \"Cycle\" BO_ 100 5;\nVAL_ 100 Speed 65535 \"none\" ;\n";

/// The running test's folder with nothing in it but the network, in "a.dbc".
std::filesystem::path fresh_folder() {
  const std::filesystem::path folder = write_file("a.dbc", kNetwork).parent_path();
  std::filesystem::remove_all(folder);
  write_file("a.dbc", kNetwork);
  return folder;
}

TEST(Convert, ThereAndBack) {
  const std::filesystem::path folder = fresh_folder();
  const ToolCase cases[] = {
      {"rewrite a.dbc r.dbc", 0, ""},
      {"convert a.dbc a.JSON", 0, ""},
      {"convert a.JSON j.dbc", 0, ""},
      {"convert a.JSON named --from " ZELK_JSON_MODULE " --to " ZELK_JSON_MODULE, 0, ""},
      {"convert named n.dbc --from json", 0, ""},
  };
  for (const ToolCase& c : cases) check(c);
  const std::string expected = bytes_of(folder / "r.dbc");
  for (const char* name : {"j.dbc", "n.dbc"}) EXPECT_EQ(bytes_of(folder / name), expected) << name;

  // The attribute has no place in a KCD file.
  const ToolRun there = run_tool("convert a.dbc a.kcd");
  EXPECT_EQ(there.exit_code, 0) << there.err;
  EXPECT_NE(there.err.find("a.kcd: warning: "), std::string::npos) << there.err;
  EXPECT_EQ(run_tool("convert a.kcd k.dbc").exit_code, 0);
  const std::string difference = run_tool("diff a.dbc k.dbc").out;
  EXPECT_NE(difference.find("attribute \"Cycle\": 5 -> none"), std::string::npos) << difference;
  EXPECT_EQ(difference.find("Motion.Speed"), std::string::npos) << difference;
}

// The database is the same in all formats, and no file comes to be.
TEST(Convert, ReadWithoutConversion) {
  const std::filesystem::path folder = fresh_folder();
  write_file("log", "can0 064#00E803\n");
  run_tool("convert a.dbc a.json");
  run_tool("convert a.dbc b.KCD");
  write_file("b.DBC", "mine");
  for (const std::string file : {"a.json", "b.KCD"}) {
    const std::string name = file.substr(0, 1);
    const ToolCase cases[] = {
        {"check " + file, 0, file + ": ok, 2 nodes, 1 message, 1 signal"},
        {"show " + file + " Motion.Speed", 0, "Signal Speed of message Motion"},
        {"list nodes " + file + " a.dbc --csv", 0, name + ",Dash,\r\na"},
        {"find Speed " + file + " ./" + file, 0, name + ": signal Speed", "named twice"},
        {"decode " + file + " --log log", 0, "can0 Motion Speed=100 km/h\n"},
        {"encode " + file + " Motion Speed=none", 0, "064#00FFFF0000000000\n"},
        {"diff " + file + " " + file + " --json", 0, "[]\n"},
        {"edit " + file + " --delete-message 100", 2, "", "zelk convert"},
        {"rewrite a.dbc " + file, 2, "", "zelk convert"},
        {"show no-" + file, 1, "", "no-" + file + ": database: not found"},
    };
    for (const ToolCase& c : cases) check_parts(c);
  }
  EXPECT_EQ(run_tool("rewrite b.KCD c.dbc").exit_code, 0);
  check_parts({"show c.dbc Speed", 0, "Signal Speed"});
  EXPECT_EQ(bytes_of(folder / "b.DBC"), "mine");
}

TEST(Convert, Refusals) {
  const std::filesystem::path folder = fresh_folder();
  write_file("b.json", "{ \"format\": ");
  write_file("c.json",
             R"({"format":"zelk-json","version":1,"encoding":"utf-8","nodes":[{"name":"a b;"}]})");
  write_file("taken.json", "mine");
  const ToolCase cases[] = {
      {"convert a.dbc taken.json", 1, "", "taken.json: exists already"},
      {"convert a.dbc out.txt", 2, "", "--to: the extension of \"out.txt\" tells no format"},
      {"convert a.dbc out --to no.so", 1, "", "./no.so: no such module"},
      {"convert a.dbc out --to taken.json", 1, "", "./taken.json: cannot be loaded"},
      {"convert a.dbc out.json --export-function none", 1, "", "no function \"none\""},
      {"convert b.json out.dbc", 1, "", "b.json: "},
      {"convert c.json out.dbc", 1, "", "out.dbc: not written, as it could not be read again"},
      {"convert missing.json out.dbc", 1, "", "missing.json: database: not found"},
      {"convert a.dbc no/out.dbc", 1, "", "no/out.dbc: could not be written"},
  };
  for (const ToolCase& c : cases) check(c);
  EXPECT_EQ(bytes_of(folder / "taken.json"), "mine");
  for (const char* name : {"out", "out.dbc", "out.json"})
    EXPECT_FALSE(std::filesystem::exists(folder / name)) << name;
}

}  // namespace

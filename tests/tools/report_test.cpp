#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/files.hpp"
#include "tools/run_tool.hpp"

namespace {

const std::string kHead = "VERSION \"<v>\"\nBS_:\nBU_: Engine Dash\n";
const std::string kNetwork = kHead +
                             "BO_ 100 Motion: 2 Engine\n"
                             " SG_ Page M : 0|4@1+ (1,0) [0|15] \"\" Dash\n"
                             " SG_ Speed m3 : 15|8@0- (0.5,-4) [-68|59.5] \"\xB0<\" Dash,Engine\n"
                             "BO_ 2566844926 Group: 8 Ostrel__XXX\n"
                             "BO_ 100 Motion: 1 Dash\n"
                             "EV_ Lid: 0 [0|1] \"\" 0 7 DUMMY_NODE_OSTREL3 Dash;\n"
                             "CM_ BO_ 100 \"a & 'b'\";\nCM_ SG_ 100 Speed \"bell \x07\";\n"
                             "BA_DEF_ BO_ \"VFrameFormat\" ENUM \"StandardCAN\",\"J1939PG\";\n"
                             "BA_DEF_ BO_ \"GenMsgCycleTime\" INT 0 1000;\n"
                             "BA_DEF_DEF_ \"VFrameFormat\" \"J1939PG\";\n"
                             "BA_DEF_DEF_ \"GenMsgCycleTime\" 0;\n"
                             "BA_ \"GenMsgCycleTime\" BO_ 100 20;\n"
                             "VAL_ 100 Speed -1 \"back\" 7 \"<i>\" ;\n";

/// Each must be there, behind the one before it.
void check_order(const std::string& page, const std::vector<std::string>& parts) {
  std::size_t at = 0;
  for (const std::string& part : parts) {
    const std::size_t found = page.find(part, at);
    EXPECT_NE(found, std::string::npos) << part;
    if (found != std::string::npos) at = found + part.size();
  }
}

TEST(Report, SaysAllOfADatabase) {
  write_file("n.dbc", kNetwork);
  const ToolRun run = run_tool("report n.dbc");
  EXPECT_EQ(run.exit_code, 0) << run.err;
  check_order(
      run.out,
      {"<!DOCTYPE html>",
       "<title>n.dbc</title>",
       "Version<dd>&lt;v&gt;",
       "<a href=#message-100>Motion</a><td>0x064<td>11-bit<td><td>2<td>2<td>20<td>Engine<td>Dash, "
       "Engine<td>a &amp; &#39;b&#39;",
       "<a href=#message-2566844926>Group</a><td>0x18FEF1FE<td>29-bit<td>0xFEF1<td>8<td>0",
       "<a href=#message-100~2>Motion</a>",
       "id=message-100>",
       "0x64 (100), 11-bit",
       "<a href=#node-Dash>Dash</a>",
       "<a href=#node-Engine>Engine</a>",
       "<th>Coding <small>else Intel, unsigned</small>",
       "<tr id=100.Page>",
       "<i>multiplexor</i>",
       "<tr id=100.Speed><th>Speed<td>15<td>8<td>Motorola, signed<td>0.5<td>-4<td>-68 to "
       "59.5<td>\u00B0&lt;<td><i>for <a href=#100.Page>Page</a> = 3</i><p>bell \u2407",
       "<li>-1 = back<li>7 = &lt;i&gt;",
       "sender-receives",
       "<td>1,2",
       "id=message-2566844926>",
       "PGN 0xFEF1 (65265), priority 6, source any",
       "Sends 1",
       "Sends 1",
       "Receives 1",
       "<tr><th><a href=#node-Engine>Engine</a><td>1<td>1",
       "<tr id=variable-Lid>",
       "VFrameFormat<td>message<td>ENUM",
       "</html>"});
}

TEST(Report, EmptyBrokenAndImportedFiles) {
  write_file("empty.dbc", "BS_:\nBU_:\n");
  write_file("broken.dbc", "BO_ 7 Door: 1 Dash\n SG_ 2nd : 0|4@1+ (1,0) [0|15] \"\" Dash\n");
  write_file("n.dbc", kNetwork);
  ASSERT_EQ(run_tool("convert n.dbc n.json").exit_code, 0);
  const ToolCase cases[] = {
      {"report empty.dbc", 0, "The database has no messages.", ""},
      {"report broken.dbc", 1, "", "broken.dbc: cannot be read; zelk repair"},
      {"report broken.dbc --repair", 0, "`2nd` renamed to _2nd", "mended in 3 places"},
      {"report n.json", 0, "Rules are applied to DBC files only.", ""},
  };
  for (const ToolCase& c : cases) check_parts(c);
  write_file(".zelk-lint.json", R"({"rules": {"sender-receives": "off"}})");
  EXPECT_EQ(run_tool("report n.dbc").out.find("sender-receives"), std::string::npos);
  write_file(".zelk-lint.json", "{");
  check_parts({"report n.dbc", 1, "", ".zelk-lint.json"});
}

TEST(Report, LosesNoFile) {
  const auto in = write_file("n.dbc", kNetwork);
  const auto page = write_file("page.html", "old");
  std::filesystem::create_hard_link(in, std::filesystem::path(in).replace_filename("n.html"));
  const ToolCase refused[] = {
      {"report n.dbc -o n.html", 1, "", "n.dbc is both a database to read and the output"},
      {"report n.dbc -o other.kcd", 1, "", "other.kcd is named as a database"},
      {"report none.dbc -o page.html", 1, "", "none.dbc"},
      {"report n.dbc -o none/page.html", 1, "", "none/page.html: could not be written: "},
      {"report n.dbc n.dbc n.dbc -o page.html", 2, "", "FILE"},
      {"report -o page.html", 2, "", "FILE is required"},
  };
  for (const ToolCase& c : refused) check_parts(c);
  EXPECT_EQ(bytes_of(in), kNetwork);
  EXPECT_EQ(bytes_of(page), "old");
  EXPECT_EQ(run_tool("report n.dbc", Output::kRefused).exit_code, 1);
  check({"report n.dbc -o page.html", 0, ""});
  EXPECT_EQ(bytes_of(page), run_tool("report n.dbc -o -").out);
}

// Equal lists of values stand with the first signal that has them, when they are long enough.
TEST(Report, WritesEqualValuesOnce) {
  const std::string values =
      " 0 \"the first state\" 1 \"the second state\" 2 \"the third state\" ;\n";
  const auto signal = [](const char* name) {
    return std::string(" SG_ ") + name + " : 0|2@1+ (1,0) [0|3] \"\" Dash\n";
  };
  write_file("v.dbc", kHead + "BO_ 1 A: 1 Engine\n" + signal("S") + signal("T") + signal("U") +
                          "BO_ 2 B: 1 Engine\n" + signal("S") + signal("T") + "VAL_ 1 S" + values +
                          "VAL_ 1 T 1 \"on\" ;\nVAL_ 1 U" + values +
                          "VAL_ 2 S 1 \"on\" ;\nVAL_ 2 T" + values);
  const ToolRun run = run_tool("report v.dbc");
  EXPECT_EQ(run.exit_code, 0) << run.err;
  check_order(run.out,
              {"<th>S<td>", "<ul class=values id=values1><li>0 = the first state<li>1 = the",
               "<th>T<td>", "<ul class=values><li>1 = on</ul>", "<th>U<td>",
               "<a href=#values1>3 values</a>", "id=message-2>", "<th>S<td>",
               "<ul class=values><li>1 = on</ul>", "<th>T<td>", "<a href=#values1>3 values</a>"});
  EXPECT_EQ(run.out.find("values2"), std::string::npos);
}

TEST(Report, IsBounded) {
  std::string messages;
  for (int id = 0; id < 20000; ++id)
    messages += "BO_ " + std::to_string(0x80000000U + static_cast<unsigned>(id)) + " M" +
                std::to_string(id) + ": 8 Dash\n";
  write_file("many.dbc", kHead + messages);
  write_file("long.dbc", kHead + "CM_ \"" + std::string(3000000, '\xC3') + "\";\n");
  const ToolRun many = run_tool("report many.dbc");
  check_order(many.out,
              {"Of 20000 messages with 0 signals the first 10000 are here",
               "<a href=#message-2147493647>M9999</a>", "id=message-2147493647>", "</html>"});
  EXPECT_EQ(many.out.find("2147493648"), std::string::npos);
  const ToolRun longest = run_tool("report long.dbc");
  check_order(longest.out, {"\u00C3\u00C3 <em>... and 2980000 more bytes", "</html>"});
  EXPECT_LT(longest.out.size(), 200000U);
}

}  // namespace

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

/// What of the page's elements begins with `start`: values of an attribute, quoted or not.
std::vector<std::string> values_of(const std::string& page, const std::string& start) {
  std::vector<std::string> values;
  for (std::size_t at = page.find(start); at != std::string::npos; at = page.find(start, at)) {
    at += start.size();
    if (page[at] == '"') ++at;
    values.push_back(page.substr(at, page.find_first_of("\"> ", at) - at));
  }
  return values;
}

/// Checks that each element has an id of its own and each link leads to one; returns how many
/// links there are.
std::size_t check_links(const std::string& page, const std::string& name) {
  const std::string elements = page.substr(0, page.rfind("<script>"));
  std::set<std::string> ids;
  for (const std::string& id : values_of(elements, " id="))
    EXPECT_TRUE(ids.insert(id).second) << name << ": two elements are " << id;
  std::size_t links = 0;
  for (const std::string& link : values_of(elements, "href=")) {
    if (!link.starts_with('#')) continue;
    ++links;
    EXPECT_TRUE(ids.contains(link.substr(1))) << name << ": " << link << " leads nowhere";
  }
  return links;
}

// Doubled and empty messages, payloads beyond the frame, shared bits, ranges that nothing has.
constexpr const char* kOdd =
    "BS_:\n\nBU_: A B\n\nVAL_TABLE_ T 0 \"z\" ;\n\n"
    "BO_ 1 Zero: 0 A\n\n"
    "BO_ 2 Wide: 64 A\n"
    " SG_ Mux M : 0|8@1+ (1,0) [0|1] \"\" B\n"
    " SG_ A m0 : 8|8@1+ (1e-300,0) [0|1e-9] \"\" B\n"
    " SG_ B m1 : 8|8@1+ (-1,1e308) [-1e308|1e308] \"\" B\n"
    " SG_ Past : 510|8@1+ (1,0) [0|9999999] \"\" A,B\n"
    " SG_ Over : 4|16@0- (1,0) [0|0] \"\" A\n\n"
    "BO_ 2 Wide: 8 B\n"
    " SG_ Mux M : 0|8@1+ (1,0) [0|1] \"\" A\n"
    " SG_ A m0 : 8|8@1+ (1,0) [0|1] \"\" A\n\n"
    "BO_ 2364540158 Eec: 8 B\n\n"
    "EV_ Lid: 0 [0|1] \"\" 0 7 DUMMY_NODE_OSTREL0 A,B;\n"
    "CM_ BU_ A \"node\";\n"
    "BA_DEF_ BO_ \"VFrameFormat\" ENUM \"StandardCAN\",\"J1939PG\";\n"
    "BA_DEF_DEF_ \"VFrameFormat\" \"J1939PG\";\n"
    "SIG_GROUP_ 2 Grp 1 : A Past;\n";

// Names that no DBC file has.
constexpr const char* kHostile =
    R"({"format": "zelk-json", "version": 1, "encoding": "utf-8",
 "nodes": [{"name": "A B"}, {"name": "A-20B"}, {"name": "\"><b>"}, {"name": "é#~2"}],
 "value_tables": [{"name": "<&>", "values": [{"value": 1, "text": "</script>"}]}],
 "messages": [{"name": "M x>y", "id": 5, "dlc": 8, "transmitter": "\"><b>", "signals": [
   {"name": "s <b>", "start_bit": 0, "length": 8, "receivers": ["A B", "é#~2"]},
   {"name": "s <b>", "start_bit": 8, "length": 8, "receivers": ["A-20B"]}]}]})";

TEST(ReportLinks, LeadToElements) {
  write_file("odd.dbc", kOdd);
  write_file("hostile.json", kHostile);
  ASSERT_EQ(run_tool("convert odd.dbc odd.json").exit_code, 0);
  ASSERT_EQ(run_tool("convert odd.dbc odd.kcd").exit_code, 0);
  write_file("empty.dbc", "BS_:\n\nBU_:\n");
  std::string many = "BS_:\n\nBU_: A B\n\n";
  for (int id = 0; id < 10'002; ++id) {
    many += "BO_ " + std::to_string(0x80000000U + static_cast<unsigned>(id)) + " M" +
            std::to_string(id) + ": 1 A\n";
  }
  write_file("many.dbc", many);
  const std::string example = std::string(ZELK_SOURCE_DIR) + "/examples/powertrain.dbc";
  const struct {
    std::string files;
    std::size_t least_links;
    std::string part = "";
  } cases[] = {
      {"odd.dbc", 100, ">Beyond the data length: Past, byte 64 bit 5 to byte 63 bit 6<"},
      {"odd.json", 100, "<tr><th>B<td>8<td>8<td><td>-1<td>1e+308<td>-1e+308 to 1e+308"},
      {"odd.kcd", 50},
      {"hostile.json", 20, "<a href=#node-A-20B>A B</a>"},
      {"empty.dbc", 3, "No rule finds anything"},
      {"many.dbc", 10'000, "and 8000 more"},
      {example, 500},
      {"odd.dbc odd.json", 1, "<b>The databases are the same.</b>"},
      {"odd.dbc empty.dbc", 10, "#removed-message-2~2"},
      {"hostile.json odd.kcd", 10, "M x&gt;y"},
      {"empty.dbc many.dbc", 1'000, "2 more are not shown."},
  };
  for (const auto& c : cases) {
    const ToolRun run = run_tool("report " + c.files);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_GE(check_links(run.out, c.files), c.least_links) << c.files;
    EXPECT_NE(run.out.find(c.part), std::string::npos) << c.files << c.part;
    for (const char* const raw : {"M x>y", "s <b>", "<&>"})
      EXPECT_EQ(run.out.find(raw), std::string::npos) << c.files << raw;
  }
}

// Texts of both pages end with whole characters, and say what they leave out.
TEST(ReportLinks, CutTextsTellTheRest) {
  std::string comment = "x";
  for (int i = 0; i < 5'001; ++i) comment += "\u00E9\u20AC";  // 2 and 3 bytes
  std::string values = "VAL_ 1 S ";
  for (int i = 0; i < 1'002; ++i) values += std::to_string(i) + " \"v\" ";
  const std::string head =
      "BS_:\n\nBU_: N\n\nBO_ 1 M: 2 N\n SG_ S : 0|16@1+ (1,0) [0|0] \"\" N\n\n";
  write_file("short.dbc", head);
  write_file("long.dbc", head + "CM_ BO_ 1 \"" + comment + "\";\n" + values + ";\n");
  const struct {
    const char* files;
    const char* part;
  } cases[] = {
      {"long.dbc", "\u20AC\u00E9 <em>... and 5008 more bytes, which are left out</em>"},
      {"long.dbc", "<td>N<td>N<td>x\u00E9\u20AC"},
      {"long.dbc", "\u20AC\u00E9...\n"},
      {"long.dbc", "<summary>1002 values</summary>"},
      {"long.dbc", "<em>2 more are left out</em>"},
      {"short.dbc long.dbc", "\u20AC\u00E9\u2026 (21008 more bytes)"},
  };
  for (const auto& c : cases) {
    const ToolRun run = run_tool(std::string("report ") + c.files);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_NE(run.out.find(c.part), std::string::npos) << c.files << ": " << c.part;
    EXPECT_EQ(run.out.find("\uFFFD"), std::string::npos) << c.files;
  }
}

TEST(ReportLinks, RefusalsLoseNothing) {
  const std::filesystem::path folder = write_file("odd.dbc", kOdd).parent_path();
  write_file("bad.dbc", "BO_ 7 Door: 1 Dash\n SG_ 2nd : 0|4@1+ (1,0) [0|15] \"\" Dash\n");
  write_file("bad.json", "{\"format\": \"zelk-json\", \"version\": 1, \"nodes\": 5}");
  write_file("page.html", "old");
  write_file("second.dbc", kOdd);
  std::filesystem::create_hard_link(folder / "second.dbc", folder / "second.html");
  const ToolCase cases[] = {
      {"report odd.dbc second.dbc -o second.html", 1, "", "second.dbc is both a database to read"},
      {"report odd.dbc second.dbc -o odd.dbc", 1, "", "odd.dbc is named as a database"},
      {"report odd.dbc none.dbc -o page.html", 1, "", "none.dbc"},
      {"report odd.dbc bad.dbc -o page.html", 1, "", "bad.dbc: cannot be read"},
      {"report bad.json -o page.html", 1, "", "nodes"},
      {"report odd.dbc -o page.html --bitrate 0", 2, "", "--bitrate"},
      {"report odd.dbc -o page.html --bitrate 500G", 2, "", "--bitrate"},
      {"report odd.dbc -o page.html --data-bitrate 21M", 2, "", "--data-bitrate"},
      {"report odd.dbc -o .", 1, "", "could not be written"},
  };
  for (const ToolCase& c : cases) check_parts(c);
  EXPECT_EQ(bytes_of(folder / "page.html"), "old");
  EXPECT_EQ(bytes_of(folder / "odd.dbc"), kOdd);
  EXPECT_EQ(bytes_of(folder / "second.html"), kOdd);
  check_parts({"report odd.dbc bad.dbc --repair", 0, "_2nd", "bad.dbc"});
}

}  // namespace

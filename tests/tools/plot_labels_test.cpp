#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/files.hpp"
#include "tools/run_tool.hpp"

namespace {

using Texts = std::vector<std::string>;

constexpr const char* kDatabase =
    "BS_:\n\nBU_: N\n\n"
    "BO_ 1 Motion: 8 N\n"
    " SG_ Count : 0|32@1+ (1,0) [0|0] \"\" N\n"
    " SG_ Fine : 0|32@1+ (0.0000001,1) [0|0] \"\" N\n"
    " SG_ Large : 0|32@1- (1e298,0) [0|0] \"\" N\n"
    " SG_ Hostile : 0|32@1+ (1,0) [0|0] \"<b>&'\x07\xB0\" N\n"
    " SG_ Rate : 32|32@1- (1,0) [0|0] \"\" N\n\n"
    "SIG_VALTYPE_ 1 Rate : 1;\n";

/// The text elements of a class, "tick", at the given place or at any other one.
Texts texts_of(const std::string& svg, const std::string& kind, const std::string& x, bool is_at) {
  Texts texts;
  const std::string begin = "<text class=\"" + kind;
  for (std::size_t at = svg.find(begin); at != std::string::npos; at = svg.find(begin, at + 1)) {
    const std::size_t behind = svg.find('>', at);
    const bool has_place = svg.substr(at, behind - at).find(" x=\"" + x + '"') != std::string::npos;
    if (has_place == is_at)
      texts.push_back(svg.substr(behind + 1, svg.find('<', behind) - behind - 1));
  }
  return texts;
}

std::string at_times(const char* first, const char* first_data, const char* last,
                     const char* last_data) {
  return std::string("(") + first + ") a 001#" + first_data + "\n(" + last + ") a 001#" +
         last_data + '\n';
}

// In 400 by 87 pixels there are at most about three steps on either axis; that of the values has
// 4 % of their range more at either end.
TEST(PlotLabels, TellPlacesApart) {
  const std::filesystem::path folder = write_file("labels.dbc", kDatabase).parent_path();
  const struct {
    const char* name;
    std::string log;
    Texts times;
    Texts values;
    const char* caption = "s";
    const char* signals = "Count";
  } cases[] = {
      {"seconds",
       at_times("0", "00000000", "10", "64000000"),
       {"0", "5", "10"},
       {"0", "50", "100"}},
      {"one point", "(5) a 001#00000000\n", {"4.5", "5.0", "5.5"}, {"-1", "0", "1"}},
      {"a counter far from 0, late in a long session",
       at_times("300000000", "4E61BC00", "300000010", "5E61BC00"),
       {"300000000", "300000005", "300000010"},
       {"12345680", "12345690"}},
      {"the last values of a counter",
       at_times("0", "FBFFFFFF", "0.000004", "FFFFFFFF"),
       {"0.000000", "0.000002", "0.000004"},
       {"4294967292", "4294967294"}},
      {"small steps beside 1",
       at_times("0", "00000000", "0.2", "02000000"),
       {"0.0", "0.1", "0.2"},
       {"1", "1.0000001", "1.0000002"},
       "s",
       "Fine"},
      {"nearly all that a double has",
       at_times("0", "01000080", "1", "FFFFFF7F"),
       {"0.0", "0.5", "1.0"},
       {"-2e+307", "0", "2e+307"},
       "s",
       "Large"},
      {"a curve without numbers does not widen the axis",
       at_times("0", "E80300000000C07F", "10", "F20300000000C07F"),
       {"0", "5", "10"},
       {"1000", "1005", "1010"},
       "s",
       "Count Rate"},
      {"times of a day",
       at_times("1700000000", "00000000", "1700000010", "64000000"),
       {"22:13:20", "22:13:25", "22:13:30"},
       {"0", "50", "100"},
       "2023-11-14, UTC"},
      {"midnight",
       at_times("1700006390", "00000000", "1700006410", "64000000"),
       {"11-14 23:59:50", "11-15 00:00:00", "11-15 00:00:10"},
       {"0", "50", "100"},
       "2023-11-14 to 2023-11-15, UTC"},
      {"milliseconds",
       at_times("1700000000", "00000000", "1700000000.003", "64000000"),
       {"22:13:20.000", "22:13:20.001", "22:13:20.002", "22:13:20.003"},
       {"0", "50", "100"},
       "2023-11-14, UTC"},
      {"days, multiples of five since 1970",
       at_times("1700000000", "00000000", "1700900000", "64000000"),
       {"2023-11-19", "2023-11-24"},
       {"0", "50", "100"},
       "2023-11-14 to 2023-11-25, UTC"},
      {"the last times that there are",
       at_times("9223372025", "00000000", "9223372035", "64000000"),
       {"23:47:05", "23:47:10", "23:47:15"},
       {"0", "50", "100"},
       "2262-04-11, UTC"},
  };
  for (const auto& c : cases) {
    write_file("labels.log", c.log);
    check({std::string("plot labels.dbc labels.log -o labels.svg --size 500x200 ") + c.signals, 0});
    const std::string svg = bytes_of(folder / "labels.svg");
    EXPECT_EQ(texts_of(svg, "tick", "70.0", false), c.times) << c.name;
    EXPECT_EQ(texts_of(svg, "tick", "70.0", true), c.values) << c.name;
    EXPECT_EQ(texts_of(svg, "unit", "476.0", true), Texts{c.caption}) << c.name;
  }
}

TEST(PlotLabels, DescribeThePicture) {
  const std::filesystem::path folder = write_file("told.dbc", kDatabase).parent_path();
  write_file("told.log", "(0) a 001#000000000000C07F\n(1.5) a 001#010000000000807F\n");
  check({"plot told.dbc told.log -o told.svg Hostile Rate", 0});
  const std::string svg = bytes_of(folder / "told.svg");
  EXPECT_NE(svg.find("From 0 s to 1.5 s. Hostile: 0 to 1 &lt;b&gt;&amp;&#39;\u2407\u00B0. "
                     "Rate: no numbers.</desc>"),
            std::string::npos)
      << svg.substr(0, 1000);
  EXPECT_EQ(svg.find('\x07'), std::string::npos);
  EXPECT_EQ(svg.find("<b>"), std::string::npos);
}

TEST(PlotLabels, RefusalsTellWhatAndWhere) {
  const std::filesystem::path folder = write_file("why.dbc", kDatabase).parent_path();
  write_file("why.log", "(1) a 001#0000000000000000\nnonsense\n(2) a 001#0000000000000000\n");
  write_file("bad.dbc", "BO_ 7 Door: 1 Dash\n SG_ 2nd : 0|4@1+ (1,0) [0|15] \"\" Dash\n");
  write_file("empty.log", "");
  write_file("why.svg", "old");
  std::filesystem::create_hard_link(folder / "why.log", folder / "linked.svg");
  const ToolCase cases[] = {
      {"plot why.dbc why.log Count -o why", 2, "",
       "written as .html, .svg or .png, not as \"why\""},
      {"plot why.dbc why.log Count -o why.svg --scale 9", 2, "", "--scale"},
      {"plot why.dbc why.log Count -o why.svg --size 500x20001", 2, "", "500x20001"},
      {"plot why.dbc why.log Count -o linked.svg", 1, "", "why.log is both read and the output"},
      {"plot why.dbc why.log count -o why.svg", 1, "", "no signal is named \"count\""},
      {"plot why.dbc why.log Count --jitter Nope -o why.svg", 1, "", "\"Nope\""},
      {"plot why.dbc why.log Count --start +9 -o why.svg", 1, "",
       "no frame has any of the signals"},
      {"plot why.dbc empty.log Count -o why.svg", 1, "", "empty.log"},
      {"plot b=why.dbc why.log Count -o why.svg", 1, "", "no frame has any of the signals"},
      {"plot why.dbc why.log Count --strict -o why.svg", 1, "", "why.log, line 2: not a frame"},
      {"plot bad.dbc why.log 2nd -o why.svg", 1, "", "bad.dbc: cannot be read"},
      {"plot why.dbc why.log --jitter Motion --start +1 -o why.svg", 1, "", "no frame has any"},
  };
  for (const ToolCase& c : cases) check_parts(c);
  EXPECT_EQ(bytes_of(folder / "why.svg"), "old");
  EXPECT_EQ(bytes_of(folder / "linked.svg"), bytes_of(folder / "why.log"));
}

}  // namespace

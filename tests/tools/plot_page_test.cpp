#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/files.hpp"
#include "tools/run_tool.hpp"

namespace {

using nlohmann::json;
using Numbers = std::vector<double>;

constexpr const char* kDatabase =
    "BS_:\n\nBU_: N\n\n"
    "BO_ 1 Motion: 8 N\n"
    " SG_ Speed : 0|16@1- (0.5,0) [0|0] \"km/h\" N\n"
    " SG_ Gear : 16|4@1+ (1,0) [0|15] \"\" N\n"
    " SG_ Lamp : 28|1@1+ (-3,1) [0|1] \"\" N\n"
    " SG_ Ratio : 32|32@1- (1,0) [0|0] \"</script><!--\" N\n\n"
    "BO_ 2 Other: 8 N\n"
    " SG_ Speed : 0|16@1- (0.1,0) [0|0] \"km/h\" N\n"
    " SG_ Huge : 16|16@1- (1e308,0) [0|0] \"x\" N\n"
    " SG_ Large : 32|4@1+ (1e308,0) [0|0] \"\" N\n"
    " SG_ Far : 36|4@1+ (1,1e17) [0|0] \"\" N\n\n"
    "BA_DEF_ BO_ \"GenMsgCycleTime\" INT 0 1000;\nBA_DEF_ BO_ \"Period\" INT 0 1000;\n"
    "BA_DEF_DEF_ \"GenMsgCycleTime\" 0;\nBA_DEF_DEF_ \"Period\" 25;\n"
    "BA_ \"GenMsgCycleTime\" BO_ 1 900;\n"
    "VAL_ 1 Gear -1 \"none\" 0 \"N\" 1 \"</script>\" 1 \"second name\" ;\n"
    "VAL_ 2 Large 0 \"a\" 1 \"b\" 10 \"ten\" ;\n"
    "VAL_ 2 Far 0 \"a\" 1 \"b\" ;\n"
    "SIG_VALTYPE_ 1 Ratio : 1;\n";

std::string from_base64(const std::string& text) {
  const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : text.substr(0, text.find('='))) {
    bits = bits << 6 | static_cast<std::uint32_t>(digits.find(c));
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 0xFF);
  }
  return bytes;
}

template <typename Number>
Numbers numbers_in(const json& text) {
  const std::string bytes = from_base64(text.get<std::string>());
  EXPECT_EQ(bytes.size() % sizeof(Number), 0u);
  std::vector<Number> numbers(bytes.size() / sizeof(Number));
  std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(Number));
  return {numbers.begin(), numbers.end()};
}

/// Differences, low bits first, the sign in the lowest one; summed up.
std::vector<std::int64_t> sums_in(const json& text) {
  std::vector<std::int64_t> sums;
  std::uint64_t value = 0;
  int shift = 0;
  for (const char c : from_base64(text.get<std::string>())) {
    const auto byte = static_cast<unsigned char>(c);
    value |= std::uint64_t{byte & 0x7FU} << shift;
    shift += 7;
    if (byte >= 0x80) continue;
    const auto half = static_cast<std::int64_t>(value >> 1);
    sums.push_back((sums.empty() ? 0 : sums.back()) + (value % 2 == 0 ? half : -half - 1));
    value = 0;
    shift = 0;
  }
  EXPECT_EQ(shift, 0);
  return sums;
}

Numbers unpacked(const json& column) {
  if (column.contains("f64")) return numbers_in<double>(column["f64"]);
  if (column.contains("f32")) return numbers_in<float>(column["f32"]);
  Numbers numbers;
  if (column.contains("codes")) {
    const Numbers table = numbers_in<double>(column["table"]);
    for (const std::int64_t code : sums_in(column["codes"]))
      numbers.push_back(table.at(static_cast<std::size_t>(code)));
    return numbers;
  }
  std::int64_t ticks = 0;
  for (const std::int64_t difference : sums_in(column["ticks"])) {
    ticks += difference;
    numbers.push_back(static_cast<double>(ticks) / column["perSecond"].get<double>());
  }
  return numbers;
}

/// A line for each curve, "UNIT|NAME TIME=VALUE...", and each lane, "NAME BEGIN-END=TEXT..."; the
/// ends of lanes to a tenth of a second. A value that is none is null.
std::string text_of(const json& figure) {
  std::string text;
  for (const json& axis : figure["axes"]) {
    for (const json& curve : axis["curves"]) {
      text += axis["unit"].get<std::string>() + '|' + curve["name"].get<std::string>();
      const Numbers times = unpacked(figure["times"].at(curve["times"].get<std::size_t>()));
      const Numbers values = unpacked(curve["values"]);
      EXPECT_EQ(times.size(), values.size()) << text;
      for (std::size_t i = 0; i < times.size() && i < values.size(); ++i)
        text += ' ' + json(times[i]).dump() + '=' + json(values[i]).dump();
      text += '\n';
    }
  }
  for (const json& lane : figure["lanes"]) {
    text += lane["name"].get<std::string>();
    const Numbers begins = unpacked(lane["begins"]);
    const Numbers ends = unpacked(lane["ends"]);
    const Numbers codes = unpacked(lane["codes"]);
    EXPECT_EQ(begins.size() + ends.size(), 2 * codes.size());
    for (std::size_t i = 0; i < codes.size(); ++i)
      text += ' ' + json(begins.at(i)).dump() + '-' +
              json(std::round(ends.at(i) * 10) / 10).dump() + '=' +
              lane["texts"].at(static_cast<std::size_t>(codes[i])).get<std::string>();
    text += '\n';
  }
  return text;
}

bool has_no_pages() {
  return run_tool("plot -o x.html").err.find("this build has no plots") != std::string::npos;
}

/// The page's data. What comes from files ends no script, and begins no comment in one.
json figure_in(const std::string& page) {
  const std::string begin = "<script type=\"application/json\" id=\"figure\">";
  const std::size_t at = page.find(begin) + begin.size();
  const std::string data = page.substr(at, page.find("</script>", at) - at);
  EXPECT_EQ(data.find('<'), std::string::npos) << data;
  return json::parse(data, nullptr, false);
}

TEST(PlotPage, HasExactPoints) {
  if (has_no_pages()) GTEST_SKIP() << "there is no uPlot";
  const std::filesystem::path folder = write_file("page.dbc", kDatabase).parent_path();
  const struct {
    const char* name;
    const char* log;
    const char* arguments;
    const char* points;
    const char* origin = "0";
  } cases[] = {
      {"equal times", "(0) a 001#0000\n(1.5) a 001#FFFF\n(1.5) a 001#0100\n(3) a 001#0080\n",
       "Motion.Speed", "km/h|Speed 0.0=0.0 1.5=-0.5 1.5=0.5 3.0=-16384.0\n"},
      {"backwards", "(2) a 001#0200\n(1) a 001#0000\n(3) a 001#0400\n",
       "Motion.Speed --times points", "km/h|Speed 1.0=0.0 2.0=1.0 3.0=2.0\n"},
      {"nanoseconds of a date, in digits that no float has",
       "(1700000000.123456789) a 002#0300\n(1700000000.123456790) a 002#0700\n"
       "(1700000007) a 002#FFFF\n",
       "Other.Speed",
       "km/h|Speed 0.123456789=0.30000000000000004 0.12345679=0.7000000000000001 7.0=-0.1\n",
       "1700000000000000000"},
      {"the last second that a log can have",
       "(9223372034.5) a 001#0000\n(9223372035.999999999) a 001#0200\n", "Motion.Speed",
       "km/h|Speed 0.5=0.0 1.999999999=1.0\n", "9223372034000000000"},
      {"the first and the last time", "(0) a 001#0000\n(9223372035) a 001#0200\n", "Motion.Speed",
       "km/h|Speed 0.0=0.0 9223372035.0=1.0\n"},
      {"more than a double has", "(1) a 002#0000FF7F\n(2) a 002#00000100\n(3) a 002#00000000\n",
       "Huge", "x|Huge 1.0=null 2.0=1e+308 3.0=0.0\n"},
      {"few values, one of which is no number",
       "(1) a 001#0000000000000080\n(2) a 001#000000000000803F\n(3) a 001#0000000000000080\n"
       "(4) a 001#000000000000C07F\n(5) a 001#000000000000803F\n(6) a 001#000000000000C07F\n"
       "(7) a 001#0000000000000080\n(8) a 001#000000000000803F\n",
       "Ratio",
       "</script><!--|Ratio 1.0=0.0 2.0=1.0 3.0=0.0 4.0=null 5.0=1.0 6.0=null 7.0=0.0 8.0=1.0\n"},
      {"values described, but not told apart by their numbers",
       "(1) a 002#0000000010\n(2) a 002#000000000A\n", "Large Far",
       "|Large 1.0=0.0 2.0=null\n|Far 1.0=1e+17 2.0=1e+17\n"},
      {"lanes, and frames too short for them",
       "(0) a 001#000000\n(1) a 001#000001\n(2) a 001#000005\n(3) a 001#0000\n"
       "(4) a 001#00000010\n(5) a 001#00000000\n",
       "Gear Lamp",
       "Gear 0.0-1.0=N 1.0-2.0=</script> 2.0-4.0=5 4.0-5.0=N\nLamp 4.0-5.0=-2 5.0-5.0=1\n"},
      {"a lane ends a cycle behind its last frame before a gap",
       "(0) a 001#000000\n(1) a 001#000000\n(2) a 001#000000\n(3) a 001#000000\n"
       "(4) a 001#000000\n(20) a 001#000000\n",
       "Gear", "Gear 0.0-5.0=N 20.0-20.0=N\n"},
      {"jitter of two interfaces, one nominal cycle",
       "(10) a 001#00\n(11) a 001#00\n(11.9) a 001#\n(12.9) b 001#\n(13.9) b 001#\n",
       "--jitter Mot?on",
       "ms|Motion, time between frames (a) 11.0=1000.0 11.9=900.0\n"
       "ms|Motion, nominal cycle 11.0=900.0 13.9=900.0\n"
       "ms|Motion, time between frames (b) 13.9=1000.0\n"},
      {"another attribute, of which the default counts", "(1) a 002#\n(1) a 002#\n(2) a 002#\n",
       "--jitter Other --cycle-time Period",
       "ms|Other, time between frames 1.0=0.0 2.0=1000.0\nms|Other, nominal cycle 1.0=25.0 "
       "2.0=25.0\n"},
      {"no cycle is stated", "(1) a 002#\n(2) a 002#\n", "--jitter Other",
       "ms|Other, time between frames 2.0=1000.0\n"},
      {"a window, from its first frame on", "(5) a 001#0000\n(6) a 001#0200\n(7) a 001#0400\n",
       "Motion.Speed --start +1 --stop +1.5", "km/h|Speed 6.0=1.0\n"},
      {"relative times", "(1700000005) a 001#0000\n(1700000006.5) a 001#0200\n",
       "Motion.Speed --relative", "km/h|Speed 0.0=0.0 1.5=1.0\n"},
  };
  for (const auto& c : cases) {
    write_file("page.log", c.log);
    const ToolRun run =
        run_tool(std::string("plot page.dbc page.log -o exact.html ") + c.arguments);
    EXPECT_EQ(run.exit_code, 0) << c.name << run.err;
    const json figure = figure_in(bytes_of(folder / "exact.html"));
    ASSERT_TRUE(figure.is_object()) << c.name;
    EXPECT_EQ(text_of(figure), c.points) << c.name;
    EXPECT_EQ(figure["origin"], c.origin) << c.name;
  }
}

// Two logs, in the order of their times whatever that of the command line; two messages and two
// interfaces with a signal of one name.
TEST(PlotPage, JoinsLogs) {
  if (has_no_pages()) GTEST_SKIP() << "there is no uPlot";
  const std::filesystem::path folder = write_file("joined.dbc", kDatabase).parent_path();
  write_file("first.log", "(1) a 001#0200\n(2) a 001#0400\n");
  write_file("then.log", "(3) a 001#0600\n(4) a 001#0800\n");
  write_file("within.log", "(1.5) a 001#0A00\n");
  write_file("both.log", "(1) <b>& 001#0200\n(2) \xE9 001#0400\n(3) <b>& 002#0A00\n");
  const struct {
    const char* arguments;
    const char* points;
  } cases[] = {
      {"then.log first.log", "km/h|Speed 1.0=1.0 2.0=2.0 3.0=3.0 4.0=4.0\n"},
      {"within.log first.log",
       "km/h|Speed (within.log) 1.5=5.0\nkm/h|Speed (first.log) 1.0=1.0 2.0=2.0\n"},
      {"then.log first.log --relative",
       "km/h|Speed (then.log) 0.0=3.0 1.0=4.0\nkm/h|Speed (first.log) 0.0=1.0 1.0=2.0\n"},
      {"both.log",
       "km/h|Motion.Speed (<b>&) 1.0=1.0\nkm/h|Motion.Speed (\u00E9) 2.0=2.0\n"
       "km/h|Other.Speed 3.0=1.0\n"},
  };
  for (const auto& c : cases) {
    const ToolRun run =
        run_tool(std::string("plot Speed -o joined.html joined.dbc ") + c.arguments);
    EXPECT_EQ(run.exit_code, 0) << c.arguments << run.err;
    const std::string page = bytes_of(folder / "joined.html");
    EXPECT_EQ(text_of(figure_in(page)), c.points) << c.arguments;
    EXPECT_EQ(page.find("<b>"), std::string::npos) << c.arguments;
  }
}

}  // namespace

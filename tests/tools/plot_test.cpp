#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/files.hpp"
#include "tools/run_tool.hpp"

namespace {

using std::filesystem::path;

constexpr const char* kDatabase =
    "BS_:\n\nBU_: N\n\n"
    "BO_ 1 Motion: 8 N\n"
    " SG_ Speed : 0|16@1- (0.5,0) [0|0] \"km/h\" N\n"
    " SG_ Level : 16|8@1+ (1,0) [0|100] \"%\" N\n"
    " SG_ Gear : 24|4@1+ (1,0) [0|15] \"\" N\n"
    " SG_ Lamp : 28|1@1+ (1,0) [0|1] \"\" N\n"
    " SG_ Ratio : 32|32@1- (1,0) [0|0] \"\" N\n\n"
    "BO_ 2 Pages: 2 N\n"
    " SG_ Page M : 0|8@1+ (1,0) [0|1] \"\" N\n"
    " SG_ Slow m0 : 8|8@1+ (1,0) [0|0] \"s\" N\n"
    " SG_ Speed m1 : 8|8@1+ (1,0) [0|0] \"s\" N\n\n"
    "BO_ 3 Empty: 0 N\n\n"
    "BA_DEF_ BO_ \"GenMsgCycleTime\" INT 0 1000;\nBA_DEF_DEF_ \"GenMsgCycleTime\" 0;\n"
    "BA_ \"GenMsgCycleTime\" BO_ 1 900;\n"
    "VAL_ 1 Level 254 \"fault\" 255 \"not available\" ;\n"
    "VAL_ 1 Gear 0 \"Neutral <b>&\\\"\" 1 \"First\" ;\n"
    "SIG_VALTYPE_ 1 Ratio : 1;\n";

/// What of a picture's elements begins with `start`, up to `end`.
std::vector<std::string> pieces(const std::string& svg, const std::string& start,
                                const std::string& end) {
  std::vector<std::string> result;
  for (std::size_t at = svg.find(start); at != std::string::npos; at = svg.find(start, at)) {
    at += start.size();
    result.push_back(svg.substr(at, svg.find(end, at) - at));
  }
  return result;
}

/// A message with 65 signals of one bit.
std::string wide_message(int id) {
  std::string text = "BO_ " + std::to_string(id) + " Wide: 64 N\n";
  for (int i = 0; i < 65; ++i) {
    const std::string number = std::to_string(i);
    text += " SG_ W" + number + " : " + number + "|1@1+ (1,0) [0|0] \"\" N\n";
  }
  return text + '\n';
}

using Texts = std::vector<std::string>;

// Of 1100 pixels 1000 are for the time, from 76 on.
TEST(Plot, DrawsCurvesAndLanes) {
  const path folder = write_file("car.dbc", kDatabase).parent_path();
  const struct {
    const char* name;
    const char* log;
    const char* signals;
    Texts curves;  ///< the paths, without their heights
    Texts lanes;   ///< titles of all bands
  } cases[] = {
      {"a line",
       "(0) a 001#0000\n(1) a 001#0200\n(2) a 001#0000\n",
       "Motion.Speed",
       {"M76.0 L576.0 L1076.0 "},
       {}},
      {"one point", "(0) a 001#0000\n", "Motion.Speed", {"M576.0 h0"}, {}},
      {"five cycles are no gap, seven are, and short frames have no value",
       "(0) a 001#00\n(0) a 001#0000\n(1) a 001#0000\n(2) a 001#0000\n(3) a 001#0000\n"
       "(4) a 001#0000\n(5) a 001#0000\n(6) a 001#0000\n(7) a 001#0000\n(8) a 001#0000\n"
       "(13) a 001#0000\n(20) a 001#0000\n",
       "Motion.Speed",
       {"M76.0 L126.0 L176.0 L226.0 L276.0 L326.0 L376.0 L426.0 L476.0 L726.0 M1076.0 h0"},
       {}},
      {"pages that alternate are no gap",
       "(0) a 002#0005\n(1) a 002#0105\n(2) a 002#0005\n(3) a 002#0105\n(4) a 002#0005\n",
       "Slow",
       {"M76.0 L576.0 L1076.0 "},
       {}},
      {"lanes",
       "(0) a 001#00000000\n(1) a 001#00000001\n(2) a 001#00000017\n(4) a 001#00000017\n",
       "Gear Lamp",
       {},
       {"Neutral &lt;b&gt;&amp;&quot;", "First", "7", "0", "1"}},
      {"special values are no lane",
       "(0) a 001#000001\n(1) a 001#0000FF\n",
       "Level",
       {"M76.0 L1076.0 "},
       {}},
      {"no numbers",
       "(0) a 001#000000000000807F\n(1) a 001#000000000000C07F\n"
       "(2) a 001#0000000000000000\n(3) a 001#0000000000000000\n",
       "Ratio",
       {"M742.7 L1076.0 "},
       {}},
  };
  for (const auto& c : cases) {
    write_file("log", c.log);
    check({std::string("plot car.dbc log -o out.svg --size 1100x400 ") + c.signals, 0});
    const std::string svg = bytes_of(folder / "out.svg");
    Texts curves = pieces(svg, "class=\"curve\" d=\"M", "\"");
    std::erase_if(curves, [](const std::string& data) { return data.ends_with("h26"); });
    for (std::string& data : curves) {
      std::string across = "M";
      for (std::size_t i = 0; i < data.size(); ++i) {
        across += data[i];
        if (data[i] == ' ') i = std::min(data.find_first_of("MLh", i), data.size()) - 1;
      }
      data = across;
    }
    EXPECT_EQ(curves, c.curves) << c.name;
    Texts lanes;
    for (const std::string& band : pieces(svg, "<g>\n<title>", "/title>\n<rect class=\"band"))
      if (band.find('\n') == std::string::npos) lanes.push_back(band.substr(0, band.size() - 1));
    EXPECT_EQ(lanes, c.lanes) << c.name;
  }
}

TEST(Plot, TellsLogsAndInterfacesApart) {
  const path folder = write_file("car.dbc", kDatabase).parent_path();
  write_file("a.log", "(1) can0 001#0000\n(2) can0 001#0000\n");
  write_file("b.log", "(3) can0 001#0000\n(4) can1 001#0000\n");
  write_file("pages.log", "(1) can0 002#0000\n(2) can0 002#0100\n(3) can0 001#0000\n");
  const struct {
    const char* arguments;
    Texts names;
  } cases[] = {
      {"a.log Motion.Speed", {"Speed"}},
      {"a.log b.log Motion.Speed", {"Speed (can0)", "Speed (can1)"}},
      {"b.log a.log Motion.Speed --relative",
       {"Speed (a.log, can0)", "Speed (b.log, can0)", "Speed (can1)"}},
      {"can1=car.dbc b.log Motion.Speed", {"Speed"}},
      {"pages.log Slow *Speed", {"Slow", "Pages.Speed", "Motion.Speed"}},
      {"a.log --jitter M*", {"Motion, time between frames", "Motion, nominal cycle"}},
  };
  for (const auto& c : cases) {
    const std::string own = c.arguments;
    check({"plot " + std::string(own.starts_with("can1=") ? "" : "car.dbc ") + own + " -o out.svg",
           0});
    Texts names;
    const std::string svg = bytes_of(folder / "out.svg");
    for (const std::string& text : pieces(svg, "<text class=\"name\"", "</text>"))
      names.push_back(text.substr(text.find('>') + 1));
    std::ranges::sort(names);
    Texts wanted = c.names;
    std::ranges::sort(wanted);
    EXPECT_EQ(names, wanted) << c.arguments;
  }
}

TEST(Plot, RefusesWhatItCannotDraw) {
  write_file("many.dbc", "BS_:\n\nBU_: N\n\n" + wide_message(1));
  const path folder = write_file("car.dbc", kDatabase).parent_path();
  write_file("log", "(1) can0 001##0" + std::string(24, '0') + "\n");
  write_file("back.log", "(2) can0 001#0000\n(1) can0 001#0000\n");
  write_file("bare.log", "001#0000\n");
  write_file("old.svg", "old");
  const ToolCase cases[] = {
      {"plot car.dbc log Speed -o out.pdf", 2, "", "out.pdf\""},
      {"plot car.dbc log Speed -o out.svg --size 100x100", 2, "", "100x100"},
      {"plot log Speed -o old.svg", 1, "", "no database is given"},
      {"plot car.dbc log -o old.svg", 1, "", "no signal is named"},
      {"plot car.dbc log log Speed -o old.svg", 1, "", "log is given twice"},
      {"plot car.dbc lgo Speed -o old.svg", 1, "", "no signal is named \"lgo\", nor is there such"},
      {"plot car.dbc log Slow -o old.svg", 1, "", "no frame has any of the signals"},
      {"plot car.dbc bare.log Speed -o old.svg", 1, "", "bare.log: a frame has no time"},
      {"plot car.dbc old.svg Speed -o out.svg", 1, "", "old.svg"},
      {"plot many.dbc log W* -o old.svg", 1, "", "more than 64 signals match"},
      {"plot car.dbc log Speed Level -o old.svg --size 400x200", 1, "", "must be 284 at least"},
      {"plot car.dbc log Speed -o nowhere/out.svg", 1, "", "nowhere/out.svg: could not be written"},
      {"plot car.dbc log Motion.Speed Slow -o out.svg", 0, "", "warning: no frame has \"Slow\""},
      {"plot car.dbc log Speed --jitter M* -o out.svg", 0, "",
       "warning: no two frames are of \"M*\""},
      {"plot car.dbc back.log Speed --times points -o out.svg", 0, "",
       "warning: times run backwards"},
  };
  for (const ToolCase& c : cases) check_parts(c);
  EXPECT_EQ(bytes_of(folder / "old.svg"), "old");
  write_file("log.svg", "(1) can0 001#0000\n");
  check_parts(
      {"plot car.dbc log.svg Speed -o log.svg", 1, "", "log.svg is both read and the output"});
}

// The peak of one frame is drawn, however many there are around it.
TEST(Plot, KeepsPeaksOfLongLogs) {
  std::string database = kDatabase;
  database.insert(database.find("BO_ 3"), wide_message(4));
  const path folder = write_file("car.dbc", database).parent_path();
  std::string log;
  for (int i = 0; i < 300'000; ++i)
    log += '(' + std::to_string(i) + ") a 001#" + (i == 123'457 ? "FF7F" : "0000") + "00" +
           (i / 1000 % 2 == 0 ? "00" : "01") + '\n';
  write_file("log", log);
  // Of 64 signals and more each keeps fewer points than the log has.
  check_parts({"plot car.dbc log Motion.* W* -o out.svg", 0, "", "no frame has \"W*\""});
  const std::string svg = bytes_of(folder / "out.svg");
  EXPECT_NE(svg.find("Speed: 0 to 16383.5 km/h"), std::string::npos);
  EXPECT_NE(svg.find("Gear: 300 stretches"), std::string::npos);
  EXPECT_LT(svg.size(), 300'000u);
}

}  // namespace

#include <gtest/gtest.h>

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

}  // namespace

#include <gtest/gtest.h>

#include <string>

#include "tools/run_tool.hpp"

namespace {

constexpr const char* kDatabase =
    "BS_:\n\nBU_: N\n\nBO_ 1 Motion: 3 N\n"
    " SG_ Speed : 0|8@1+ (1,0) [0|0] \"km/h\" N\n"
    " SG_ Torque : 8|8@1+ (1,0) [0|0] \"km/h\" N\n"
    " SG_ Gear : 16|2@1+ (1,0) [0|3] \"\" N\n"
    "VAL_ 1 Gear 0 \"Park\" 1 \"R\xC3\xBC\" 2 \"\x1B[2JNeutral\" 3 \"D\" ;\n";

// A ramp to the top of the chart at 40 s; its end, and texts too long for their stretches, around
// 41 s.
constexpr const char* kLog =
    "(0) a 001#000000\n(20) a 001#0A0001\n(40) a 001#140002\n(41) a 001#140003\n"
    "(42) a 001#000000\n(42.1) a 001#000001\n(42.2) a 001#000000\n(50) a 001#000000\n"
    "(70) a 001#000000\n";

TEST(PlotInTerminal, DrawsCharacters) {
  write_file("car.dbc", kDatabase);
  write_file("a.log", kLog);
  const struct {
    const char* options;
    const char* out;
  } cases[] = {
      {"Gear --ascii",
       " a.log\n"
       "Gear  |Park----------------|R?------------------CD#|Park------------------------\n"
       "     ++---------+----------+---------+----------+---------+----------+---------+\n"
       "      0 s      10         20        30         40        50         60        70\n"
       " Gear: C \\x1B[2JNeutral, # several\n"},
      {"Gear",
       " a.log\n"
       "Gear  ├Park────────────────├Rü──────────────────CD▒├Park────────────────────────\n"
       "     └┴─────────┴──────────┴─────────┴──────────┴─────────┴──────────┴─────────┴\n"
       "      0 s      10         20        30         40        50         60        70\n"
       " Gear: C \\x1B[2JNeutral, ▒ several\n"},
      {"Speed --ascii",
       " a.log\n"
       " Speed  [km/h]\n"
       " 20 +                                          **\n"
       "    |                                       *** *\n"
       "    |                                     **     *\n"
       "    |                                   ***      *\n"
       "    |                                 **         *\n"
       " 15 +                              ***           *\n"
       "    |                            **              *\n"
       "    |                         ***                *\n"
       "    |                       **                   *\n"
       " 10 +                    ***                     *\n"
       "    |                  **                        *\n"
       "    |               ***                          *\n"
       "    |             **                             *\n"
       "  5 +          ***                               *\n"
       "    |        **                                  *\n"
       "    |     ***                                    *\n"
       "    |   **                                       *\n"
       "    |***                                         *\n"
       "  0 +*                                            ******************************\n"
       "    ++---------+----------+----------+---------+----------+----------+---------+\n"
       "     0 s      10         20         30        40         50         60        70\n"},
  };
  for (const auto& c : cases)
    check({std::string("plot car.dbc a.log --relative ") + c.options, 0, c.out});
}

TEST(PlotInTerminal, TellsCurvesApart) {
  write_file("car.dbc", kDatabase);
  write_file("a.log", "(0) a 001#000A00\n(10) a 001#0A0000\n");
  for (const char* const part : {" A Speed  B Torque  [km/h]\n", "A A\n", "B B\n", "#"})
    check_parts({"plot car.dbc a.log Speed Torque --ascii", 0, part});
}

}  // namespace

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

const std::string kNetwork = bytes_of(ZELK_SOURCE_DIR "/tests/tools/diff.dbc");

using Replacements = std::vector<std::pair<std::string, std::string>>;

/// The network with every place of some texts replaced.
std::string changed(const Replacements& replacements) {
  std::string text = kNetwork;
  for (const auto& [before, after] : replacements) {
    std::size_t at = text.find(before);
    EXPECT_NE(at, std::string::npos) << before;
    for (; at != std::string::npos; at = text.find(before, at + after.size()))
      text.replace(at, before.size(), after);
  }
  return text;
}

TEST(Diff, TellsWhatDiffers) {
  write_file("a.dbc", kNetwork);
  const struct {
    Replacements replacements;
    std::string out = "";
  } cases[] = {
      {{{"Engine Dash Gate", "Gate Dash Engine"},
        {"0 \"off\" 1 \"on\"", "1 \"on\" 0 \"off\""},
        {"Dash,Gate\n", "Gate,Dash\n"},
        {"Engine,Gate;", "Gate,Engine;"},
        {"0 \"low\" 1 \"mid\" 1 \"high\"", "1 \"mid\" 1 \"high\" 0 \"low\""},
        {": Page Speed", ": Speed Page"},
        {"BA_DEF_ BO_ \"Cycle\" INT 0 1000;\nBA_DEF_ SG_ \"Kind\" ENUM \"a\",\"b\";\n",
         "BA_DEF_ SG_ \"Kind\" ENUM \"a\",\"b\";\nBA_DEF_ BO_ \"Cycle\" INT 0 1000;\n"}}},
      {{{"Motion:", "Move:"}}, "~ message 0x064 Motion\n    name: Motion -> Move\n"},
      {{{" 100 ", " 101 "}, {"moves", "goes"}},
       "~ message 0x064 Motion\n    id: 0x064 -> 0x065\n    comment: moves -> goes\n"},
      {{{"BO_ 200 Lamps: 1 Dash",
         "BO_ 201 Motion: 1 Dash\n SG_ Left : 0|1@1+ (1,0) [0|0] \"\" Dash"}},
       "- message 0x0C8 Lamps\n+ message 0x0C9 Motion\n"},
      {{{"Engine\n SG_", "Gate\n SG_"}, {"100 : Engine,Gate;", "100 : Gate,Engine;"}},
       "~ message 0x064 Motion\n    transmitter: Engine -> Gate\n"},
      {{{"0.1,0)", "0.30000000000000004,-1)"}, {"\"km/h\"", "\"none\""}, {"Speed m1", "Speed m2"}},
       "~ signal Motion.Speed\n    factor: 0.1 -> 0.30000000000000004\n    offset: 0 -> -1\n"
       "    unit: km/h -> \"none\"\n    selected_for: 1 -> 2\n"},
      {{{" SG_ Twin : 24|8@1+ (1,0) [0|0] \"\" Dash\n", ""}},
       "~ signal Motion.Twin\n    start: 24 -> 32\n    factor: 1 -> 2\n- signal Motion.Twin\n"},
      {{{"Dash,Gate\n", "Dash\n"}, {"Page 5;", "Page 6;"}, {"1 \"high\" ;", "1 \"h\" 3 \"\" ;"}},
       "~ signal Motion.Page\n    receivers: Dash, Gate -> Dash\n"
       "    attribute \"Timeout\" with Dash: 5 -> 6\n    value 1: \"high\" -> \"h\"\n"
       "    value 3: none -> \"\"\n"},
      {{{"BA_ \"Cycle\" BO_ 100 20;\n", ""}, {"\"a\",\"b\"", "\"a\",\"c\",\"b\""}},
       "~ message 0x064 Motion\n    attribute \"Cycle\": 20 -> none\n"
       "~ signal Motion.Speed\n    attribute \"Kind\": \"b\" (1) -> \"c\" (1)\n"
       "~ signal attribute \"Kind\"\n    items: a, b -> a, c, b\n"},
      {{{"VERSION \"1\"", "VERSION \"2\\n\""}, {"500 : 1,2", "250 : 1,2"}, {"0 7 D", "0 8 D"}},
       "~ network\n    version: 1 -> \"2\\\\n\"\n"
       "    bit timings: baud rate 500 BTR1 0x01 BTR2 0x02 -> baud rate 250 BTR1 0x01 BTR2 0x02\n"
       "~ environment variable Lid\n    id: 7 -> 8\n"},
  };
  for (const auto& c : cases) {
    write_file("b.dbc", changed(c.replacements));
    check({"diff a.dbc b.dbc", c.out.empty() ? 0 : 1, c.out});
  }
}

TEST(Diff, ExitCodesAndJson) {
  write_file("a.dbc", kNetwork);
  write_file("b.dbc", changed({{"\"km/h\"", "\"\x80\""}}));
  write_file("bad.dbc", "BS_:\nBU_: A\nBO_ nonsense\n");
  const ToolCase cases[] = {
      {"diff a.dbc a.dbc --json", 0, "[]\n"},
      {"diff b.dbc a.dbc --json", 1,
       "[\n{\"difference\":\"changed\",\"kind\":\"signal\",\"message\":\"Motion\",\"name\":"
       "\"Speed\",\"changes\":[{\"field\":\"unit\",\"before\":\"\u20AC\",\"after\":\"km/h\"}]}\n"
       "]\n"},
      {"diff a.dbc missing.dbc", 2, "", "missing.dbc: database: not found"},
      {"diff a.dbc", 2, "", "B"},
  };
  for (const ToolCase& c : cases) check(c);
  EXPECT_EQ(run_tool("diff a.dbc b.dbc", Output::kRefused).exit_code, 2);
}

}  // namespace

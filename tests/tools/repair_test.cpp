#include <gtest/gtest.h>

#include <string>

#include "support/files.hpp"
#include "tools/run_tool.hpp"

namespace {

/// Lacks "BS_:" and "BU_:", and names another file.
const std::string kBroken =
    "CM_ \"IMPORT other\";\nBO_ 100 Motion: 2 Dash\n SG_ Speed : 0|8@1+ (2,0) [0|0] \"\" Dash\n\n";
const std::string kOther = "BO_ 7 Other: 1 Dash\n";

TEST(Repair, OnEveryCommandThatReads) {
  write_file("a.dbc", kBroken);
  write_file("b.dbc", kBroken);
  write_file("other.dbc", kOther);
  write_file("log", "064#0500\n");
  const std::string told = "a.dbc: warning: mended in ";
  const ToolCase cases[] = {
      {"show a.dbc Speed --repair", 0, "Signal Speed", told},
      {"show a.dbc Speed", 1, "", "a.dbc"},
      {"list messages --repair a.dbc b.dbc a.dbc", 0, "b         Motion", "named twice"},
      {"list messages a.dbc --repair --include . --count", 0, "2\n", "mended in "},
      {"find Other a.dbc --repair --include . --verbose", 0, "a: message Other",
       "a.dbc: warning: 1:1: include: included \"other.dbc\""},
      {"find Motion a.dbc --repair", 0, "a: message Motion",
       "a.dbc: warning: 1:1: include: the comment names a file"},
      {"find Motion a.dbc --repair --include . --keep include", 0, "a: message Motion", told},
      {"decode a.dbc log --repair", 0, "Motion Speed=10", told},
      {"encode a.dbc Motion Speed=4 --repair", 0, "064#0200", told},
      {"diff a.dbc b.dbc --repair", 0, "", told},
      {"convert a.dbc a.json --repair", 0, "", told},
      {"rewrite a.dbc c.dbc --repair", 0, "", told},
      {"diff c.dbc a.json", 0, "", ""},
      {"list messages a.dbc --repair --keep missing-bs", 1, "", "cannot be mended"},
      {"list messages none.dbc --repair", 1, "", "none.dbc: cannot be read: "},
      {"list messages a.dbc --repair --keep no-such-mend", 2, "", ", order, "},
      {"list messages a.dbc --include .", 2, "", "--include requires --repair"},
      {"list messages a.dbc --repair --include none", 2, "", "no folder \"none\""},
  };
  for (const ToolCase& c : cases) check_parts(c);
}

}  // namespace

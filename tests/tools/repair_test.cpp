#include <gtest/gtest.h>

#include <filesystem>
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
       "a.dbc: warning: 1:1: included \"other.dbc\" [include]"},
      {"find Motion a.dbc --repair", 0, "a: message Motion",
       "a.dbc: warning: 1:1: the comment names a file"},
      {"find Motion a.dbc --repair --include . --keep include", 0, "a: message Motion", told},
      {"decode a.dbc log --repair", 0, "Motion Speed=10", told},
      {"encode a.dbc Motion Speed=4 --repair", 0, "064#0200", told},
      {"diff a.dbc b.dbc --repair", 0, "", told},
      {"convert a.dbc a.json --repair", 0, "", told},
      {"rewrite a.dbc c.dbc --repair", 0, "", told},
      {"diff c.dbc a.json", 0, "", ""},
      {"list messages a.dbc --repair --keep missing-bs", 1, "", "cannot be mended"},
      {"show log --repair", 1, "", "no statement of a database"},
      {"list messages none.dbc --repair", 1, "", "none.dbc: cannot be read: "},
      {"list messages a.dbc --repair --keep no-such-mend", 2, "", ", order, "},
      {"list messages a.dbc --include .", 2, "", "--include requires --repair"},
      {"list messages a.dbc --repair --include none", 2, "", "no folder \"none\""},
  };
  for (const ToolCase& c : cases) check_parts(c);
}

TEST(Repair, WritesWholeFilesOrNone) {
  const auto in = write_file("a.dbc", kBroken),
             copy = write_file("sound.dbc", "BS_:BU_:A\t\n\n\r// end\n \t");
  const auto out = write_file("out.dbc", "old"), other = write_file("other.dbc", kOther);
  std::filesystem::create_hard_link(in, std::filesystem::path(in).replace_filename("hard.dbc"));
  const ToolCase refused[] = {
      {"repair a.dbc a.dbc", 2, "", "--in-place"},
      {"repair a.dbc hard.dbc", 2, "", "--in-place"},
      {"repair a.dbc ./a.dbc", 2, "", "--in-place"},
      {"repair a.dbc", 2, "", "OUT, --in-place or --dry-run is required"},
      {"repair a.dbc out.dbc --in-place", 2, "", "excludes"},
      {"repair none.dbc out.dbc", 2, "", "none.dbc: cannot be read: "},
      {"repair a.dbc none/out.dbc", 2, "a.dbc:", "none/out.dbc: could not be written: "},
      {"repair a.dbc out.kcd", 2, "", "is no DBC file"},
      {"repair a.dbc out.dbc --keep missing-bs", 1, "", "a.dbc: cannot be mended"},
      {"repair a.dbc out.dbc --include none", 2, "", "there is no folder \"none\""},
      {"repair sound.dbc out.dbc --dry-run", 0,
       "out.dbc not written: sound.dbc needs no mending\n"},
      {"repair sound.dbc --in-place", 0, "sound.dbc needs no mending\n"},
      {"repair sound.dbc --dry-run", 0, "sound.dbc needs no mending\n"},
      {"repair a.dbc --dry-run --max-errors 1", 0, "and 2 more; see --max-errors\n"},
  };
  for (const ToolCase& c : refused) check_parts(c);
  EXPECT_EQ(bytes_of(out), "old");
  EXPECT_EQ(bytes_of(in), kBroken);
  check({"repair sound.dbc out.dbc", 0, "out.dbc written: sound.dbc needs no mending\n"});
  EXPECT_EQ(bytes_of(out), bytes_of(copy));
  check_parts({"repair a.dbc out.dbc --json", 0, "\"rule\":\"missing-bs\""});
  check_parts({"check out.dbc", 0, "out.dbc: ok, 1 node, 1 message, 1 signal"});
  std::filesystem::remove(other);
  check_parts({"repair a.dbc out.dbc --include .", 1, "", "cannot include \"other\""});
  write_file("other.dbc", "CM_ \"IMPORT a\";\n" + kOther);
  check_parts({"repair a.dbc --in-place --include .", 0, "1 missing-bu"});
  check_parts({"list messages hard.dbc --count", 0, "2\n"});  // it is the same file still
}

}  // namespace

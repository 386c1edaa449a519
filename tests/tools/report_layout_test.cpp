#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/run_tool.hpp"

namespace {

const std::string kHead = "BS_:\nBU_: N\n";

std::string signal(const std::string& layout) { return " SG_ " + layout + " (1,0) [0|0] \"\" N\n"; }

std::string page_of(const std::string& database) {
  write_file("layout.dbc", kHead + database);
  const ToolRun run = run_tool("report layout.dbc -o -");
  EXPECT_EQ(run.exit_code, 0) << run.err;
  return run.out;
}

// Cells are 10 wide and 7 high; column 0, of bit 7, begins at 8, and row 0 at 4.
TEST(ReportLayout, OutlinesAndOrder) {
  const struct {
    std::string database;
    std::vector<std::string> parts;
    std::string absent = "no such text";
  } cases[] = {
      // Intel: the arrow rises; Motorola: it goes down; a single bit has no order.
      {"BO_ 1 M: 4 N\n" + signal("I : 4|8@1+") + signal("J : 17|10@0+") + signal("K : 0|1@1+"),
       {R"(d="M8 4H48V11H8zM48 11H88V18H48z"/><path d="M50 17H86L10 10H46"/><text)",
        R"(d="M68 18H88V32H8V25H68z"/><path d="M70 24H86L10 31H86"/><text)",
        R"(<g><rect x=78 y=4 /><text x=83 y=9>K</text></g>)"}},
      {"BO_ 1 M: 8 N\n" + signal("I : 9|3@1+"),
       {"<g><use href=#w3 x=48 y=11 /><text x=63 y=16>I</text></g><use href=#frame /></svg>"}},
      // Parts of two rows that do not touch.
      {"BO_ 1 M: 2 N\n" + signal("I : 6|4@1+"),
       {R"(d="M8 4H28V11H8zM68 11H88V18H68z"/><path d="M70 17H86L10 10H26"/>)"}},
      // Blocks of eight rows: from byte 7 on to the next one.
      {"BO_ 1 M: 12 N\n" + signal("I : 56|16@1+"),
       {R"(viewBox="0 0 180 60" width=720 )",
        R"(d="M8 53H88V60H8zM100 4H180V11H100z"/><path d="M102 10H178M10 59H86"/>)",
        R"(<use href=#octet0 y=4 /><use href=#byte8 x=92 y=4 />)"}},
      {"BO_ 1 M: 64 N\n", {R"(viewBox="0 0 272 172")", R"(<use href=#octet7 x=184 y=60 />)"}},
      {"BO_ 1 M: 2 N\n" + signal("A : 0|12@1+") + signal("B : 8|8@1+") + signal("C : 17|2@0+"),
       {R"(<path class=overlap d="M48 11H88V18H48z"><title>Overlap: A, B</title>)",
        R"(<path class=beyond d="M8 18H88V25H8z"/>)",
        ">Beyond the data length: C, byte 2 bits 1 to 0<"}},
      {"BO_ 1 M: 0 N\n", {">The frame has no data<"}},
      // A message of a transport protocol: only bytes with signals have rows.
      {"BO_ 2147483649 M: 1785 N\n" + signal("A : 800|16@1+"),
       {R"(<use href=#byte y=4 /><use href=#byte y=11 />)", R"(y=9>100</text>)"}},
      // A shortened name is told in full where it might be that of another signal.
      {"BO_ 1 M: 8 N\n" + signal("ANameThatIsTooLong : 0|1@1+") +
           signal("ANameThatIsLong : 1|1@1+") + signal("TheNameOfAnotherOne : 2|1@1+"),
       {"<title>ANameThatIsTooLong</title>", "<title>ANameThatIsLong</title>"},
       "<title>TheName"},
      {"BO_ 1 M: 1 N\n" + signal("S M : 0|2@1+") + signal("A m1 : 2|2@1+") +
           signal("B m1 : 4|2@1+") + "VAL_ 1 S 1 \"<q7>\" ;\n",
       {R"(<a href="#message-1-layout1">S = 1 &quot;&lt;q7&gt;&quot;</a> <small>A, B</small>)",
        R"(<figure id="message-1-layout1"><figcaption>S = 1)"},
       "<q7>"},
  };
  for (const auto& c : cases) {
    const std::string page = page_of(c.database);
    for (const std::string& part : c.parts)
      EXPECT_NE(page.find(part), std::string::npos) << c.database << part;
    EXPECT_EQ(page.find(c.absent), std::string::npos) << c.database;
  }
}

std::size_t count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

TEST(ReportLayout, ManyMultiplexorValuesStayBounded) {
  std::string database = "BO_ 1 M: 8 N\n" + signal("S M : 0|8@1+");
  for (int i = 0; i < 200; ++i)
    database += signal("P" + std::to_string(i) + " m" + std::to_string(i) + " : 8|8@1+");
  const std::string page = page_of(database);
  EXPECT_EQ(count(page, "<figcaption>"), 64u);
  EXPECT_EQ(count(page, "<li>S = "), 136u);
  EXPECT_NE(page.find(">136 further layouts not drawn here.<"), std::string::npos);
}

}  // namespace

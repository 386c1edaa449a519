#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/run_tool.hpp"

namespace {

/// The definition of an attribute, and its default, which counts for all objects.
struct Attribute {
  std::string definition;
  std::string default_value;
};

/// A database with one message, "BO_ ID M: LENGTH N", and cycle times of 10 ms.
std::string database(const std::string& id, int length, const std::vector<Attribute>& more = {},
                     const std::string& timing = "") {
  std::string text =
      "BS_:" + timing + "\nBU_: N\nBO_ " + id + " M: " + std::to_string(length) + " N\n";
  std::vector<Attribute> attributes = {{"BO_ \"GenMsgCycleTime\" INT 0 0", "10"}};
  attributes.insert(attributes.end(), more.begin(), more.end());
  for (const Attribute& attribute : attributes) text += "BA_DEF_ " + attribute.definition + ";\n";
  for (const Attribute& attribute : attributes) {
    const std::string& definition = attribute.definition;
    const std::size_t begin = definition.find('"');
    text += "BA_DEF_DEF_ " + definition.substr(begin, definition.find('"', begin + 1) + 1 - begin) +
            " " + attribute.default_value + ";\n";
  }
  return text;
}

// Counted by hand. At 500 kbit/s a message of 10 ms has 5000 bits of time, so that 50 bits are 1 %.
TEST(BusLoad, CountsTheBitsOfFrames) {
  const Attribute fd = {"BO_ \"VFrameFormat\" ENUM \"StandardCAN\",\"StandardCAN_FD\"",
                        "\"StandardCAN_FD\""};
  const Attribute j1939 = {"BO_ \"VFrameFormat\" ENUM \"J1939PG\"", "\"J1939PG\""};
  const Attribute one_rate = {"BO_ \"CANFD_BRS\" ENUM \"0\",\"1\"", "\"0\""};
  const struct {
    std::string database;
    std::string bits;
    std::string options = "";
    std::string rate = "of 500 kbit/s (assumed), by";
  } cases[] = {
      {database("1", 0), "47 to 55<td>0.9 %<td>1.1 %"},
      {database("1", 8), "111 to 135<td>2.2 %<td>2.7 %"},
      {database("2147483649", 0), "67 to 80<td>1.3 %<td>1.6 %"},
      {database("2147483649", 8), "131 to 160<td>2.6 %<td>3.2 %"},
      // 30 bits at the nominal rate and 96 of data; 3 and 18 stuff bits.
      {database("1", 8, {fd}), "126 to 147<td>1.1 %<td>1.2 %", "",
       "(assumed), data of CAN FD with 2 Mbit/s (assumed), by"},
      {database("1", 8, {fd, one_rate}), "126 to 147<td>2.5 %<td>2.9 %", "", "2 Mbit/s"},
      // Longer than 8 bytes is CAN FD; 17 bytes go as 20, with the long checksum.
      {database("2147483649", 17, {{"\"BaudrateCANFD\" INT 0 0", "4000000"}}),
       "246 to 295<td>1.5 %<td>1.7 %", "", "with 4 Mbit/s (attribute BaudrateCANFD), by"},
      {database("1", 64), "579 to 712<td>3.3 %<td>4.1 %", "", "2 Mbit/s"},
      {database("1", 64), "579 to 712<td>6.7 %<td>8.1 %", " --bitrate 250k --data-bitrate 1M",
       "of 250 kbit/s (given), data of CAN FD with 1 Mbit/s (given), by"},
      // An announcement and three packets.
      {database("2147483649", 20, {j1939}), "524 to 640<td>10.5 %<td>12.8 %"},
      {database("1", 8, {}, " 250 : 1,2"), "111 to 135<td>4.4 %<td>5.4 %", "",
       "of 250 kbit/s (bit timing), by"},
      {database("1", 8, {{"\"Baudrate\" INT 0 0", "1000"}}, " 250 : 1,2"),
       "111 to 135<td>1.1 %<td>1.4 %", "", "of 1 Mbit/s (attribute Baudrate), by"},
  };
  for (const auto& c : cases) {
    write_file("load.dbc", c.database);
    const ToolRun run = run_tool("report load.dbc -o -" + c.options);
    EXPECT_NE(run.out.find("<td>10<td>" + c.bits + "\n"), std::string::npos) << c.bits;
    EXPECT_NE(run.out.find(c.rate), std::string::npos) << c.database << c.rate << run.err;
  }
}

TEST(BusLoad, AddsUpAndTellsWhatDoesNotCount) {
  const std::string rest =
      "BA_DEF_ BO_ \"CycleTime\" INT 0 0;\nBA_DEF_DEF_ \"CycleTime\" 0;\nBA_ \"CycleTime\" BO_ 1 "
      "1;\n"
      "BA_ \"CycleTime\" BO_ 2 1;\nBA_ \"CycleTime\" BO_ 3 1;\nBA_ \"CycleTime\" BO_ 4 1;\n"
      "BA_ \"CycleTime\" BO_ 5 1;\nBA_ \"CycleTime\" BO_ 7 1;\n";
  write_file("load.dbc",
             "BS_:\nBU_: A B\nBO_ 1 M1: 8 B\nBO_ 2 M2: 8 A\nBO_ 3 M3: 8 B\nBO_ 4 M4: 8 B\n"
             "BO_ 5 M5: 8 Ostrel__XXX\nBO_ 6 M6: 8 A\nBO_ 7 M7: 65 A\n" +
                 rest);
  const std::string page = run_tool("report load.dbc -o -").out;
  for (const char* const part :
       {"<b>111.0 % to 135.0 %</b>", "by 5 cyclic messages",
        "Not counted: 1 message without a cycle time.",
        "Not counted: 1 message of more bytes than a frame has.",
        "In the worst case, messages need more time than there is.",
        "B</a><td>3<td>66.6 %<td>81.0 %", "no sender<td>1<td>22.2 %<td>27.0 %"})
    EXPECT_NE(page.find(part), std::string::npos) << part;
  check_parts({"report load.dbc -o - --bitrate 0", 2, "", "--bitrate"});
  check_parts({"report load.dbc -o - --data-bitrate fast", 2, "", "--data-bitrate"});
}

}  // namespace

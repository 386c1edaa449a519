#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

using std::filesystem::path;

const std::string kCar = bytes_of(ZELK_SOURCE_DIR "/tests/tools/decode.dbc");

std::string database(const std::string& messages) { return "BS_:\n\nBU_: N\n\n" + messages; }

std::string message(int id, const std::string& name) {
  return "BO_ " + std::to_string(id) + ' ' + name +
         ": 8 N\n SG_ X : 0|8@1+ (1,0) [0|0] \"V\" N\n\n";
}

constexpr const char* kLog =
    "(1.5) ca,n0 123#E803FF50\n(1.7) can1 124#0007\n(1.8) can1 126#\n(2) can0 123#010003C8\n"
    "(3) can1 124#0109\n(3.5) 123#R\n(4) can0 7FF#\n";

TEST(DecodeWide, WritesAFileForEachMessage) {
  const path folder = write_file("car.dbc", kCar).parent_path();
  write_file("log", kLog);
  const struct {
    const char* options;
    const char* file;
    const char* content;
  } cases[] = {
      {"", "Motion",
       "time,interface,Speed,Gear,Gear.text,Load\r\n1.5,\"ca,n0\",100,-1,R,0\r\n"
       "2,can0,0.1,3,\"say \"\"3\"\", fast\",60\r\n"},
      {"", "Pages", "time,interface,Mux,A,B\r\n1.7,can1,0,7,\r\n3,can1,1,,9\r\n"},
      {"", "Empty", "time,interface\r\n1.8,can1\r\n"},
      {"--units --raw --numbers --relative --start 1.7", "Motion",
       "time,interface,Speed [km/h],Gear,Load [\u00B0C]\r\n0.500000,can0,1,3,200\r\n"},
      {"--signal A --message Pages --threads 3", "Pages",
       "time,interface,A\r\n1.7,can1,7\r\n3,can1,\r\n"},
  };
  for (const auto& c : cases) {
    check({std::string("decode car.dbc log --wide -o out/ ") + c.options, 0});
    EXPECT_EQ(bytes_of(folder / "out" / (std::string(c.file) + ".csv")), c.content) << c.options;
    EXPECT_FALSE(exists(folder / "out/Big.csv"));  // no frames, no file
    remove_all(folder / "out");
  }
}

TEST(DecodeWide, TellsFilesApart) {
  const path folder = write_file("a.dbc", database(message(1, "Load") + message(2, "LOAD") +
                                                   message(3, "CON") + message(4, "Same")))
                          .parent_path();
  write_file("b.dbc", database(message(5, "Same")));
  write_file("log", "001#01\n002#02\n003#03\n004#04\n005#05\n");
  create_directory(folder / "out");
  check({"decode a.dbc b.dbc log --wide -o out", 0});
  const char* const names[] = {"Load", "LOAD_2", "_CON", "a.Same", "b.Same"};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(bytes_of(folder / "out" / (std::string(names[i]) + ".csv")),
              "time,interface,X\r\n,," + std::to_string(i + 1) + "\r\n")
        << names[i];
  }
}

// What was there stays when something is wrong, and nothing else is left behind.
TEST(DecodeWide, KeepsFilesUntilAllIsRead) {
  const path folder = write_file("car.dbc", kCar).parent_path();
  write_file("log", kLog);
  write_file("bad", std::string(kLog) + "no frame\n");
  write_file("other", "123#00\n");
  write_file("file", "mine");
  for (const char* left : {"out/.zelk-tables-0/Motion.csv", "out/.zelk-tables-3/x"})
    write_file(left, "of a killed process");
  check({"decode car.dbc log --wide -o out/", 0});
  EXPECT_FALSE(exists(folder / "out/.zelk-tables-3"));
  const std::string before = bytes_of(folder / "out/Motion.csv");
  check({"decode car.dbc bad --wide -o out/ --strict", 1, "", "--strict takes no line"});
  check({"decode car.dbc bad --wide -o new/ --strict", 1, "", "--strict takes no line"});
  check({"decode car.dbc log --wide -o file --signal A --strict --start 9 --stop 8", 1, "",
         "the stop is not behind the start"});
  check({"decode car.dbc log --wide -o none/new/", 1, "", "none/new: could not be written"});
  check({"decode car.dbc log --wide -o file/", 1, "", "file: could not be written"});
  check({"decode car.dbc log --wide -o log --signal A", 1, "", "log is both read and the output"});
  EXPECT_EQ(bytes_of(folder / "out/Motion.csv"), before);
  EXPECT_EQ(bytes_of(folder / "file"), "mine");
  EXPECT_FALSE(exists(folder / "new"));
  EXPECT_FALSE(exists(folder / "out/.zelk-tables-0"));
  check(
      {"decode car.dbc --log other --wide -o out/", 0, "",
       "out/: warning: 2 files are of messages without frames in this log, from an earlier run: "});
  EXPECT_EQ(bytes_of(folder / "out/Motion.csv"),
            "time,interface,Speed,Gear,Gear.text,Load\r\n,,,,,\r\n");
  remove(folder / "out/Motion.csv");
  create_directory(folder / "out/Motion.csv");
  check({"decode car.dbc --log other --wide -o out/", 1, "", "Motion.csv: could not be written: "});
}

TEST(DecodeWide, KeepsLastValuesInOneTable) {
  const path folder = write_file("car.dbc", kCar).parent_path();
  write_file("b.dbc", database(message(1, "First") + message(2, "Second") + message(4, "Motion")));
  write_file("log",
             "(10.05) can0 123#E803FF50\n(10.30) can0 124#0007\n(10.20) can0 123#0100\n"
             "(10.5) can0 126#\n");
  write_file("two", "(1) can0 123#E803\n(2) can1 123#0100\n(2.1) can1 125#\n");
  write_file("leap", "(1) can0 123#E803\n(1500000000) can0 123#E803\n");
  write_file("negative", "(-0.15) can0 123#E803\n(0.05) can0 7FF#\n");
  write_file("timeless", "can0 001#05\ncan0 002#06\n");
  const char* const mixed =
      "zelk: warning: frames of several interfaces share the columns of Motion; "
      "INTERFACE=FILE separates them";
  const ToolCase cases[] = {
      {"car.dbc log --signal Speed --signal A", 0,
       "time,Speed,A\r\n10.05,100,\r\n10.30,100,7\r\n10.20,0.1,7\r\n"},
      {"car.dbc log --signal Speed --signal A --every 100ms --times points --threads 2", 0,
       "time,Speed,A\r\n10.000000,,\r\n10.100000,100,\r\n10.200000,100,\r\n10.300000,0.1,7\r\n"
       "10.400000,0.1,7\r\n10.500000,0.1,7\r\n"},
      {"car.dbc log --signal Speed --every 100ms --times points", 0,
       "time,Speed\r\n10.000000,\r\n10.100000,100\r\n10.200000,100\r\n10.300000,0.1\r\n"
       "10.400000,0.1\r\n10.500000,0.1\r\n"},
      {"car.dbc negative --times points --signal Speed --every 0.1s", 0,
       "time,Speed\r\n-0.200000,\r\n-0.100000,100\r\n0.000000,100\r\n"},
      {"car.dbc log --signal Gear --units --signal Motion.S*", 0,
       "time,Speed [km/h],Gear,Gear.text\r\n10.05,100,-1,R\r\n10.20,0.1,-1,R\r\n"},
      {"b.dbc timeless --message \"*\"", 0, "time,First.X,Second.X,Motion.X\r\n,5,,\r\n,5,6,\r\n"},
      {"car.dbc two --signal Speed", 0, "time,Speed\r\n1,100\r\n2,0.1\r\n", mixed},
      {"can0=car.dbc can1=car.dbc --log two --signal Speed", 0,
       "time,can0.car.Motion.Speed,can1.car.Motion.Speed\r\n1,100,\r\n2,100,0.1\r\n"},
      {"b.dbc timeless --message \"*\" --every 1s", 1, "time,First.X,Second.X,Motion.X\r\n",
       "zelk: a frame has no time, which an even grid of times needs"},
      {"car.dbc leap --signal Speed --every 1ms", 1, "time,Speed\r\n",
       "more than 10000000 rows of the even grid of times have no frame between them"},
      {"car.dbc log", 2, "", "one table needs --signal or --message"},
      {"car.dbc log --signal Speed --format json", 2, "", "its form is csv"},
      {"car.dbc log --signal Speed --every 0s", 2, "", "a time above 0 such as 100ms"},
      {"car.dbc log --signal Speed --every 5", 2, "", "a time above 0 such as 100ms"},
      {"car.dbc log -o ./ --every 5s", 2, "", "it is for one table"},
  };
  for (ToolCase c : cases) {
    c.arguments = "decode --wide " + c.arguments;
    check(c);
  }
  check({"decode car.dbc log --every 5s", 2, "", "--every requires --wide"});
  check({"decode car.dbc log --wide --signal A -o table", 0});
  EXPECT_EQ(bytes_of(folder / "table"), "time,A\r\n10.30,7\r\n");
}

}  // namespace

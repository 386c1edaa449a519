#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Speed 0x3E8 is 100 km/h, Gear -1 "R"; Mux 0 selects A, 1 to 2 select B; Far lies in byte 63.
const std::string kCar = bytes_of(ZELK_SOURCE_DIR "/tests/tools/decode.dbc");

constexpr const char* kOther =
    "BS_:\n\nBU_: N\n\nBO_ 291 Other: 1 N\n SG_ X : 0|8@1+ (1,0) [0|0] \"\" N\n\n";

ToolRun decode(const std::string& log, const std::string& arguments = "car.dbc") {
  write_file("car.dbc", kCar);
  write_file("log", log);
  return run_tool("decode " + arguments, Output::kFile, "log");
}

TEST(Decode, FormsOfLines) {
  const std::string zeros(126, '0');
  std::string fd_bytes = "  can0  125  [64] ";
  for (int i = 0; i < 63; ++i) fd_bytes += " 00";
  const struct {
    std::string line;
    std::string out;  // empty: the line is reported as malformed
  } cases[] = {
      {"(1.5) can0 123#E803FF50",
       "(1.5) can0 Motion Speed=100 km/h Gear=-1 \"R\" Load=0 \u00B0C\n"},
      {" (2023-11-14 22:13:20.1)  can0  124   [2]  02 08",
       "(2023-11-14 22:13:20.1) can0 Pages Mux=2 B=8\n"},
      {"  can0  RX - -  124   [2]  03 08   '..'", "can0 Pages Mux=3\n"},
      {"can0 125##5" + zeros + "2A T", "can0 Big Far=42\n"},
      {fd_bytes + " 2A", "can0 Big Far=42\n"},
      {"can0 126#", "can0 Empty\n"},
      {"can0 18FEF117#32", "can0 Group Level=50 %\n"},
      {"can0 127#CDCCCC3D00000000_A", "can0 Ieee Single=0.1\n"},
      {"can0 127#0000807F00000000", "can0 Ieee Single=inf\n"},
      {"124#0007", "Pages Mux=0 A=7\n"},
      {"(1.5) 124##10009 T", "(1.5) Pages Mux=0 A=9\n"},
      {"ca#0 124#0007\r", "ca#0 Pages Mux=0 A=7\n"},
      {"can0 123#", "can0 Motion\n"},
      {"nonsense", ""},
      {"123#E R", ""},
      {"123#00 X", ""},
      {"can0 123#E", ""},
      {"can0 123#00..00", ""},
      {"can0 123#001122334455667788", ""},
      {"can0 123##", ""},
      {"can0 125##0" + zeros + "2A00", ""},
      {"can0 F8FEF117#32", ""},
      {"(soon) can0 123#00", ""},
      {"can0 124 [1] 00 01", ""},
      {"can0 124 [2] 0001", ""},
      {std::string(100000, 'x'), ""},
  };
  for (const auto& c : cases) {
    const ToolRun run = decode(c.line + "\ncan0 126#\n");
    EXPECT_EQ(run.exit_code, 0) << c.line;
    EXPECT_EQ(run.out, c.out + "can0 Empty\n") << c.line;
    EXPECT_EQ(contains(run.err, "log, line 1: not a frame: ") ||
                  contains(run.err, "standard input, line 1: not a frame: \""),
              c.out.empty())
        << c.line << run.err;
  }
}

TEST(Decode, Formats) {
  const char* const log =
      "(0012.5) ca,n0 123#010003C8\n(0012.5) ca,n0 18FEF117#32\n(x) \n\x1Bn0 127#0000C07F\n"
      "127#0000803F\n";
  const struct {
    const char* options;
    const char* out;
  } cases[] = {
      {"--format text --numbers",
       "(0012.5) ca,n0 Motion Speed=0.1 km/h Gear=3 Load=60 \u00B0C\n"
       "(0012.5) ca,n0 Group Level=50 %\n\\x1Bn0 Ieee Single=nan\nIeee Single=1\n"},
      {"--raw",
       "(0012.5) ca,n0 Motion Speed=1 Gear=3 \"say \\\"3\\\", fast\" Load=200\n"
       "(0012.5) ca,n0 Group Level=50\n\\x1Bn0 Ieee Single=nan\nIeee Single=1\n"},
      {"--format json",
       R"({"time":12.5,"interface":"ca,n0","id":291,"extended":false,"message":"Motion",)"
       R"("signals":{"Speed":0.1,"Gear":3,"Load":60},"texts":{"Gear":"say \"3\", fast"}})"
       "\n"
       R"({"time":12.5,"interface":"ca,n0","id":419361047,"extended":true,"message":"Group",)"
       R"("signals":{"Level":50}})"
       "\n"
       R"({"interface":"\u001Bn0","id":295,"extended":false,"message":"Ieee",)"
       R"("signals":{"Single":null}})"
       "\n"
       R"({"time":null,"interface":null,"id":295,"extended":false,"message":"Ieee",)"
       R"("signals":{"Single":1}})"
       "\n"},
      {"--format csv",
       "time,interface,id,message,signal,raw,value,unit,text\r\n"
       "0012.5,\"ca,n0\",0x123,Motion,Speed,1,0.1,km/h,\r\n"
       "0012.5,\"ca,n0\",0x123,Motion,Gear,3,3,,\"say \"\"3\"\", fast\"\r\n"
       "0012.5,\"ca,n0\",0x123,Motion,Load,200,60,\u00B0C,\r\n"
       "0012.5,\"ca,n0\",0x18FEF117,Group,Level,50,50,%,\r\n"
       ",\\x1Bn0,0x127,Ieee,Single,nan,nan,,\r\n,,0x127,Ieee,Single,1,1,,\r\n"},
      {"--message \"M*n\" --message Gr?up --signal Motion.S*d --signal Level",
       "(0012.5) ca,n0 Motion Speed=0.1 km/h\n(0012.5) ca,n0 Group Level=50 %\n"},
      {"--signal B", ""},
  };
  write_file("car.dbc", kCar);
  write_file("log", log);
  for (const auto& c : cases)
    check({std::string("decode car.dbc ") + c.options, 0, c.out, "line 3: not a frame", "log"});
}

TEST(Decode, Databases) {
  write_file("other.dbc", kOther);
  write_file("can0=other.dbc", kOther);
  write_file("bad.dbc", "BO_ nonsense");
  write_file("both.dbc", std::string("VERSION \"\n123#00\n\"\n") + kOther);
  write_file("car.dbc", kCar);
  write_file("log", "can0 123#0100\ncan1 123#0100\ncan1 124#05\n");
  const ToolCase cases[] = {
      {"other.dbc car.dbc", 0, "can0 Other X=1\ncan1 Other X=1\ncan1 Pages Mux=5\n", ""},
      {"can1=other.dbc car.dbc", 0,
       "can0 Motion Speed=0.1 km/h\ncan1 Other X=1\ncan1 Pages Mux=5\n", ""},
      {"can0=other.dbc", 0, "can0 Other X=1\ncan1 Other X=1\n", ""},  // a file of that name
      {"both.dbc", 0, "can0 Other X=1\ncan1 Other X=1\n", ""},
      {"car.dbc log --message Pages", 0, "can1 Pages Mux=5\n", ""},
      {"log car.dbc --message Pages", 0, "can1 Pages Mux=5\n", ""},
      {"log", 1, "", "zelk: log is a log, and no database is given"},
      {"car.dbc log --log other", 1, "", "zelk: other and log are logs, and only one"},
      {"other.dbc bad.dbc", 1, "",
       "bad.dbc: nor a log: no frame at its beginning, "
       "line 1: \"BO_ nonsense\"\n"},
      {"other.dbc .", 1, "", ".: nor a log: not a regular file"},
      {"missing other.dbc", 1, "", "missing: database: not found"},
      {"car.dbc --log missing", 1, "", "zelk: cannot open missing"},
      {"car.dbc --message Moton", 1, "", "no message is named \"Moton\"; did you mean Motion?"},
      {"car.dbc --format xml", 2, "", "xml"},
      {"car.dbc --threads 0", 2, "", "--threads"},
  };
  for (ToolCase c : cases) {
    c.arguments.insert(0, "decode ");
    c.input = "log";
    check(c);
  }
}

TEST(Decode, LogsWithoutFrames) {
  write_file("car.dbc", kCar);
  write_file("blank", "\n \n");
  write_file("one", "x\n123#R\n");
  write_file("none", "\nx");
  for (const char* input : {"", "blank"}) check({"decode car.dbc", 0, "", "", input});
  check({"decode car.dbc", 0, "", "standard input, line 1: not a frame: \"x\"\n", "one"});
  check({"decode car.dbc", 1, "",
         "standard input, line 2: not a frame: \"x\"\n"
         "standard input: not a log: no line is a frame\n",
         "none"});
}

TEST(Decode, Statistics) {
  std::string log =
      "can0 124#0001\ncan0 124#00\n\n123#R\ncan0 124#R8\ncan0 123 [2] remote request\n"
      "can0 20000080#0000000000000000\ncan0 7FF#\ncan0 7FF#\ncan1 7FF#\ncan0 00000124#\n";
  for (int i = 0; i < 12; ++i) log += "x\n";
  const ToolRun run = decode(log, "car.dbc --stats");
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.err.find("standard input, line 12: not a frame: \"x\"\n"), 0u) << run.err;
  EXPECT_TRUE(contains(run.err, "line 21: ")) << run.err;
  EXPECT_FALSE(contains(run.err, "line 22: ")) << run.err;
  EXPECT_TRUE(contains(run.err,
                       "standard input: 12 lines in all that are not frames\n"
                       "lines            23\n"
                       "frames           10\n"
                       "  decoded        2\n"
                       "    too short    1\n"
                       "  unknown        4, of 2 identifiers: 0x7FF (3), 0x00000124 (1)\n"
                       "  remote         3\n"
                       "  error          1\n"
                       "malformed lines  12\n"))
      << run.err;
}

TEST(Decode, ThreadsKeepTheOrder) {
  std::string log;
  for (int i = 0; i < 60000; ++i) {
    log += "(" + std::to_string(i) + ".25) can" + std::to_string(i % 3) + " 123#" +
           std::to_string(10000000 + i) + "\n";
    if (i % 5000 == 0) log += "fault " + std::to_string(i) + "\n";
  }
  log += "can0 7FF#\ncan0 126#";  // the last line without a line feed
  const ToolRun one = decode(log, "car.dbc --stats --threads 1");
  const ToolRun four = decode(log, "car.dbc --stats --threads 4");
  EXPECT_EQ(one.exit_code, 0);
  EXPECT_TRUE(one.out.ends_with("can0 Empty\n"));
  EXPECT_TRUE(contains(one.err, "line 5003: not a frame: \"fault 5000\"\n")) << one.err;
  EXPECT_TRUE(one.out == four.out);
  EXPECT_EQ(one.err, four.err);
  const std::string csv = run_tool("decode car.dbc --log log --format csv").out;
  EXPECT_EQ(std::ranges::count(csv, '\n'), 1 + 3 * 60000);  // three signals for each frame
  for (const char* threads : {"1", "4"}) {
    const std::string arguments = std::string("decode car.dbc --log log --threads ") + threads;
    EXPECT_EQ(run_tool(arguments, Output::kClosedPipe).exit_code, 1) << threads;
    EXPECT_EQ(run_tool(arguments, Output::kRefused).exit_code, 1) << threads;
  }
}

// Every number is the shortest one for its double; a scale of few decimals gives no more.
TEST(Decode, Numbers) {
  std::string database = "BS_:\n\nBU_: N\n\nBO_ 1 M: 2 N\n";
  for (const char* scale : {"1,0", "0.1,0", "0.01,-273.15", "-0.7,12.345", "0.03125,-273",
                            "5E-05,0", "1000000,0.5", "1E+12,0", "0.333333333333333333,0"})
    database += std::string(" SG_ S : 0|16@1- (") + scale + ") [0|0] \"\" N\n";
  write_file("scales.dbc", database);
  write_file("log", "001#3930\n001#0080\n001#0700\n");  // 12345, -32768, 7
  check({"decode scales.dbc", 0,
         "M S=12345 S=1234.5 S=-149.7 S=-8629.155 S=112.78125 S=0.61725 S=12345000000.5 "
         "S=1.2345e+16 S=4115\n"
         "M S=-32768 S=-3276.8 S=-600.83 S=22949.945 S=-1297 S=-1.6384 S=-32767999999.5 "
         "S=-3.2768e+16 S=-10922.666666666666\n"
         "M S=7 S=0.7 S=-273.08 S=7.445 S=-272.78125 S=0.00035 S=7000000.5 S=7000000000000 "
         "S=2.333333333333333\n",
         "", "log"});
}

}  // namespace

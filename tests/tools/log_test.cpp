#include <gtest/gtest.h>

#include <string>

#include "support/files.hpp"
#include "tools/run_tool.hpp"

namespace {

/// Four interfaces, both formats, and all kinds of frames, a quarter of a second apart.
constexpr const char* kDrive =
    "(1700000000.000000) can0 123#01\n"
    "(1700000000.250000) can1 7FF#\n"
    "(1700000000.500000) can0 00000123##5AABB T\n"
    "(1700000000.750000) can2 18FEF117#R8\n"
    "(1700000001.000000000) can0 20000080#0000000000000000\n"
    "(1700000001.250000001) 800#\n"  // no frame: above 7FF
    "(1700000001.250000001) can3 00000800#\n";

void check_all(const std::vector<ToolCase>& cases) {
  for (ToolCase c : cases) {
    c.arguments.insert(0, "log ");
    check(c);
  }
}

TEST(Log, WritesEveryFormAsLinesOfALog) {
  const struct {
    const char* line;
    const char* out;
  } cases[] = {
      {"(1436509052.249713) vcan0 123#DEAD\r", "(1436509052.249713) vcan0 123#DEAD"},
      {" (2015-07-10 06:17:32.249713)  can0  123   [2]  DE AD",
       "(1436509052.249713) can0 123#DEAD"},
      {" (1969-12-31 23:59:58.75)  can0  123   [0] ", "(-1.250000) can0 123#"},
      {"(-0.5) can0 123#", "(-0.500000) can0 123#"},
      {"(12.0000000009) can0 00000123#R", "(12.000000) can0 00000123#R"},
      {"(12.5000001) can0 123##3AA T", "(12.500000100) can0 123##3AA T"},
      {"  can0  RX - -  124   [2]  02 08   '..'", "can0 124#0208"},
      {"124#0007", "can0 124#0007"},
  };
  for (const auto& c : cases) {
    write_file("in", c.line);
    check({"log in", 0, c.out + std::string("\n")});
    write_file("again", c.out);
    check({"log - -o -", 0, c.out + std::string("\n"), "", "again"});
  }
}

TEST(Log, TakesTimesForPointsOrDifferences) {
  write_file("both", "(0.0) c 001#\n(0.5) c 001#\n(0.25) c 001#\n");
  write_file("up", "(0.5) c 001#\n(0.75) c 001#\n");
  check_all({
      {"both", 0, "(0.000000) c 001#\n(0.500000) c 001#\n(0.750000) c 001#\n"},
      {"both --times points", 0, "(0.000000) c 001#\n(0.500000) c 001#\n(0.250000) c 001#\n"},
      {"up", 0, "(0.500000) c 001#\n(0.750000) c 001#\n"},
      {"up --times differences", 0, "(0.500000) c 001#\n(1.250000) c 001#\n"},
      {"up --times both", 2, "", "--times"},
  });
}

TEST(Log, CutsByTimeInterfaceAndIdentifier) {
  write_file("drive", kDrive);
  const std::string first = "(1700000000.000000) can0 123#01\n";
  const std::string second = "(1700000000.250000) can1 7FF#\n";
  const std::string sent = "(1700000000.500000) can0 00000123##5AABB T\n";
  const std::string remote = "(1700000000.750000) can2 18FEF117#R8\n";
  const std::string fault = "(1700000001.000000) can0 20000080#0000000000000000\n";
  const std::string last = "(1700000001.250000001) can3 00000800#\n";
  const struct {
    const char* options;
    std::string out;
  } cases[] = {
      {"", first + second + sent + remote + fault + last},
      {"--start 1700000000.25 --stop 1700000000.75", second + sent},
      {"--start +0.25 --stop +.75", ""},
      {"--start +0.25 --stop +0.75 --relative",
       "(0.250000) can1 7FF#\n(0.500000) can0 00000123##5AABB T\n"},
      {"--start 2023-11-14T22:13:21Z", fault + last},
      {"--stop \"2023-11-14 23:13:20.000000001+01:00\"", first},
      {"--start +1.250000001", last},
      {"--start +9000000000", ""},
      {"--interface can1 --interface can2", second + remote},
      {"--interface can", ""},
      {"--interface can0 --stop +0.1", first},
      {"--id 0x123", first},
      {"--id 291x", sent},
      {"--id 0x80000123,0x18FEF117 --id 2047", second + sent + remote},
      {"--id 0x100-0x1FFFFFFF", first + second + remote + last},
      {"--id 0x200-0x7FF,0x100-0x300,0x7FE-0x7FF", first + second},
      {"--id 0-0x1FFFFFFFx", sent + remote + last},
      {"--id 0x7FF-0x800", second + last},
  };
  for (const auto& c : cases) {
    const ToolRun run = run_tool(std::string("log drive ") + c.options);
    EXPECT_EQ(run.out, c.out) << c.options << run.err;
  }
}

TEST(Log, Merges) {
  write_file("a", "(1700000001) can0 001#01\n(1700000003) can0 001#03\n(1700000003) can0 001#04\n");
  write_file("b",
             "(1700000002) b 002#\n(1700000003) b 003#\n(1700000001) b 004#\n005#\n"
             "(1700000009) b 006#\n");
  write_file("empty", "");
  write_file("none", "\nhello\n");
  const std::string a1 = "(1700000001.000000) can0 001#01\n";
  const std::string a3 = "(1700000003.000000) can0 001#03\n(1700000003.000000) can0 001#04\n";
  const std::string b2 = "(1700000002.000000) b 002#\n";
  const std::string b3 = "(1700000003.000000) b 003#\n(1700000001.000000) b 004#\ncan0 005#\n";
  const std::string b9 = "(1700000009.000000) b 006#\n";
  const std::string backwards =
      "b: warning: its times run backwards, and its frames keep their order\n";
  check_all({
      {"a b", 0, a1 + b2 + a3 + b3 + b9, backwards},
      {"b - a", 0, a1 + b2 + b3 + a3 + b9, backwards},
      {"- b", 0, a1 + b2 + a3 + b3 + b9, backwards, "a"},
      {"b", 0, b2 + b3 + b9},
      {"a empty --stats", 0, a1 + a3,
       "lines            3\nframes           3\n  written        3\nmalformed lines  0\n"},
      {"none a", 1, a1 + a3, "none: not a log: no line is a frame\n"},
      {"a b --relative", 1,
       "(0.000000) can0 001#01\n(1.000000) b 002#\n(2.000000) can0 001#03\n(2.000000) can0 "
       "001#04\n",
       "zelk: b: a frame has no time, which start, stop and relative times need\n"},
  });
}

// More frames than a block holds, in blocks that end at different times.
TEST(LogThreads, MergeBlockByBlock) {
  std::string logs[3];
  std::string merged;
  for (int i = 0; i < 60000; ++i) {
    const std::string line = "(17000" + std::to_string(10000 + i) + ".000000) can0 123#" +
                             (i % 3 == 2 ? "00\n" : "0011223344556677\n");
    logs[i % 7 == 0 ? 0 : i % 3 == 2 ? 1 : 2] += line;
    merged += line;
  }
  for (int i = 0; i < 3; ++i) write_file(std::to_string(i), logs[i]);
  for (const char* const threads : {"", " --threads 1", " --threads 2", " --threads 9"}) {
    EXPECT_TRUE(run_tool(std::string("log 2 0 1") + threads).out == merged) << threads;
    EXPECT_TRUE(run_tool(std::string("log 2 - 1") + threads, Output::kFile, "0").out == merged);
    EXPECT_EQ(run_tool(std::string("log 0 1 2") + threads, Output::kClosedPipe).exit_code, 1);
    EXPECT_EQ(run_tool(std::string("log 0 1 2") + threads, Output::kRefused).exit_code, 1);
  }
}

// Lines, reports and faults of one log, of several blocks.
TEST(LogThreads, ConvertInOrder) {
  std::string log;
  std::string out;
  for (int i = 0; i < 60000; ++i) {
    const std::string time = std::to_string(10000 + i);
    log += "(17000" + time + ") can" + std::to_string(i % 3) + " 123#" + time + "0\n";
    if (i % 5000 == 0) log += "fault " + std::to_string(i) + "\n";
    if (i % 3 == 1 && i >= 100 && i < 50000)
      out += "(" + std::to_string(i) + ".000000) can1 123#" + time + "0\n";
  }
  write_file("log", log);
  write_file("ends", log + "123#\n");
  const std::string some = " --start +100 --stop +50000 --relative --interface can1 --stats";
  for (const char* const threads : {"1", "2", "5"}) {
    const std::string options = std::string(" --threads ") + threads;
    const ToolRun run = run_tool("log log" + some + options);
    EXPECT_TRUE(run.out == out) << threads;
    EXPECT_NE(run.err.find("log, line 5003: not a frame: \"fault 5000\"\n"), std::string::npos);
    EXPECT_TRUE(
        run.err.ends_with("line 45011: not a frame: \"fault 45000\"\n"
                          "log: 12 lines in all that are not frames\n"
                          "lines            60012\nframes           60000\n"
                          "  written        16634\nmalformed lines  12\n"))
        << run.err;
    check_parts({"log ends --relative" + options, 1, "(0.000000) can0 123#100000\n",
                 "zelk: ends: a frame has no time"});
    check({"log log --strict" + options, 1, "", "zelk: log: --strict takes no line"});
    EXPECT_EQ(run_tool("log log" + options, Output::kClosedPipe).exit_code, 1);
    EXPECT_EQ(run_tool("log log" + options, Output::kRefused).exit_code, 1);
  }
}

// Whatever goes wrong, the file that was there stays.
TEST(Log, RefusesAndLeavesTheOutputAsItWas) {
  write_file("a", "(1) can0 001#\nx\n123#\n");
  const auto out = write_file("out", "old");
  write_file("none", "x\n");
  check_all({
      {"a -o a", 1, "", "zelk: a is both a log to read and the output\n"},
      {"a -o ./a", 1, "", "zelk: a is both a log to read and the output\n"},
      {"a ./a -o out", 1, "", "zelk: ./a is given twice\n"},
      {"- a - -o out", 1, "", "zelk: standard input is given twice\n"},
      {"missing a -o out", 1, "", "zelk: cannot open missing: "},
      {". -o out", 1, "", "zelk: cannot open .: "},
      {"a -o .", 1, "", "zelk: .: could not be written: "},
      {"a -o no/where", 1, "", "zelk: no/where: could not be written: "},
      {"none -o out", 1, "", "none: not a log: no line is a frame\n"},
      {"a -o out --strict", 1, "",
       "a, line 2: not a frame: \"x\"\nzelk: a: --strict takes no line that is not a frame\n"},
      {"a -o out --start +1", 1, "", "zelk: a: a frame has no time, which start, "},
      {"a -o out --start +2 --stop 3", 1, "", "zelk: a: the stop is not behind the start"},
      {"-o out", 2, "", "IN is required"},
      {"a -o out --start noon", 2, "", "--start: seconds, +SECONDS or a date"},
      {"a -o out --stop +2015-07-10T06:17:32Z", 2, "", "--stop: seconds"},
      {"a -o out --stop +-1", 2, "", "--stop: seconds"},
      {"a -o out --id 0x20000000", 2, "", "--id: an identifier or a range of them"},
      {"a -o out --id 5-3", 2, "", "--id: an identifier"},
      {"a -o out --id 0x", 2, "", "--id: an identifier"},
      {"a -o out --id 1-", 2, "", "--id: an identifier"},
  });
  EXPECT_EQ(bytes_of(out), "old");
  check({"log a -o out", 0, "", "a, line 2: not a frame: \"x\"\n"});
  EXPECT_EQ(bytes_of(out), "(1.000000) can0 001#\ncan0 123#\n");
}

TEST(Decode, TimesAndStrictness) {
  write_file("m.dbc", "BS_:\n\nBU_: N\n\nBO_ 1 M: 1 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\n\n");
  write_file("a", "\nx\n(1700000001.5) c 001#01\n(1700000000.9) c 001#02\n(1700000009) c 001#03\n");
  write_file("b", "(1) c 001#01\n001#02\n");
  const ToolCase cases[] = {
      {"a --start +0 --stop 1700000009 --stats", 0, "(1700000001.5) c M S=1\n",
       "frames           3\n  other times    2\n  decoded        1\n"},
      {"a --relative", 0, "(0.000000) c M S=1\n(-0.600000) c M S=2\n(7.500000) c M S=3\n",
       "line 2"},
      {"a --relative --stop +0 --format json", 0,
       R"({"time":-0.600000,"interface":"c","id":1,"extended":false,"message":"M","signals":{"S":2}})"
       "\n",
       "line 2"},
      {"a --strict", 1, "", "zelk: a: --strict takes no line that is not a frame\n"},
      {"b --stop 5", 1, "", "zelk: b: a frame has no time, which start"},
  };
  for (ToolCase c : cases) {
    c.arguments.insert(0, "decode m.dbc --log ");
    check(c);
  }
  std::string log;
  std::string decoded;
  for (int i = 0; i < 60000; ++i) {
    log += "(" + std::to_string(1000000 + i) + ") c 001#07\n";
    if (i >= 59000) decoded += "(" + std::to_string(i) + ".000000) c M S=7\n";
  }
  write_file("long", log);
  for (const char* threads : {"1", "4"}) {
    EXPECT_TRUE(
        run_tool(std::string("decode m.dbc --log long --relative --start +59000 --threads ") +
                 threads)
            .out == decoded);
  }
}

}  // namespace

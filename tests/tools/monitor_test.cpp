#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "support/files.hpp"
#include "tools/run_tool.hpp"

namespace {

constexpr const char* kDatabase =
    "BS_:\nBU_: N\n"
    "BO_ 256 Fast: 2 N\n SG_ Speed : 0|8@1+ (0.1,0) [0|0] \"km/h\" N\n"
    " SG_ Gear : 8|8@1+ (1,0) [0|0] \"\" N\n"
    "BO_ 512 Absent: 1 N\n"
    "BO_ 768 Paged: 3 N\n SG_ Mode M : 0|8@1+ (1,0) [0|0] \"\" N\n"
    " SG_ A m0 : 8|8@1+ (1,0) [0|0] \"\" N\n SG_ Sub m1M : 8|8@1+ (1,0) [0|0] \"\" N\n"
    " SG_ B m3 : 16|8@1- (1,0) [0|0] \"\" N\n"
    "BO_ 1024 Event: 1 N\n"
    "BA_DEF_ BO_ \"GenMsgCycleTime\" INT 0 10000;\n"
    "BA_DEF_ BO_ \"GenMsgSendType\" ENUM \"Cyclic\",\"OnChange\";\n"
    "BA_DEF_DEF_ \"GenMsgCycleTime\" 0;\nBA_DEF_DEF_ \"GenMsgSendType\" \"Cyclic\";\n"
    "BA_ \"GenMsgCycleTime\" BO_ 256 10;\nBA_ \"GenMsgCycleTime\" BO_ 512 100;\n"
    "BA_ \"GenMsgCycleTime\" BO_ 1024 10;\nBA_ \"GenMsgSendType\" BO_ 1024 1;\n"
    "VAL_ 256 Gear 2 \"Second\" ;\nSG_MUL_VAL_ 768 A Mode 0-0;\nSG_MUL_VAL_ 768 Sub Mode 1-1;\n"
    "SG_MUL_VAL_ 768 B Sub 3-3;\n";

/// Runs `monitor --once` on a log.
ToolRun once(const std::string& log, const std::string& options = "") {
  write_file("m.dbc", kDatabase);
  write_file("log", log);
  return run_tool("monitor m.dbc --replay log --once " + options);
}

/// A line of a log for each time in milliseconds.
std::string frames_at(const std::vector<int>& milliseconds, const std::string& frame) {
  std::string log;
  for (const int time : milliseconds)
    log += "(" + std::to_string(100000 + time / 1000) + "." +
           std::to_string(1'000'000 + time % 1000 * 1000).substr(1) + ") c " + frame + "\n";
  return log;
}

std::vector<int> even(int first, int step, int count) {
  std::vector<int> times;
  for (int i = 0; i < count; ++i) times.push_back(first + i * step);
  return times;
}

TEST(Monitor, PrintsTheLastStateOnce) {
  const std::string log =
      "(1.000000) can0 100#0A01\n(1.010000) can0 100#0A01\n(1.022000) can0 100#1401\n"
      "(1.030000) can0 7FF#AB\n(1.030000) can0 300#0005\n(1.030000) can1 300#0103FF\n"
      "(1.030000) can0 100#R\n(1.030000) can0 20000004#0000000000000000\n"
      "(1.032000) can0 100#1402\n(1.032000) can0 300#01\n";
  const ToolRun run = once(log);
  EXPECT_EQ(
      run.out,
      "(1.032000) 10 frames, 1 unknown, 1 error frame, 1 remote frame\n"
      "interface     id  message  page               state     count  changes  cycle_ms  "
      "deviation_ms  nominal_ms  gaps  age_ms  data\n"
      "can0       0x100  Fast     -                  -             4        2    10.667         "
      "0.943          10     0       0  1402\n"
      "can0       0x300  Paged    Mode = 0           -             1        0         -            "
      " "
      "-           -     0       2  0005\n"
      "can0       0x300  Paged    Mode = 1           -             1        0         -            "
      " "
      "-           -     0       0  01\n"
      "can0       0x7FF  -        -                  unknown       1        0         -            "
      " "
      "-           -     0       2  AB\n"
      "can1       0x300  Paged    Mode = 1, Sub = 3  -             1        0         -            "
      " "
      "-           -     0       2  0103FF\n"
      "-          0x200  Absent   -                  expected      0        0         -            "
      " "
      "-         100     0       -  -\n"
      "\n"
      "interface     id  message  page               signal  value  unit  text\n"
      "can0       0x100  Fast     -                  Speed   2      km/h  -\n"
      "can0       0x100  Fast     -                  Gear    2      -     Second\n"
      "can0       0x300  Paged    Mode = 0           Mode    0      -     -\n"
      "can0       0x300  Paged    Mode = 0           A       5      -     -\n"
      "can0       0x300  Paged    Mode = 1           Mode    1      -     -\n"
      "can1       0x300  Paged    Mode = 1, Sub = 3  Mode    1      -     -\n"
      "can1       0x300  Paged    Mode = 1, Sub = 3  Sub     3      -     -\n"
      "can1       0x300  Paged    Mode = 1, Sub = 3  B       -1     -     -\n");
  EXPECT_EQ(once(log, "--format csv --signal Gear").out,
            "time,interface,id,message,page,state,count,changes,cycle_ms,deviation_ms,nominal_ms,"
            "gaps,age_ms,data,signal,value,unit,text\r\n"
            "1.032000,can0,0x100,Fast,,,4,2,10.667,0.943,10,0,0,1402,Gear,2,,Second\r\n");
  EXPECT_EQ(once(log, "--format json --from can1 --message Paged").out,
            R"({"time":1.032,"interface":"can1","id":768,"extended":false,"message":"Paged",)"
            R"("page":"Mode = 1, Sub = 3","state":"","count":1,"changes":0,"cycle_ms":null,)"
            R"("deviation_ms":null,"nominal_ms":null,"gaps":0,"age_ms":2,"data":"0103FF",)"
            R"("signals":{"Mode":1,"Sub":3,"B":-1}})"
            "\n");
  EXPECT_NE(once(log, "--from can1 --from vcan").err.find("warning: no frame is from \"vcan\"\n"),
            std::string::npos);
}

/// The state, count, changes, cycle, deviation, nominal cycle and gaps of a row.
///
/// @param of  its identifier
std::string figures_of(const std::string& log, const std::string& of) {
  std::istringstream lines(once(log, "--format csv").out);
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    std::vector<std::string> row;
    for (std::string field; std::getline(fields, field, ',');) row.push_back(field);
    if (row[2] != of) continue;
    for (std::size_t i = 6; i <= 11; ++i) row[5] += "," + row[i];
    return row[5];
  }
  return "none";
}

TEST(Monitor, TellsHowRegularlyAMessageComes) {
  const std::string fast = "100#0000";
  const std::string unknown = "7FF#";
  const std::string other = "555#";
  const struct {
    const char* name;
    std::string log;
    const char* id;
    const char* figures;
  } cases[] = {
      {"three cycles late", frames_at({0, 10}, fast) + frames_at({50}, other), "0x100",
       ",2,0,10,0,10,0"},
      {"later", frames_at({0, 10}, fast) + "(100000.050001) c 555#\n", "0x100",
       "missing,2,0,10,0,10,0"},
      {"came back", frames_at({0, 10, 60}, fast), "0x100", ",3,0,30,20,10,1"},
      {"never came", frames_at({0, 400}, fast), "0x200", "expected,0,0,,,100,0"},
      {"never came in time", frames_at({0, 401}, fast), "0x200", "missing,0,0,,,100,0"},
      {"only on change", frames_at({0, 10}, "400#") + frames_at({500}, other), "0x400",
       ",2,0,10,0,10,0"},
      {"regular by itself", frames_at(even(0, 10, 9), unknown) + frames_at({121}, other), "0x7FF",
       "missing,9,0,10,0,,0"},
      {"too few", frames_at(even(0, 10, 8), unknown) + frames_at({999}, other), "0x7FF",
       "unknown,8,0,10,0,,0"},
      {"irregular", frames_at({0, 10, 40, 41, 50, 90, 91, 92, 93, 120, 900}, unknown), "0x7FF",
       "unknown,11,0,90,230.394,,0"},
      {"a pause", frames_at(even(0, 10, 9), unknown) + frames_at({1080, 1090}, unknown), "0x7FF",
       "unknown,11,0,10,0,,1"},
      {"slower from now on",
       frames_at(even(0, 10, 9), unknown) + frames_at({180, 280, 380}, unknown), "0x7FF",
       "unknown,12,0,100,0,,2"},
      {"a window of 64", frames_at(even(0, 10, 9), fast) + frames_at(even(92, 12, 64), fast),
       "0x100", ",73,0,12,0,10,0"},
      {"set back", frames_at({5000, 5010, 0, 12}, fast), "0x100", ",4,0,11,1,10,0"},
      {"missing since the clock was set back",
       frames_at({5000, 5010}, fast) + frames_at({0, 41}, other), "0x100", "missing,2,0,10,0,10,0"},
      {"a little out of order", frames_at({10}, other) + frames_at({0, 10}, fast), "0x100",
       ",2,0,10,0,10,0"},
      {"no times", "c 100#01\nc 100#01\nc 100#02\n", "0x100", ",3,1,,,10,0"},
      {"a lifetime later", "(-1000000000.0) c 100#\n(1000000000.0) c 100#\n", "0x100",
       ",2,0,72057594037.928,0,10,1"},
      {"changes of length", "c 100#0102\nc 100#01\nc 100#0102\n", "0x100", ",3,2,,,10,0"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(figures_of(c.log, c.id), c.figures) << c.name;
  }
}

TEST(Monitor, HoldsNoMoreRowsThanPeopleRead) {
  std::string unknown;
  std::string pages;
  for (int i = 0; i < 3000; ++i) unknown += "c 1000" + std::to_string(1000 + i) + "#\n";
  EXPECT_EQ(once(unknown).out.find("3000 frames, 2048 unknown, 952 unlisted frames\n"), 0u);
  for (int i = 0; i < 300; ++i) {
    const std::string digits = {"0123456789ABCDEF"[i / 16 % 16], "0123456789ABCDEF"[i % 16]};
    pages += "c 300#" + std::string(i < 256 ? "01" : "02") + digits + "\n";
  }
  const std::string out = once(pages, "--format csv --signal Sub").out;
  EXPECT_NE(out.find(",\"Mode = 1, Sub = 255\",,1,"), std::string::npos) << out;
  EXPECT_NE(out.find(",further,,44,43,"), std::string::npos);
}

TEST(Monitor, RefusesWhatCannotBeMeant) {
  write_file("m.dbc", kDatabase);
  write_file("log", "(1) c 100#0A02\n");
  for (const ToolCase& c : std::vector<ToolCase>{
           {"monitor m.dbc --replay none --once", 1, "", "cannot open none: "},
           {"monitor none.dbc --once", 1, "", "none.dbc: "},
           {"monitor m.dbc --once", 0, "0 frames\n"},
           {"monitor m.dbc --once --replay m.dbc", 1, "0 frames\n", "m.dbc: not a log: no line is"},
           {"monitor m.dbc --replay log --speed 0", 2, "", "a number above 0"},
           {"monitor m.dbc --speed 3", 2, "", "--speed requires --replay"},
           {"monitor m.dbc --once --message Fats", 1, "", "did you mean Fast?"},
           {"monitor m.dbc --replay log --record log", 1, "", "both the log to read and the"},
           {"monitor m.dbc --replay log --record m.dbc", 1, "", "m.dbc: is there, and no log of"},
           {"monitor m.dbc --interface none0", 1, "", "zelk: none0: "},
       })
    check_parts(c);
  EXPECT_EQ(content_of(write_file("m.dbc", kDatabase)), kDatabase);
}

// A recording that was cut within a line goes on in a line of its own.
TEST(Monitor, RecordsBehindWhatIsThere) {
  const auto file = write_file("record", "(1.000000) c 001#07\n(2.0000");
  EXPECT_EQ(once("(3) c 7FF#AB\n(4) c 300#00 T\n", "--record record").exit_code, 0);
  EXPECT_EQ(bytes_of(file),
            "(1.000000) c 001#07\n(2.0000\n(3.000000) c 7FF#AB\n(4.000000) c 300#00 T\n");
}

}  // namespace

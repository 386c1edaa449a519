#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/files.hpp"
#include "tools/run_tool.hpp"

namespace {

// Groups FECA (12 bytes), EF00 to 02 (1785 bytes) and F004 from 00, each in an extended identifier,
// and 123, which as a group number would be that of a frame to 01 from 23.
constexpr const char* kMessages =
    "BS_:\n\nBU_: N\n\n"
    "BO_ 2566834942 Faults: 12 N\n"
    " SG_ Lamp : 0|8@1+ (1,0) [0|0] \"\" N\n"
    " SG_ Page M : 64|8@1+ (1,0) [0|0] \"\" N\n"
    " SG_ Far m5 : 72|16@1+ (0.5,0) [0|0] \"V\" N\n"
    " SG_ Back : 95|8@0- (1,0) [0|0] \"\" N\n\n"
    "BO_ 2565865214 Long: 1785 N\n"
    " SG_ First : 0|8@1+ (1,0) [0|0] \"\" N\n"
    " SG_ Last : 14272|8@1+ (1,0) [0|0] \"\" N\n\n"
    "BO_ 2364539904 Engine: 8 N\n"
    " SG_ Torque : 16|8@1+ (1,-125) [0|0] \"%\" N\n\n"
    "BO_ 291 Short: 1 N\n"
    " SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\n\n";

constexpr const char* kSaysSo =
    "BA_DEF_ BO_ \"VFrameFormat\" ENUM \"Standard\",\"J1939PG\";\n"
    "BA_DEF_DEF_ \"VFrameFormat\" \"J1939PG\";\n";
constexpr const char* kSaysNot =
    "BA_DEF_ BO_ \"VFrameFormat\" ENUM \"Standard\",\"J1939PG\";\n"
    "BA_DEF_DEF_ \"VFrameFormat\" \"Standard\";\n";
constexpr const char* kHasNumbers = "BA_DEF_ \"J1939PGN\" INT 0 1;\nBA_DEF_DEF_ \"J1939PGN\" 1;\n";

TEST(Decode, PutsMessagesOfJ1939Together) {
  std::string log =
      "(1.000000) can0 18ECFF33#200C0002FFCAFE00\n"
      "(1.05) can0 18EBFF33#0107000000000000\n"
      "(1.06) can1 18ECFF33#200C0002FFCAFE00\n"
      "(1.0700) can0 18EBFF33#020005E80380FFFF\n"
      "(1.08) can0 18FECA33#0900000000000000\n"
      "(1.09) can1 18EBFF33#020005E80380FFFF\n"
      "(2.0) can0 18EC0244#10F906FFFF00EF00\n";
  for (int i = 1; i <= 255; ++i) {
    const std::string number = {"0123456789ABCDEF"[i / 16], "0123456789ABCDEF"[i % 16]};
    log += "(2.1) can0 18EB0244#" + number + (i == 255 ? "00000000000063\n" : "2A000000000000\n");
  }
  log += "(3.0) can0 1CEC0244#FF01FFFFFF00EF00\nspoilt\n(4) can0 18ECFF33#200C0001FFCAFE00\n";
  write_file("log", log);
  write_file("m.dbc", std::string(kMessages) + kSaysSo);
  write_file("p.dbc",
             std::string(kMessages) +
                 "BO_ 2565668862 Packet: 8 N\n SG_ Number : 0|8@1+ (1,0) [0|0] \"\" N\n\n" +
                 kSaysSo);
  const std::string whole = "(1.0700) can0 Faults Lamp=7 Page=5 Far=500 V Back=-128\n";
  const std::string single = "(1.08) can0 Faults Lamp=9\n";
  const ToolCase cases[] = {
      {"m.dbc", 0, single, "spoilt"},
      {"m.dbc --j1939-tp --stats", 0, whole + single + "(2.1) can0 Long First=42 Last=99\n",
       "lines            265\nframes           264\n  decoded        3\n    too short    1\n"
       "  unknown        0\n  packets        263\n  remote         0\n  error          0\n"
       "malformed lines  1\nlong messages    4\n  put together   2\n  aborted        0\n"
       "  incomplete     0\n  inconsistent   2\n  dropped        0\nstray packets    0\n"},
      {"p.dbc --j1939-tp --message Packet", 0,
       "(1.000000) can0 Packet Number=32\n(1.06) can1 Packet Number=32\n"
       "(4) can0 Packet Number=32\n",
       "spoilt"},
      {"m.dbc --j1939-tp --signal Far --format csv", 0,
       "time,interface,id,message,signal,raw,value,unit,text\r\n"
       "1.0700,can0,0x18FECA33,Faults,Far,1000,500,V,\r\n",
       "spoilt"},
      {"m.dbc --j1939-tp --signal Last --format json", 0,
       R"({"time":2.1,"interface":"can0","id":418316868,"extended":true,"message":"Long",)"
       R"("signals":{"Last":99}})"
       "\n",
       "spoilt"},
  };
  for (ToolCase c : cases) {
    c.arguments.insert(0, "decode --log log ");
    check(c);
  }
}

TEST(Decode, MatchesParameterGroups) {
  write_file("log",
             "c 18FECA33#01\nc 98FECA33#01\nc 0CF00421#00007E\nc 0CF00400#00007F\nc 00000123#01\n"
             "c 18EF0B0C#05\nc 123#07\nc 4CF004#00\n");
  write_file("silent.dbc", kMessages);
  write_file("so.dbc", std::string(kMessages) + kSaysSo);
  write_file("not.dbc", std::string(kMessages) + kSaysNot);
  write_file("numbers.dbc", std::string(kMessages) + kHasNumbers);
  write_file(
      "exact.dbc",
      "BS_:\n\nBU_: N\n\nBO_ 2364539937 Exact: 8 N\n SG_ T : 16|8@1+ (1,0) [0|0] \"\" N\n\n");
  const std::string engine = "c Engine Torque=2 %\n";
  const std::string last = "c Short S=7\n";
  const std::string by_group = "c Faults Lamp=1\nc Engine Torque=1 %\n" + engine;
  const ToolCase cases[] = {
      {"silent.dbc", 0, engine + last, "not a frame"},
      {"silent.dbc --match-pgn", 0, by_group + "c Long First=5\n" + last, "not a frame"},
      {"not.dbc", 0, engine + last, "not a frame"},
      {"not.dbc --match-pgn", 0, by_group + "c Long First=5\n" + last, "not a frame"},
      {"numbers.dbc --match-pgn", 0, last, "not a frame"},
      {"silent.dbc exact.dbc --match-pgn --signal T --signal Torque", 0, "c Exact T=126\n" + engine,
       "not a frame"},
  };
  for (ToolCase c : cases) {
    c.arguments.insert(0, "decode --log log ");
    check(c);
  }
}

TEST(Decode, PutsMessagesTogetherInAnyNumberOfThreads) {
  std::string log;
  for (int i = 0; i < 60000; ++i) {
    const std::string source = {'0', "0123456789ABCDEF"[i % 13]};
    const char* const texts[] = {"18ECFF%#200C0002FFCAFE00", "18EBFF%#0107000000000000",
                                 "18EBFF%#020005E80380FFFF"};
    std::string text = texts[(i / 13 + i / 5000) % 3];
    log += "c" + std::to_string(i % 13 % 2) + ' ' + text.replace(text.find('%'), 1, source) + '\n';
  }
  write_file("log", log);
  write_file("m.dbc", std::string(kMessages) + kSaysSo);
  const ToolRun alone = run_tool("decode m.dbc --j1939-tp --stats --threads 1 --log log");
  EXPECT_GT(std::count(alone.out.begin(), alone.out.end(), '\n'), 5000);
  for (const char* const threads : {"2", "5"}) {
    const ToolRun run =
        run_tool(std::string("decode m.dbc --j1939-tp --stats --log log --threads ") + threads);
    EXPECT_EQ(run.out, alone.out);
    EXPECT_EQ(run.err, alone.err);
  }
}

}  // namespace

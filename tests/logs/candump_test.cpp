#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "logs/forms/hex.hpp"
#include "support/memory_stream.hpp"
#include "zelk/logs/candump.hpp"

namespace zelk::logs {
namespace {

using testing::ElementsAre;

std::vector<std::string> parsed(const std::string& text, std::size_t most = 1 << 20,
                                ZelkLogTimes times = ZelkLogTimes::kDetect) {
  return parsed(*open_candump(memory_input(text, most, times)));
}

TEST(Candump, ReadsAllItsForms) {
  const struct {
    const char* line;
    const char* frame;
  } cases[] = {
      {"(1436509052.249713) vcan0 044#2A366C2BBA",
       "1436509052249713000 44 0 2A366C2BBA vcan0 1436509052.249713"},
      {"(1436509052.249713) vcan0 1FFFFFFF#",
       "1436509052249713000 9FFFFFFF 0  vcan0 1436509052.249713"},
      {"(9999999999.000001) can0 7FF#00 T", "- 7FF 32 00 can0 9999999999.000001"},
      {"(1.5) can0 123##5aabb R", "1500000000 123 67 AABB can0 1.5"},
      {"(1.1234567899) can0 123#R8", "1123456789 123 8 0000000000000000 can0 1.1234567899"},
      {"(1.0) can0 20000004#0001000000000000", "1000000000 80000004 16 0001000000000000 can0 1.0"},
      {"123#11.22.33", "- 123 0 112233"},
      {"123#1122334455667788_C", "- 123 0 1122334455667788"},
      {"  can1  RX B E  12345678  [02]  01 02   '..'", "- 92345678 7 0102 can1"},
      {" (2016-07-09 10:20:30.5)  can0  123   [0] ",
       "1468059630500000000 123 0  can0 2016-07-09 10:20:30.5"},
      {"(2016-07-09T12:20:30+02:00) can0 123#",
       "1468059630000000000 123 0  can0 2016-07-09T12:20:30+02:00"},
      {"(2016-02-30 10:20:30) can0 123#", "- 123 0  can0 2016-02-30 10:20:30"},
      {"can0 123 [8] remote request", "- 123 8  can0"},
      {"\t( 1.5)\tcan0\t123#R_9\t", "1500000000 123 8  can0 1.5"},
      {"can0 123#R8_F", "- 123 8 0000000000000000 can0"},
      {"can0 TX - E 123 [08] 0102030405060708", "1: can0 TX - E 123 [08] 0102030405060708"},
      {"can0 TX - E 123 [01] 01", "- 123 37 01 can0"},
      {"can0 20000004 [2] 00 01 ERRORFRAME", "- 80000004 16 0001 can0"},
      {"(1.5 can0 123#", "1: (1.5 can0 123#"},
      {"() can0 123#", "1: () can0 123#"},
      {"(1,5) can0 123#", "1: (1,5) can0 123#"},
      {"(00000000000000000000000000000000000000001) 123#",
       "1: (00000000000000000000000000000000000000001) 123#"},
      {"can0 123#11 X", "1: can0 123#11 X"},
      {"can0 12G#", "1: can0 12G#"},
      {"can0 123#RG", "1: can0 123#RG"},
      {"can0 123#1122334455667788_8", "1: can0 123#1122334455667788_8"},
      {"can0 123#1122334455667788_", "1: can0 123#1122334455667788_"},
      {"can0 123#1122334455667788_99", "1: can0 123#1122334455667788_99"},
      {"can0 123#11_9", "1: can0 123#11_9"},
      {"can0 123 [2] 01", "1: can0 123 [2] 01"},
      {"can0 123 [1] 01 rest", "1: can0 123 [1] 01 rest"},
      {"can0 123 [] 01", "1: can0 123 [] 01"},
      {"can0 123 [001] 01", "1: can0 123 [001] 01"},
      {"can0 123 (1] 01", "1: can0 123 (1] 01"},
      {"can0 123 [1) 01", "1: can0 123 [1) 01"},
      {"can0 123 [x] 01", "1: can0 123 [x] 01"},
      {"can0 123 [65] 01", "1: can0 123 [65] 01"},
      {"can0 RX B 123 [1] 01", "1: can0 RX B 123 [1] 01"},
      {"can0 RX", "1: can0 RX"},
      {"can0 800#", "1: can0 800#"},
      {"can0 123#1", "1: can0 123#1"},
      {"can0 123#112233445566778899", "1: can0 123#112233445566778899"},
      {"can0 123#GG", "1: can0 123#GG"},
      {"can0 123##", "1: can0 123##"},
      {"can0 123 [9] 1", "1: can0 123 [9] 1"},
  };
  for (const auto& each : cases) EXPECT_THAT(parsed(each.line), ElementsAre(each.frame));
  EXPECT_THAT(parsed("\n \n\r\n"), testing::IsEmpty());
}

TEST(Candump, AddsUpDifferences) {
  const std::string text = "(0.000000) c 1A0#\n(0.5) c 1A0#\nnone\n(0.25) c 1A0#\nc 1A0#";
  const std::vector<std::string> sums = {"0 1A0 0  c 0.000000", "500000000 1A0 0  c 0.5",
                                         "750000000 1A0 0  c 0.25", "- 1A0 0  c", "3: none"};
  EXPECT_EQ(parsed(text, 1 << 20, ZelkLogTimes::kPoints)[2], "250000000 1A0 0  c 0.25");
  EXPECT_THAT(parsed(text), testing::UnorderedElementsAreArray(sums));
  for (const std::size_t most : {1, 20, 1000}) {
    EXPECT_THAT(parsed(text, most, ZelkLogTimes::kDifferences),
                testing::UnorderedElementsAreArray(sums));
  }
}

TEST(Candump, KeepsSumsInRange) {
  const std::string late = "(9223372035) c 1A0#\n(9) c 1A0#\n";
  const std::string early = "(1678-01-01 00:00:00) c 1A0#\n";
  EXPECT_THAT(
      parsed(late + early + early + early, 1 << 20, ZelkLogTimes::kDifferences),
      ElementsAre("9223372035000000000 1A0 0  c 9223372035", "9223372036854775807 1A0 0  c 9",
                  "8812036854775807 1A0 0  c 1678-01-01 00:00:00",
                  "-9205747963145224193 1A0 0  c 1678-01-01 00:00:00",
                  "-9223372036854775807 1A0 0  c 1678-01-01 00:00:00"));
}

TEST(Candump, RefusesNamesThatAreTooLong) {
  const std::string longest(kZelkLongestChannel, 'c');
  EXPECT_THAT(parsed(longest + " 123#"), ElementsAre("- 123 0  " + longest));
  EXPECT_THAT(parsed('c' + longest + " 123#"), ElementsAre(testing::StartsWith("1: ccc")));
}

// Logs that were put together go back as often as differences do, but stand far from zero.
TEST(Candump, TakesLateTimesForPoints) {
  EXPECT_THAT(parsed("(1436509052.5) c 1A0#\n(1436509051.5) c 1A0#\n"),
              ElementsAre("1436509052500000000 1A0 0  c 1436509052.5",
                          "1436509051500000000 1A0 0  c 1436509051.5"));
}

// A frame that was recorded late makes no differences of points in time.
TEST(Candump, TakesTimesThatMostlyGrowForPoints) {
  std::string text;
  for (int i = 0; i < 20; ++i) text += "(" + std::to_string(i == 9 ? 8.5 : i) + ") c 1A0#\n";
  EXPECT_EQ(parsed(text)[19], "19000000000 1A0 0  c 19.000000");
}

/// A line that most likely looks like one of `candump -l`, and has some fault or other.
std::string random_line(std::mt19937& random) {
  const auto upto = [&](unsigned most) {
    return std::uniform_int_distribution<unsigned>(0, most)(random);
  };
  std::string line = "(143650905" + std::to_string(upto(9)) + ".249713) ";
  line += std::string(upto(3), 'c') + "an0 ";
  const char* const digits = "0123456789ABCDEFabcdef";
  for (unsigned i = upto(3) ? 3 : 8; i > 0; --i) line += digits[upto(i == 8 ? 1 : 8)];
  line += upto(3) ? "#" : "##1";
  for (unsigned i = 2 * upto(upto(5) ? 8 : 65); i > 0; --i) line += digits[upto(21)];
  const char* const ends[] = {"", "", "\r", " T", " R\r", " ", "_9"};
  line += ends[upto(6)];
  if (upto(2) == 0)
    line[upto(static_cast<unsigned>(line.size() - 1))] = " #()./:@GOg`\x80\t0"[upto(14)];
  return line + '\n';
}

// Most lines take a way of their own through the parser, unless they are among the last ones, and
// are compared with the line before.
TEST(Candump, GivesPlainLinesAsAnyOthers) {
  std::mt19937 random(5);
  const std::string rest(300, '\n');
  const std::string before = std::string(12, '\0') + "249713) can0 123#\n";
  int frames = 0;
  for (int i = 0; i < 5000; ++i) {
    const std::string first = i % 9 ? random_line(random) : before;
    const std::string second = random_line(random);
    std::vector<std::string> alone = parsed(first);
    for (std::string frame : parsed(second)) {
      if (frame.starts_with("1: ")) frame[0] = '2';
      alone.push_back(std::move(frame));
    }
    ASSERT_THAT(parsed(first + second + rest), testing::UnorderedElementsAreArray(alone))
        << first << second;
    frames += static_cast<int>(
        std::ranges::count_if(alone, [](const std::string& frame) { return frame[1] != ':'; }));
  }
  EXPECT_GT(frames, 4000);
}

TEST(Candump, ReadsDigitsInAnyWayAlike) {
  std::mt19937 random(6);
  for (int i = 0; i < 100000; ++i) {
    char text[16];
    for (char& c : text) c = "0123456789ABCDEFabcdef"[random() % 22];
    if (i % 4) text[random() % 16] = static_cast<char>(random());
    const HexBytes found = hex_bytes(text);
    const HexBytes expected = portable_hex_bytes(text);
    ASSERT_EQ(found.digits, expected.digits) << std::string_view(text, 16);
    if (found.digits % 2 == 0) {
      ASSERT_EQ(found.bytes, expected.bytes);
    }
    EXPECT_EQ(found.digits < 16, std::string_view(text, 16).find_first_not_of(
                                     "0123456789ABCDEFabcdef") != std::string_view::npos);
  }
}

}  // namespace
}  // namespace zelk::logs

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "monitor/screen/columns.hpp"
#include "monitor/screen/curve.hpp"
#include "monitor/screen/details.hpp"
#include "monitor/screen/line.hpp"
#include "tools/monitor_screens.hpp"

namespace {

using namespace zelk::tool;

TEST(MonitorText, PrintsNothingThatATerminalObeys) {
  const struct {
    const char* name;
    std::string text;
    std::size_t room;
    const char* utf8;
    std::size_t columns;
    const char* ascii;
  } cases[] = {
      {"fits exactly", "abc", 3, "abc", 3, "abc"},
      {"one too many", "abcd", 3, "ab…", 3, "ab~"},
      {"no room", "a", 0, "", 0, ""},
      {"nothing", "", 0, "", 0, ""},
      {"escape sequences", "\x1b[31m\a", 20, "\\x1B[31m\\x07", 12, "\\x1B[31m\\x07"},
      {"those of 8 bits",
       "\xC2\x9B"
       "1m\x7F",
       20, "\\xC2\\x9B1m\\x7F", 14, "\\xC2\\x9B1m\\x7F"},
      {"line ends and a tab", "a\r\n\tb", 20, "a\\r\\n\\tb", 8, "a\\r\\n\\tb"},
      {"a zero", std::string("a\0b", 3), 20, "a\\x00b", 6, "a\\x00b"},
      {"no half of an escape", "ab\x1b", 5, "ab…", 3, "ab~"},
      {"wide", "水水", 4, "水水", 4, "??"},
      {"half of a wide one", "水水", 3, "水…", 3, "??"},
      {"a wide one at the end", "a水", 2, "a…", 2, "a?"},
      {"combining", "e\u0301x", 2, "e\u0301x", 2, "e~"},
      {"combining at a cut", "e\u0301xy", 2, "e\u0301…", 2, "e~"},
      {"with nothing to combine with", "\u0301", 9, "\\u0301", 6, "?"},
      {"many in one place", "e\u0301\u0301\u0301\u0301\u0301x", 9, "e\u0301\u0301\u0301x", 2,
       "e?????x"},
      {"some after each", "e\u0301\u0301o\u0301\u0301", 9, "e\u0301\u0301o\u0301\u0301", 2,
       "e??o??"},
      {"turned around", "a\u202Eb\u2066", 20, "a\\u202Eb\\u2066", 14, "a?b?"},
      {"invisible", "\u200B\uFEFF\u00AD", 20, "\\u200B\\uFEFF\\u00AD", 18, "???"},
      {"tags and private use", "\U000E0041\uE000", 20, "\\uE0041\\uE000", 13, "??"},
      {"not printable here", "\u0378", 20, "\\u0378", 6, "?"},
      {"written to the left", "שלום", 9, "שלום", 4, "????"},
      {"broken", "a\xC3(\x80\xFF", 9, "a\uFFFD(\uFFFD\uFFFD", 5, "a?(??"},
      {"a character cut off", "a\xE6\xB0", 9, "a\uFFFD\uFFFD", 3, "a??"},
      {"surrogates and overlong ones", "\xED\xA0\x80\xC0\x80", 9, "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD",
       5, "?????"},
  };
  for (const auto& c : cases) {
    const FittedText fit = fitted(c.text, c.room, kUtf8);
    EXPECT_EQ(fit.text, c.utf8) << c.name;
    EXPECT_EQ(fit.columns, c.columns) << c.name;
    EXPECT_EQ(fitted(c.text, c.room, kAscii).text, c.ascii) << c.name;
  }
}

TEST(MonitorText, StaysWithinItsLine) {
  ScreenLine line;
  LineWriter out(line, 12, kUtf8);
  out.add_right("水", 4, Role::kKey);
  out.add("a", Role::kPlain);
  out.add("\u0301", Role::kFaint);  // joins nothing that has another look
  EXPECT_EQ(out.room(), 1u);
  out.add_left("水", 5, Role::kText);
  out.add("more", Role::kAlert);
  out.skip_to(99);
  EXPECT_EQ(text_of(line), "  水a\\u0301…");
  EXPECT_EQ(with_role(line, Role::kText), "…|");
}

TEST(MonitorColumns, SpellsFiguresInTheirPlaces) {
  const struct {
    double seconds;
    const char* text;
  } ages[] = {{0, "0.00"},        {9.994, "9.99"},   {9.995, "10.0"},
              {999.94, "999.9"},  {999.95, "17m"},   {359'969, "5999m"},
              {359'999, "6000m"}, {360'000, "100h"}, {1e300, "9999h"}};
  for (const auto& age : ages) EXPECT_EQ(age_text(age.seconds), age.text);
  const struct {
    double milliseconds;
    const char* text;
  } cycles[] = {{0.004, "0.00"},     {99.994, "99.99"},  {99.995, "100.0"},
                {9999.94, "9999.9"}, {9999.95, "10000"}, {1e300, "9999999"}};
  for (const auto& cycle : cycles) EXPECT_EQ(milliseconds_text(cycle.milliseconds), cycle.text);
  // Neither a clock that was set back nor the whole range of times makes an age negative.
  EXPECT_EQ(seconds_between(5, 4), 0);
  EXPECT_NEAR(seconds_between(INT64_MIN + 1, INT64_MAX), 18446744073.7, 0.1);
}

TEST(MonitorColumns, HighlightsChangesForAMoment) {
  const struct {
    std::int64_t changed_at, now;
    Role role;
  } cases[] = {
      {0, 0, Role::kFresh},           {0, 399 * kMs, Role::kFresh},  {0, 400 * kMs, Role::kFading},
      {0, 1199 * kMs, Role::kFading}, {0, 1200 * kMs, Role::kFaint}, {500 * kMs, 0, Role::kFresh},
      {kZelkNoTime, 0, Role::kFaint}, {0, INT64_MAX, Role::kFaint},
  };
  for (const auto& c : cases)
    EXPECT_EQ(role_of_change(c.changed_at, c.now, Role::kFaint), c.role) << c.now;
}

/// The places of columns as "begin-end", "~" in front where bytes have no blanks.
std::string places_of(const TablePlan& plan) {
  std::string text = plan.is_compact() ? "~" : "";
  for (const TablePlan::Place& place : plan.places())
    text += std::string(heading_of(place.column, kAscii)) + " " + std::to_string(place.begin) +
            "-" + std::to_string(place.begin + place.width) + " ";
  return text;
}

TEST(MonitorColumns, LeavesOutWhatMattersLess) {
  CellWidths widths;
  widths.name = 12;
  CellWidths wide{.channel = 20, .id = 8, .name = 60, .data_bytes = 64, .count = 123'456'789};
  const struct {
    const CellWidths& widths;
    std::size_t columns;
    const char* places;
  } cases[] = {
      {widths, 80,
       "id 2-5 name 6-18 data 19-42 cycle 43-50 +-ms 51-57 nominal 58-65 count 66-71 age 72-77 "},
      {widths, 77,
       "id 2-5 name 6-18 data 19-42 cycle 43-50 +-ms 51-57 nominal 58-65 count 66-71 age 72-77 "},
      {widths, 76,
       "~id 2-5 name 6-18 data 19-35 cycle 36-43 +-ms 44-50 nominal 51-58 count 59-64 age 65-70 "},
      {widths, 69, "~id 2-5 name 6-18 data 19-35 cycle 36-43 +-ms 44-50 count 51-56 age 57-62 "},
      {widths, 40, "~id 2-5 name 6-18 data 19-35 "},
      {widths, 20, "~id 2-5 name 6-18 "},
      {widths, 10, "~id 2-5 name 6-10 "},
      {widths, 1, "~id 2-5 "},
      {wide, 80, "~channel 2-10 id 11-19 name 20-39 data 40-56 cycle 57-64 count 65-74 age 75-80 "},
      {wide, 240,
       "channel 2-10 id 11-19 name 20-60 data 61-201 cycle 202-209 +-ms 210-216 nominal 217-224 "
       "count 225-234 age 235-240 "},
  };
  for (const auto& c : cases)
    EXPECT_EQ(places_of(TablePlan(c.widths, c.columns)), c.places) << c.columns;
}

struct Sample {
  std::int64_t time;
  double value;
};

/// The middle of a curve from 0 s to 30 s: lines with a bar in front of each.
std::string drawn(const std::vector<Sample>& samples, const CharacterSet& characters,
                  std::int64_t now = 30'000 * kMs) {
  SignalCurve curve;
  for (const Sample& sample : samples) curve.add(sample.time, sample.value);
  std::string text;
  for (const std::string& line : curve.draw(8, 2, now, characters)) text += '|' + line;
  return text;
}

TEST(MonitorCurve, DrawsWhateverValuesThereAre) {
  constexpr double kInf = std::numeric_limits<double>::infinity();
  constexpr std::int64_t kSecond = 1000 * kMs;
  const struct {
    const char* name;
    std::vector<Sample> samples;
    const char* utf8;
    const char* ascii;
  } cases[] = {
      {"nothing", {}, "||", "||"},
      {"one value now", {{30 * kSecond, 5}}, "|       ⢀|        ", "|       .|        "},
      {"an old one", {{-3000 * kSecond, 5}}, "|⣀⣀⣀⣀⣀⣀⣀⣀|        ", "|........|        "},
      {"constant",
       {{0, 5}, {9 * kSecond, 5}, {20 * kSecond, 5}},
       "|⣀⣀⣀⣀⣀⣀⣀⣀|        ",
       "|........|        "},
      {"a step", {{0, 0}, {15 * kSecond, 1}}, "|   ⢸⠉⠉⠉⠉|⣀⣀⣀⣸    ", "|   |''''|...|    "},
      {"the greatest step",
       {{0, -DBL_MAX}, {15 * kSecond, DBL_MAX}},
       "|   ⢸⠉⠉⠉⠉|⣀⣀⣀⣸    ",
       "|   |''''|...|    "},
      {"the least step",
       {{0, 0}, {15 * kSecond, DBL_TRUE_MIN}},
       "|⣀⣀⣀⣀⣀⣀⣀⣀|        ",
       "|........|        "},
      {"not finite", {{0, NAN}, {1, kInf}, {2, -kInf}}, "||", "||"},
      {"not finite between",
       {{0, 0}, {15 * kSecond, NAN}, {15 * kSecond, 1}},
       "|   ⢸⠉⠉⠉⠉|⣀⣀⣀⣸    ",
       "|   |''''|...|    "},
      {"up and down at once",
       {{0, 0}, {15 * kSecond, 9}, {15 * kSecond, 0}},
       "|   ⢸    |⣀⣀⣀⣸⣀⣀⣀⣀",
       "|   |    |...|...."},
      {"begun anew",
       {{25 * kSecond, 9}, {0, 0}, {15 * kSecond, 1}},
       "|   ⢸⠉⠉⠉⠉|⣀⣀⣀⣸    ",
       "|   |''''|...|    "},
      {"still to come", {{40 * kSecond, 5}}, "|       ⢀|        ", "|       .|        "},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(drawn(c.samples, kUtf8), c.utf8) << c.name;
    EXPECT_EQ(drawn(c.samples, kAscii), c.ascii) << c.name;
  }
}

TEST(MonitorCurve, ShowsTheRangeOfWhatIsInSight) {
  SignalCurve curve;
  for (int i = 0; i < 400; ++i) curve.add(i * 1000 * kMs, i);
  const std::int64_t now = 399'500 * kMs;
  const auto least = [&] { return curve.range(now)->least; };
  EXPECT_EQ(curve.range(now)->greatest, 399);
  EXPECT_EQ(least(), 369);  // the value that holds as the 30 s begin
  curve.zoom(true);
  EXPECT_EQ(least(), 339);
  for (int i = 0; i < 9; ++i) curve.zoom(true);
  EXPECT_EQ(curve.seconds(), 300);
  EXPECT_EQ(least(), 99);
  for (int i = 0; i < 9; ++i) curve.zoom(false);
  EXPECT_EQ(curve.seconds(), 1);
  EXPECT_EQ(least(), 398);
}

// Memory does not grow with the frames, and yet each of their peaks is seen.
TEST(MonitorCurve, KeepsThePeaksOfManyValues) {
  ValueTrack track;
  for (int i = 0; i < 1'000'000; ++i)  // 100 s
    track.add(i * kMs / 10, i == 300'001 ? 7.0 : (i == 300'002 ? -7.0 : i % 2));
  EXPECT_EQ(track.stretches().size(), 20'000u);
  track.add(500'000 * kMs, 0);
  EXPECT_EQ(track.stretches().size(), 2u);
  SignalCurve curve;
  for (int i = 0; i < 20'000; ++i)
    curve.add({i * kMs, i == 17'777 ? -3.0 : 0, i == 9 ? 5.0 : 1, 1});
  EXPECT_EQ(curve.range(20'000 * kMs)->least, -3);
  EXPECT_EQ(curve.range(20'000 * kMs)->greatest, 5);
}

/// Details of a row in a table of some width.
std::string details_of(const RowState& row, std::size_t columns, const CharacterSet& characters) {
  CellWidths widths;
  widths.take(row, characters);
  const TablePlan plan(widths, columns);
  const RowDetails details(row, plan, columns);
  std::vector<ScreenLine> lines(details.line_count());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    LineWriter out(lines[i], columns, characters);
    details.write(i, 0, characters, out);
    EXPECT_LE(out.column(), columns);
  }
  return text_of(lines);
}

TEST(MonitorDetails, TellEverythingOfARow) {
  RowState row{.id = 0x100, .channel = "can0", .name = "Fd"};
  row.nominal_ms = 20;
  EXPECT_EQ(details_of(row, 80, kUtf8), "    never received, expected every 20.00 ms\n");
  row.count = 1;
  row.flags = kZelkFrameFd | kZelkFrameBrs | kZelkFrameEsi | kZelkFrameSent;
  for (int i = 0; i < 12; ++i) row.data.push_back(static_cast<unsigned char>(i));
  row.signals = {{.name = "Speed", .unit = "km/h", .spelled = "12.5", .is_present = true},
                 {.name = "Gear", .spelled = "2", .text = "Second\x1b", .is_present = true},
                 {.name = "Further", .unit = "m"},
                 {.name = "水水水水水水水水",
                  .unit = "\u202E",
                  .spelled = "18446744073709551615",
                  .is_present = true}};
  EXPECT_EQ(details_of(row, 80, kUtf8),
            "    12 bytes FD BRS ESI sent, 1 frame, nominal 20.00 ms, on can0\n"
            "    00 01 02 03 04 05 06 07 08 09 0A 0B\n"
            "    Speed                              12.5 km/h\n"
            "    Gear                                  2 \"Second\\x1B\"\n"
            "    Further                               -\n"
            "    水水水水水水水水         18446744073709551615 \\u202E\n");
  row.cycle_ms = 19.5;
  row.data.resize(1);
  row.signals.resize(2);
  EXPECT_EQ(details_of(row, 40, kAscii),
            "    1 byte FD BRS ESI sent, 1 frame, ev~\n"
            "    Speed              12.5 km/h\n    Gear                  2 \"Second\\x1B\"\n");
  row.data.resize(9, 0xFF);
  EXPECT_EQ(details_of(row, 20, kAscii),
            "    9 bytes FD BRS ~\n    00 FF FF FF\n    FF FF FF FF\n    FF\n"
            "    Speed       12.5\n    Gear           2\n");
}

}  // namespace

#include "zelk/logs/times.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "zelk/logs/frame.hpp"

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

TEST(Times, AreReadFromSecondsAndDates) {
  constexpr std::optional<std::int64_t> kNone;
  const struct {
    const char* text;
    std::optional<std::int64_t> time;
  } cases[] = {
      {"-12.5", -12 * kSecond - kSecond / 2},
      {"9223372035.9999999999", 9223372035999999999},
      {"9223372036", kNone},
      {"12345678901", kNone},
      {"1.", kNone},
      {"1.5x", kNone},
      {"", kNone},
      {"2016-07-09T10:20:30Z", 1468059630 * kSecond},
      {"2016-07-09 10:20:30+0230", (1468059630 - 9000) * kSecond},
      {"2016-07-09 10:20:30.25-02:30", (1468059630 + 9000) * kSecond + kSecond / 4},
      {"2016-12-31 23:59:60", 1483228800 * kSecond},
      {"1678-01-01 00:00:00+23:59", -9214646340 * kSecond},
      {"2261-12-31 23:59:60-23:59", 9214732740 * kSecond},
      {"1677-12-31 23:59:59", kNone},
      {"2262-01-01 00:00:00", kNone},
      {"2016-13-01 00:00:00", kNone},
      {"2015-02-29 00:00:00", kNone},
      {"2016-02-29 24:00:00", kNone},
      {"2016-02-29 00:60:00", kNone},
      {"2016-02-29 00:00:61", kNone},
      {"2016-02-29 00:0", kNone},
      {"2016-02-29 00-00:00", kNone},
      {"2016-02-29 00:00:0x", kNone},
      {"2016-02-29 00:00:00.", kNone},
      {"2016-02-29 00:00:00 ", kNone},
      {"2016-02-29 00:00:00Zx", kNone},
      {"2016-02-29 00:00:00+24:00", kNone},
      {"2016-02-29 00:00:00+23:60", kNone},
      {"2016-02-29 00:00:00+2", kNone},
      {"2016-02-29 00:00:00+02", kNone},
      {"2016-02-29_00:00:00", kNone},
      {"2016-02-29", kNone},
      {"2016-02/29 00:00:00", kNone},
      {"2016-2-29 00:00:00", kNone},
      {"2016/02-29 00:00:00", kNone},
      {"2016-02-2x 00:00:00", kNone},
  };
  for (const auto& each : cases) EXPECT_EQ(ZelkParseTime(each.text), each.time) << each.text;
}

TEST(Times, AreWrittenInSeconds) {
  const struct {
    std::int64_t time;
    const char* text;
  } cases[] = {
      {0, "0.000000"},
      {-1, "-0.000000001"},
      {-1'500'000'000, "-1.500000"},
      {INT64_MAX, "9223372036.854775807"},
      {-INT64_MAX, "-9223372036.854775807"},
      {kZelkNoTime, ""},
  };
  for (const auto& each : cases) {
    std::string text;
    ZelkAppendTime(each.time, text);
    EXPECT_EQ(text, each.text);
  }
}

}  // namespace

// Numbers of signals as tables and logs spell them, and what a scale makes of raw values.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "base/database_names.hpp"
#include "base/decimal.hpp"
#include "base/signal_spelling.hpp"

namespace zelk {
namespace {

template <typename Put>
std::string put(Put into) {
  char buffer[kNumberBytes];
  return {buffer, into(buffer)};
}

// The shortest digits that mean the number, without an exponent from 1e-4 up to 1e16.
TEST(Spelling, OfDoubles) {
  const struct {
    double number;
    const char* text;
  } cases[] = {
      {0, "0"},
      {-0.0, "-0"},
      {0.0001, "0.0001"},
      {0.00001, "1e-05"},
      {4503599627370495.5, "4503599627370495.5"},
      {5e15, "5000000000000000"},
      {-5e15, "-5000000000000000"},
      {9007199254740993.0, "9007199254740992"},
      {-6250000000000001.0, "-6250000000000001"},
      {1e16, "1e+16"},
      {-INFINITY, "-inf"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(put([&](char* at) { return put_double(at, c.number); }), c.text);
}

TEST(Spelling, OfScaledValues) {
  const struct {
    double factor, offset;
    std::int64_t raw;
    bool is_signed;
    const char* text;
  } cases[] = {
      {0.1, 0, 3, true, "0.3"},
      {0.1, -40, 3, true, "-39.7"},
      {-0.25, 0, 10, true, "-2.5"},
      {1, 0, -1, true, "-1"},
      {1, 0, -1, false, "1.8446744073709552e+19"},  // from here on as the double
      {0.1, 0, std::numeric_limits<std::int64_t>::max(), true, "9.223372036854776e+17"},
      {0.1, 0, std::numeric_limits<std::int64_t>::min(), true, "-9.223372036854776e+17"},
      {1.0 / 3, 0, 3, true, "1"},
      {1e-30, 0, 3, true, "3.0000000000000003e-30"},
      {1e25, 0, 3, true, "3.0000000000000005e+25"},
      {1e15, 0.001, 3, true, "3000000000000000"},
      {std::nan(""), 0, 3, true, "nan"},
      {1, INFINITY, 3, true, "inf"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(
        put([&](char* at) { return DecimalScale(c.factor, c.offset).put(at, c.raw, c.is_signed); }),
        c.text)
        << c.factor << " " << c.raw;
  }
}

TEST(Spelling, OfIeeeNumbers) {
  const auto half = std::bit_cast<std::int32_t>(0.1F);
  const auto none = std::bit_cast<std::int64_t>(std::nan(""));
  const struct {
    int type;
    double factor;
    std::int64_t raw;
    NonFinite non_finite;
    const char *physical, *raw_text;
  } cases[] = {
      {ZELK_VALUE_IEEE_SINGLE, 1, half, NonFinite::kAsText, "0.1", "0.1"},
      {ZELK_VALUE_IEEE_SINGLE, 2, half, NonFinite::kAsText, "0.20000000298023224", "0.1"},
      {ZELK_VALUE_IEEE_DOUBLE, 1, none, NonFinite::kAsText, "nan", "nan"},
      {ZELK_VALUE_IEEE_DOUBLE, 2, none, NonFinite::kAsNull, "null", "null"},
  };
  for (const auto& c : cases) {
    sigblk signal = {};
    signal.value_type = c.type;
    signal.factor = c.factor;
    const SignalNumbers numbers(signal);
    EXPECT_EQ(put([&](char* at) { return numbers.put(at, c.raw, c.non_finite); }), c.physical);
    EXPECT_EQ(put([&](char* at) { return numbers.put_raw(at, c.raw, c.non_finite); }), c.raw_text);
  }
}

TEST(Spelling, OfDescriptions) {
  val off = {}, top = {};
  off.text = const_cast<char*>("off"), top.text = const_cast<char*>("top");
  top.value = 0xFFFFFFFF, off.next = &top;
  sigblk signal = {};
  signal.values = &off;
  const auto texts =
      spelled_descriptions(signal, [](std::string_view text) { return std::string(text); });
  EXPECT_EQ(texts.find(0), "off");
  EXPECT_EQ(texts.find(0xFFFFFFFF), "top");
  EXPECT_EQ(texts.find(-1), "top") << "of 32 bits";
  EXPECT_EQ(texts.find(1), "");
  EXPECT_EQ(texts.find(0x100000000), "") << "no description has so large a value";
  EXPECT_EQ(texts.find(-0x80000001LL), "");
}

TEST(DatabaseNames, AreMadeOfPaths) {
  const struct {
    const char *path, *name;
  } cases[] = {
      {"dir.d/car.dbc", "car"},
      {"C:\\a\\b_2.x.dbc", "b_2x"},
      {"1st car-A.dbc", "stcarA"},
      {"123.dbc", "database"},
      {"", "database"},
  };
  for (const auto& c : cases) EXPECT_EQ(database_name(c.path), c.name) << c.path;
  const std::string longest(32, 'n');
  EXPECT_EQ(database_name(longest + "n.dbc"), longest);
  EXPECT_EQ(numbered_name(longest, 12), std::string(29, 'n') + "_12");
}

}  // namespace
}  // namespace zelk

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "codec/frames.hpp"
#include "manager/manager_test.hpp"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

sigblk scaled(unsigned flags, double factor, double offset) {
  return ::scaled(make_signal(0, 8, flags), factor, offset);
}

TEST(Conversion, OfRawValues) {
  const Manager manager;
  const struct {
    unsigned flags;
    unsigned long raw;
    long long raw_64;
    double factor, offset, physical, physical_64;
  } cases[] = {
      {0, 0xFFFFFFFF, -1, 1.0, 0.0, 4294967295.0, 0x1p64},
      {kSigned, 0xFFFFFFFF, -1, 1.0, 0.0, -1.0, -1.0},
      {kSigned, 0x80000000, std::numeric_limits<long long>::min(), 0.5, 1.0, -0x1p30 + 1, -0x1p62},
      // The product is rounded before it is added to: fused, this would be 0x1p-55.
      {0, 3, 3, 0.1, -0.3, 0x1p-54, 0x1p-54},
      {0, 200, 200, 0.0, -7.5, -7.5, -7.5},
      // Only 32 bits of an `unsigned long` count, where it has more.
      {0, static_cast<unsigned long>(0x700000005), 0x700000005, 1.0, 0.0, 5.0, 30064771077.0},
  };
  for (const auto& c : cases) {
    const sigblk signal = scaled(c.flags, c.factor, c.offset);
    double physical = kNan;
    EXPECT_EQ(manager.RawToPhysicalValue(c.raw, signal, physical), 0);
    EXPECT_EQ(physical, c.physical) << c.raw;
    EXPECT_EQ(manager.RawToPhysicalValueInt64(c.raw_64, signal, physical), 0);
    EXPECT_EQ(physical, c.physical_64) << c.raw_64;
  }
}

TEST(Conversion, OfPhysicalValues) {
  const Manager manager;
  constexpr long long kMost = std::numeric_limits<long long>::max();
  constexpr long long kLeast = std::numeric_limits<long long>::min();
  const struct {
    double physical, factor, offset;
    unsigned long raw_unsigned, raw_signed;
    long long raw_64_unsigned, raw_64_signed;
  } cases[] = {
      {-2.5, 1.0, 0.0, 0xFFFFFFFD, 0xFFFFFFFD, 0, -3},
      // Half is added in double arithmetic, which makes whole ones of these two.
      {0.49999999999999994, 1.0, 0.0, 1, 1, 1, 1},
      {-0.49999999999999994, 1.0, 0.0, 0xFFFFFFFF, 0xFFFFFFFF, 0, -1},
      {0x1p52 + 1, 1.0, 0.0, 2, 0x7FFFFFFF, 0x10000000000002, 0x10000000000002},
      {-2147483648.5, 1.0, 0.0, 0x7FFFFFFF, 0x80000000, 0, -2147483649},
      {0x1p63, 1.0, 0.0, 0xFFFFFFFF, 0x7FFFFFFF, kLeast, kMost},
      {-0x1p63, 1.0, 0.0, 0, 0x80000000, 0, kLeast},
      {kInfinity, 1.0, 0.0, 0xFFFFFFFF, 0x7FFFFFFF, -1, kMost},
      {kNan, 1.0, 0.0, 0, 0, 0, 0},
      {2.0, 0.0, 2.0, 0, 0, 0, 0},
  };
  for (const auto& c : cases) {
    const auto expect = [&](unsigned flags, unsigned long expected, long long expected_64) {
      const sigblk signal = scaled(flags, c.factor, c.offset);
      unsigned long raw = 77;
      long long raw_64 = 77;
      EXPECT_EQ(manager.PhysicalToRawValue(c.physical, signal, raw), 0);
      EXPECT_EQ(raw, expected) << c.physical;
      EXPECT_EQ(manager.PhysicalToRawValueInt64(c.physical, signal, raw_64), 0);
      EXPECT_EQ(raw_64, expected_64) << c.physical;
    };
    expect(0, c.raw_unsigned, c.raw_64_unsigned);
    expect(kSigned, c.raw_signed, c.raw_64_signed);
  }
  double raw = 0.0;
  EXPECT_EQ(manager.PhysicalToRawValue(2.6, scaled(0, 0.5, 0.1), raw), 0);
  EXPECT_EQ(raw, 5.0) << "not rounded";
}

TEST(Conversion, TestsTheRangeOfThePhysicalValue) {
  const Manager manager;
  const struct {
    double minimum, maximum, physical;
    int result;
  } cases[] = {{0.0, 0.0, 1e8, 0},   {-0.0, 0.0, -1e8, 0},  {0.0, 10.0, 10.5, 4},
               {0.0, 10.0, 10.0, 0}, {0.0, 10.0, -0.25, 4}, {5.0, 0.0, 3.0, 4},
               {-5.0, 0.0, 1.0, 4},  {0.0, 1.0, kNan, 0},   {0.0, 1.0, kInfinity, 4}};
  for (const auto& c : cases) {
    sigblk signal = ::scaled(make_signal(0, 8, kSigned), 0.25, 0.0, c.maximum);
    signal.minimum = c.minimum;
    const auto expect = [&](auto raw, auto to_raw, auto to_physical) {
      double physical = 77.0;
      EXPECT_EQ(to_raw(c.physical, signal, raw), c.result) << c.physical;
      if (!std::isfinite(c.physical)) return;
      EXPECT_EQ(to_physical(raw, signal, physical), c.result) << c.physical;
      EXPECT_EQ(physical, c.physical);
    };
    const auto to_raw = [&](auto&... a) { return manager.PhysicalToRawValue(a...); };
    const auto to_physical = [&](auto&... a) { return manager.RawToPhysicalValue(a...); };
    expect(77UL, to_raw, to_physical);
    expect(77.0, to_raw, to_physical);
    expect(
        77LL, [&](auto&... a) { return manager.PhysicalToRawValueInt64(a...); },
        [&](auto&... a) { return manager.RawToPhysicalValueInt64(a...); });
  }
}

}  // namespace

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <utility>

#include "access/frames.hpp"

namespace {

const msgblk kMessage = {};

TEST(AccessMask, TellsWhereTheBitsAre) {
  using Mask = std::array<std::uint32_t, 8>;
  const struct {
    unsigned start_bit, length, flags;
    Mask mask;
  } cases[] = {
      // Mask, offset, order, length, bytes touched, byte of the least significant bit, span, bytes
      // needed.
      {63, 1, 0, {1, 7, 0, 1, 1, 7, 8, 8}},
      {0, 1, kMotorola, {1, 0, 1, 1, 1, 0, 1, 1}},
      {7, 16, kMotorola | kSigned, {0xFFFF, 0, 1, 16, 2, 1, 16, 2}},
      {4, 12, kMultiplexor, {0xFFF, 4, 0, 12, 2, 0, 16, 2}},
      {1, 11, kMotorola, {0x7FF, 7, 1, 11, 3, 2, 18, 3}},
      {8, 31, 0, {0x7FFFFFFF, 0, 0, 31, 4, 1, 31, 5}},
      {7, 32, 0, {0xFFFFFFFF, 7, 0, 32, 5, 0, 39, 5}},
      {39, 33, kMotorola, {1, 7, 1, 33, 5, 8, 40, 9}},
      {2, 63, 0, {0x7FFFFFFF, 2, 0, 63, 9, 0, 65, 9}},
      {7, 64, kMotorola, {0xFFFFFFFF, 0, 1, 64, 8, 7, 64, 8}},
      {1, 65, 0, {1, 1, 0, 65, 9, 0, 66, 9}},
      {7, 89, 0, {0x1FFFFFF, 7, 0, 89, 12, 0, 96, 12}},
      {0, 90, 0, {0xABABABAB, 0, 0, 90, 12, 0, 90, 12}},
      {511, 65535, 0, {0xABABABAB, 7, 0, 65535, 8193, 63, 65542, 8256}},
      {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}},
      {12, 0, 0, {0, 4, 0, 0, 1, 1, 4, 2}},
      {15, 0, kMotorola, {0, 0, 1, 0, 0, 0, 0, 1}},
      // Positions go up to 65535, and those of Motorola signals from there to 0.
      {65535, 9, 0, {0x1FF, 7, 0, 9, 2, 8191, 16, 8193}},
      {65535, 8, kMotorola, {0xFF, 0, 1, 8, 1, 8191, 8, 8192}},
      {65535, 9, kMotorola, {0x1FF, 7, 1, 9, 2, 0, 16, 1}},
  };
  for (const auto& c : cases) {
    zelk_sig_mask_t mask;
    std::memset(&mask, 0xAB, sizeof mask);
    Manager().GetSignalAccessMask(make_signal(c.start_bit, c.length, c.flags), mask);
    Mask numbers;
    std::memcpy(&numbers, &mask, sizeof mask);
    EXPECT_EQ(numbers, c.mask) << c.start_bit << ", " << c.length;
  }
}

using Reading = std::pair<int, std::uint64_t>;  ///< result and raw value
/// By the forms for 32 bits, 64 bits and all bits, then by the same with an access record.
using Readings = std::array<Reading, 6>;

constexpr std::uint64_t kUntouched = 0xA5A5A5A5A5A5A5A5;
/// As much of it as an `unsigned long` holds.
constexpr Reading kRefused32 = {3, static_cast<unsigned long>(kUntouched)};
constexpr Reading kRefused = {3, kUntouched};

Readings read_all(const Frame& frame, const sigblk& signal, const sigblk& record) {
  const Manager manager;
  zelk_sig_mask_t mask = {};
  manager.GetSignalAccessMask(record, mask);
  const unsigned char& data = *frame.data();
  const auto reading = [](auto raw, auto read) {
    const int result = read(raw);
    return Reading(result, static_cast<std::uint64_t>(raw));
  };
  const auto low = static_cast<unsigned long>(kUntouched);
  const auto number = static_cast<long long>(kUntouched);
  const msgblk& m = kMessage;
  return {
      reading(low, [&](auto& r) { return manager.GetSignalRawValue(data, signal, m, r); }),
      reading(number, [&](auto& r) { return manager.GetSignalRawValueInt64(data, signal, m, r); }),
      reading(kUntouched,
              [&](auto& r) { return manager.GetSignalRawValueUint64(data, signal, m, r); }),
      reading(low, [&](auto& r) { return manager.GetSignalRawValue(data, mask, signal, m, r); }),
      reading(number,
              [&](auto& r) { return manager.GetSignalRawValueInt64(data, mask, signal, m, r); }),
      reading(kUntouched,
              [&](auto& r) { return manager.GetSignalRawValueUint64(data, mask, signal, m, r); })};
}

Readings all(std::uint64_t number) {
  return {{{0, number}, {0, number}, {0, number}, {0, number}, {0, number}, {0, number}}};
}

TEST(RawValues, AreReadByHand) {
  const Frame ones(9, 0xFF);
  const Frame forty = {0x21, 0x43, 0x65, 0x87, 0xF9};
  const struct {
    sigblk signal;
    Frame frame;
    Readings readings;
    unsigned record_length = 0xFFFF;  ///< that of the signal
  } cases[] = {
      {make_signal(63, 1), {0, 0, 0, 0, 0, 0, 0, 0x80}, all(1)},
      {make_signal(0, 1, kMotorola), {1}, all(1)},
      {make_signal(7, 16, kMotorola), {0x12, 0x34}, all(0x1234)},
      {make_signal(0, 16), {0x12, 0x34}, all(0x3412)},
      // Signed: 32 bits zero-extended, 64 bits sign-extended.
      {make_signal(0, 8, kSigned),
       {0xFF},
       {{{0, 0xFFFFFFFF}, {0, ~0ULL}, {0, ~0ULL}, {0, 0xFFFFFFFF}, {0, ~0ULL}, {0, ~0ULL}}}},
      {make_signal(5, 0, kSigned), {0xFF}, all(0)},
      // Over 32 bits: the record's mask keeps the low length - 32 only.
      {make_signal(0, 40),
       forty,
       {{{0, 0x87654321},
         {0, 0xF987654321},
         {0, 0xF987654321},
         {0, 0x21},
         {0, 0x21},
         {0, 0xF987654321}}}},
      {make_signal(0, 40, kSigned),
       forty,
       {{{3, 0x87654321},
         {0, 0xFFFFFFF987654321},
         {0, 0xFFFFFFF987654321},
         {3, 0x21},
         {0, 0x21},
         {0, 0xFFFFFFF987654321}}}},
      // The ninth byte counts for all bits alone.
      {make_signal(4, 64, kSigned),
       ones,
       {{{3, 0xFFFFFFFF},
         {0, 0x0FFFFFFFFFFFFFFF},
         {0, ~0ULL},
         {3, 0xFFFFFFFF},
         {0, 0xFFFFFFFF},
         {0, ~0ULL}}}},
      {make_signal(0, 70),
       ones,
       {{kRefused32, kRefused, kRefused, kRefused32, kRefused, kRefused}}},
      // By the record of a longer signal: 2^n is subtracted, with n of the signal.
      {make_signal(0, 9, kSigned),
       {0x0B, 0x44},
       {{{0, 0x0B}, {0, 0x0B}, {0, 0x0B}, {0, 0x420B}, {0, 0x420B}, {0, 0x420B}}},
       15},
      {make_signal(0, 0, kSigned),
       {0x0B, 0x44},
       {{{0, 0}, {0, 0}, {0, 0}, {0, 0x440A}, {0, 0x440A}, {0, 0x440A}}},
       15},
      {make_signal(0, 31, kSigned),
       {0, 0, 0, 0xC0},
       {{{0, 0xC0000000},
         {0, 0xFFFFFFFFC0000000},
         {0, 0xFFFFFFFFC0000000},
         {0, 0x40000000},
         {0, 0x40000000},
         {0, 0x40000000}}},
       32},
      {make_signal(0, 9, kSigned),
       ones,
       {{{0, 0xFFFFFFFF}, {0, ~0ULL}, {0, ~0ULL}, kRefused32, {0, 1}, kRefused}},
       65},
  };
  for (const auto& c : cases) {
    sigblk record = c.signal;
    if (c.record_length != 0xFFFF) record.length = static_cast<std::uint16_t>(c.record_length);
    EXPECT_EQ(read_all(c.frame, c.signal, record), c.readings)
        << c.signal.length << ", " << record.length;
  }
}

/// Of a number of `kept` bits the low 32; a signed signal wants at most 32.
Reading expected_32(std::uint64_t number, const sigblk& signal, unsigned kept) {
  const std::uint64_t low = low_bits(number, std::min(kept, 32U));
  if ((signal.flags & kSigned) == 0) return {0, low};
  if (signal.length > 32) return {3, low};
  return {0, low_bits(sign_extended(low, signal.length), 32)};
}

TEST(RawValues, AreThoseOfTheBits) {
  Random random;
  for (int i = 0; i < 20000; ++i) {
    const unsigned length = random.between(1, 64);
    const sigblk signal = random.signal(length, 12);
    const auto bits = bits_of(signal);
    const Frame frame = random.frame(bytes_for(bits));
    const std::uint64_t number = number_in(frame, bits);
    const std::uint64_t in_eight_bytes =
        low_bits(number, static_cast<unsigned>(64 - bits.front() % 8));
    const unsigned kept = length <= 32 ? length : length < 64 ? length - 32 : 32;
    const bool is_signed = (signal.flags & kSigned) != 0;
    const auto extended = [&](std::uint64_t n) { return is_signed ? sign_extended(n, length) : n; };
    const Readings expected = {expected_32(number, signal, 32),
                               Reading(0, extended(in_eight_bytes)),
                               Reading(0, extended(number)),
                               expected_32(number, signal, kept),
                               Reading(0, extended(low_bits(number, kept))),
                               Reading(0, extended(number))};
    ASSERT_EQ(read_all(frame, signal, signal), expected)
        << signal.start_bit << ", " << length << ", " << signal.flags;
  }
}

TEST(RawValues, ReachNoByteBelowTheFirst) {
  const Frame one_byte = {0x80};
  const sigblk across = make_signal(65535, 9, kMotorola);
  EXPECT_EQ(read_all(one_byte, across, across), all(1));
}

/// The bits of the double, by the signal or with its access record.
Reading read_ieee(const Frame& frame, const sigblk& signal, bool with_record) {
  const Manager manager;
  zelk_sig_mask_t mask = {};
  manager.GetSignalAccessMask(signal, mask);
  double raw = 0.0;
  std::memcpy(&raw, &kUntouched, sizeof raw);
  const int result = with_record
                         ? manager.GetSignalRawValue(*frame.data(), mask, signal, kMessage, raw)
                         : manager.GetSignalRawValue(*frame.data(), signal, kMessage, raw);
  std::uint64_t bits = 0;
  std::memcpy(&bits, &raw, sizeof raw);
  return {result, bits};
}

TEST(RawValues, AreIeeeNumbers) {
  Random random;
  for (int i = 0; i < 5000; ++i) {
    const std::uint32_t value_type = random.between(1, 2);
    sigblk signal = random.signal(value_type * 32, 12);
    signal.value_type = value_type;
    const auto bits = bits_of(signal);
    const Frame frame = random.frame(bytes_for(bits));
    std::uint64_t expected = number_in(frame, bits);
    if (value_type == 1) {
      float single = 0;
      std::memcpy(&single, &expected, sizeof single);
      if (single != single) continue;  // The bits of a widened not-a-number are the processor's.
      const double widened = single;
      std::memcpy(&expected, &widened, sizeof widened);
    }
    ASSERT_EQ(read_ieee(frame, signal, true), Reading(0, expected)) << signal.start_bit;
    signal.length = static_cast<std::uint16_t>(random.between(0, 100));  // It does not matter.
    ASSERT_EQ(read_ieee(frame, signal, false), Reading(0, expected)) << signal.start_bit;
  }
}

TEST(RawValues, OfIeeeSignalsWantTypeAndRecord) {
  const Frame frame = {0, 0, 0x20, 0x41, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  const std::uint64_t ten = 0x4024000000000000;
  const struct {
    std::uint32_t value_type;
    unsigned length;
    Reading reading, by_record;
  } cases[] = {
      {0, 32, {2, kUntouched}, {2, kUntouched}}, {3, 20, {2, kUntouched}, {2, kUntouched}},
      {1, 31, {0, ten}, {3, kUntouched}},        {1, 33, {0, ten}, {3, kUntouched}},
      {2, 63, {0, 0x41200000}, {3, kUntouched}}, {2, 90, {0, 0x41200000}, {3, kUntouched}}};
  for (const auto& c : cases) {
    sigblk signal = make_signal(0, c.length, kSigned);
    signal.value_type = c.value_type;
    EXPECT_EQ(read_ieee(frame, signal, false), c.reading) << c.value_type << ", " << c.length;
    EXPECT_EQ(read_ieee(frame, signal, true), c.by_record) << c.value_type << ", " << c.length;
  }
}

TEST(CombinedReads, ConvertWhatWasRead) {
  const Manager manager;
  const Frame frame = {0xFE, 0xFF, 0x20, 0x41, 0, 0, 0, 0, 0};
  unsigned long raw = 77;
  long long raw_64 = 77;
  double raw_ieee = 77.0, physical = 0.0;
  sigblk signal = make_signal(0, 16, kSigned);
  signal.factor = 0.5;
  signal.offset = 10.0;
  EXPECT_EQ(manager.GetSignalValue(frame[0], signal, kMessage, raw, physical), 0);
  EXPECT_EQ(std::pair(raw, physical), std::pair(0xFFFFFFFEUL, 9.0));
  signal.maximum = 8.0;
  EXPECT_EQ(manager.GetSignalValueInt64(frame[0], signal, kMessage, raw_64, physical), 4);
  EXPECT_EQ(std::pair(raw_64, physical), std::pair(-2LL, 9.0));
  EXPECT_EQ(manager.GetSignalValue(frame[0], signal, kMessage, raw_ieee, physical), 2);
  EXPECT_EQ(physical, 48.5);  // of the 77 that stands there
  signal.length = 65;
  EXPECT_EQ(manager.GetSignalValueInt64(frame[0], signal, kMessage, raw_64, physical), 3);
  EXPECT_EQ(std::pair(raw_64, physical), std::pair(-2LL, 9.0));
  // Out of range and not present.
  signal.length = 8;
  muxor_val_range range = {1, 1, nullptr};
  signal.mux_ranges = &range;
  zelk_sig_mask_t mask = {};
  manager.GetSignalAccessMask(signal, mask);
  physical = 0.0;
  EXPECT_EQ(manager.GetSignalPhysicalValue(frame[0], signal, kMessage, physical), 5);
  EXPECT_EQ(physical, 9.0);
  EXPECT_EQ(manager.GetSignalValue(frame[0], mask, signal, kMessage, raw, physical), 5);
  EXPECT_EQ(std::pair(raw, physical), std::pair(0xFFFFFFFEUL, 9.0));
  EXPECT_EQ(manager.GetSignalValueInt64(frame[0], mask, signal, kMessage, raw_64, physical), 5);
  EXPECT_EQ(std::pair(raw_64, physical), std::pair(-2LL, 9.0));
  signal = make_signal(0, 1);
  signal.value_type = 1;
  signal.factor = 0.5;
  EXPECT_EQ(manager.GetSignalPhysicalValue(frame[0], signal, kMessage, physical), 0);
  EXPECT_EQ(physical, 0x1.41FFFCp+2);  // half of the single 0x4120FFFE
}

}  // namespace

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstring>
#include <sstream>
#include <utility>

#include "codec/frames.hpp"
#include "manager/manager_test.hpp"

namespace {

const msgblk kMessage = {};

zelk_sig_mask_t mask_of(const sigblk& signal) {
  zelk_sig_mask_t mask;
  std::memset(&mask, 0xAB, sizeof mask);
  Manager().GetSignalAccessMask(signal, mask);
  return mask;
}

TEST(AccessMask, TellsWhereTheBitsAre) {
  using Mask = std::array<std::uint32_t, 8>;
  const struct {
    unsigned start_bit, length, flags;
    Mask mask;
  } cases[] = {
      // Mask, offset, order, length, bytes touched, byte of the least significant bit, span, bytes
      // needed.
      {63, 1, 0, {1, 7, 0, 1, 1, 7, 8, 8}},
      {39, 33, kMotorola, {1, 7, 1, 33, 5, 8, 40, 9}},
      {7, 89, 0, {0x1FFFFFF, 7, 0, 89, 12, 0, 96, 12}},
      {0, 90, 0, {0xABABABAB, 0, 0, 90, 12, 0, 90, 12}},
      {511, 65535, 0, {0xABABABAB, 7, 0, 65535, 8193, 63, 65542, 8256}},
      {12, 0, 0, {0, 4, 0, 0, 1, 1, 4, 2}},
      {15, 0, kMotorola, {0, 0, 1, 0, 0, 0, 0, 1}},
      // Positions go up to 65535, and those of Motorola signals from there to 0.
      {65535, 9, kMotorola, {0x1FF, 7, 1, 9, 2, 0, 16, 1}},
  };
  for (const auto& c : cases) {
    const auto mask = mask_of(make_signal(c.start_bit, c.length, c.flags));
    EXPECT_EQ(std::bit_cast<Mask>(mask), c.mask) << c.start_bit << ", " << c.length;
  }
}

/// A result, unless it is 0, and a raw value, "-" where none was written: "3:-", "ff", "5:0".
template <typename Raw>
std::string told(int result, Raw raw) {
  std::ostringstream text;
  if (result != 0) text << result << ":";
  if (raw == static_cast<Raw>(0xA5A5A5A5A5A5A5A5)) return text.str() + "-";
  text << std::hex << static_cast<std::uint64_t>(raw);
  return text.str();
}

/// Three readings: of 32 bits, of 64, and of all bits.
template <typename... Position>
std::string read_by(const Position&... position) {
  const Manager m;
  auto low = static_cast<unsigned long>(0xA5A5A5A5A5A5A5A5);
  auto number = static_cast<long long>(0xA5A5A5A5A5A5A5A5);
  std::uint64_t whole = 0xA5A5A5A5A5A5A5A5;
  const int low_result = m.GetSignalRawValue(position..., kMessage, low);
  const int number_result = m.GetSignalRawValueInt64(position..., kMessage, number);
  const int whole_result = m.GetSignalRawValueUint64(position..., kMessage, whole);
  return told(low_result, low) + " " + told(number_result, number) + " " +
         told(whole_result, whole);
}

/// Without an access record, then with one.
std::string read_all(const Frame& frame, const sigblk& signal, const sigblk& record) {
  const unsigned char& data = *frame.data();
  return read_by(data, signal) + ", " + read_by(data, mask_of(record), signal);
}

TEST(RawValues, AreReadByHand) {
  const Frame ones(9, 0xFF), forty = {0x21, 0x43, 0x65, 0x87, 0xF9}, two = {0x0B, 0x44};
  constexpr int kOwn = -1;
  const struct {
    sigblk signal;
    Frame frame;
    int record_length;
    const char* readings;
  } cases[] = {
      {make_signal(7, 16, kMotorola), {0x12, 0x34}, kOwn, "1234 1234 1234, 1234 1234 1234"},
      // Across the first byte: there is none below it.
      {make_signal(65535, 9, kMotorola), {0x80}, kOwn, "1 1 1, 1 1 1"},
      {make_signal(5, 0, kSigned), {0xFF}, kOwn, "0 0 0, 0 0 0"},
      // Over 32 bits: the record's mask keeps the low length - 32 only.
      {make_signal(0, 40, kSigned), forty, kOwn,
       "3:87654321 fffffff987654321 fffffff987654321, 3:21 21 fffffff987654321"},
      // The ninth byte counts for all bits alone.
      {make_signal(4, 64, kSigned), ones, kOwn,
       "3:ffffffff fffffffffffffff ffffffffffffffff, 3:ffffffff ffffffff ffffffffffffffff"},
      {make_signal(0, 70), ones, kOwn, "3:- 3:- 3:-, 3:- 3:- 3:-"},
      // By the record of a longer signal: 2^n is subtracted, with n of the signal.
      {make_signal(0, 9, kSigned), two, 15, "b b b, 420b 420b 420b"},
      {make_signal(0, 9), two, 15, "b b b, 440b 440b 440b"},
      {make_signal(0, 9), ones, 65, "1ff 1ff 1ff, 3:- 1 3:-"},
  };
  for (const auto& c : cases) {
    sigblk record = c.signal;
    if (c.record_length != kOwn) record.length = static_cast<std::uint16_t>(c.record_length);
    EXPECT_EQ(read_all(c.frame, c.signal, record), c.readings)
        << c.signal.length << ", " << record.length;
  }
}

/// Of a number of `kept` bits the low 32; a signed signal wants at most 32.
std::string expected_32(std::uint64_t number, const sigblk& signal, unsigned kept) {
  const std::uint64_t low = low_bits(number, std::min(kept, 32U));
  if ((signal.flags & kSigned) == 0) return told(0, low);
  if (signal.length > 32) return told(3, low);
  return told(0, low_bits(sign_extended(low, signal.length), 32));
}

TEST(RawValues, AreThoseOfTheBits) {
  Random random;
  for (int i = 0; i < 20000; ++i) {
    const unsigned length = random.between(1, 64);
    const sigblk signal = random.signal(length, 12);
    const auto bits = bits_of(signal);
    const Frame frame = random.frame(bytes_for(bits));
    const std::uint64_t number = number_in(frame, bits);
    const auto in_eight_bytes = low_bits(number, static_cast<unsigned>(64 - bits.front() % 8));
    const unsigned kept = length <= 32 ? length : length < 64 ? length - 32 : 32;
    const bool is_signed = (signal.flags & kSigned) != 0;
    const auto extended = [&](std::uint64_t n) {
      return " " + told(0, is_signed ? sign_extended(n, length) : n);
    };
    ASSERT_EQ(read_all(frame, signal, signal),
              expected_32(number, signal, 32) + extended(in_eight_bytes) + extended(number) + ", " +
                  expected_32(number, signal, kept) + extended(low_bits(number, kept)) +
                  extended(number))
        << signal.start_bit << ", " << length << ", " << signal.flags;
  }
}

/// The double in an IEEE signal, by its bits: by the signal, then with its access record.
std::string read_ieee(const Frame& frame, const sigblk& signal) {
  const Manager m;
  const auto untouched = std::bit_cast<double>(0xA5A5A5A5A5A5A5A5);
  double raw = untouched, by_record = untouched;
  const int result = m.GetSignalRawValue(*frame.data(), signal, kMessage, raw);
  const int record_result =
      m.GetSignalRawValue(*frame.data(), mask_of(signal), signal, kMessage, by_record);
  return told(result, std::bit_cast<std::uint64_t>(raw)) + " " +
         told(record_result, std::bit_cast<std::uint64_t>(by_record));
}

TEST(RawValues, AreIeeeNumbers) {
  Random random;
  for (int i = 0; i < 5000; ++i) {
    const std::uint32_t value_type = random.between(1, 2);
    sigblk signal = random.signal(value_type * 32, 12);
    signal.value_type = value_type;
    const auto bits = bits_of(signal);
    const Frame frame = random.frame(bytes_for(bits));
    std::uint64_t number = number_in(frame, bits);
    if (value_type == 1) {
      const auto single = std::bit_cast<float>(static_cast<std::uint32_t>(number));
      if (single != single) continue;  // The bits of a widened not-a-number are the processor's.
      number = std::bit_cast<std::uint64_t>(double{single});
    }
    ASSERT_EQ(read_ieee(frame, signal), told(0, number) + " " + told(0, number));
  }
  // The length does not matter, but for the record; the type does.
  const Frame ten = {0, 0, 0x20, 0x41, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  const struct {
    std::uint32_t value_type;
    unsigned length;
    const char* readings;
  } cases[] = {{3, 20, "2:- 2:-"}, {1, 33, "4024000000000000 3:-"}, {2, 63, "41200000 3:-"}};
  for (const auto& c : cases) {
    sigblk signal = make_signal(0, c.length, kSigned);
    signal.value_type = c.value_type;
    EXPECT_EQ(read_ieee(ten, signal), c.readings) << c.value_type << ", " << c.length;
  }
}

TEST(CombinedReads, ConvertWhatWasRead) {
  const Manager manager;
  const Frame frame = {0xFE, 0xFF, 0x20, 0x41, 0, 0, 0, 0, 0};
  unsigned long raw = 77;
  long long raw_64 = 77;
  double raw_ieee = 77.0, physical = 0.0;
  sigblk signal = scaled(make_signal(0, 16, kSigned), 0.5, 10.0, 8.0);
  EXPECT_EQ(manager.GetSignalValueInt64(frame[0], signal, kMessage, raw_64, physical), 4);
  EXPECT_EQ(std::pair(raw_64, physical), std::pair(-2LL, 9.0));
  EXPECT_EQ(manager.GetSignalValue(frame[0], signal, kMessage, raw_ieee, physical), 2);
  EXPECT_EQ(physical, 48.5);  // of the 77 that stands there
  // Out of range and not present.
  signal.length = 8;
  muxor_val_range range = {1, 1, nullptr};
  signal.mux_ranges = &range;
  const zelk_sig_mask_t mask = mask_of(signal);
  EXPECT_EQ(manager.GetSignalPhysicalValue(frame[0], signal, kMessage, physical), 5);
  EXPECT_EQ(physical, 9.0);
  EXPECT_EQ(manager.GetSignalValue(frame[0], mask, signal, kMessage, raw, physical), 5);
  EXPECT_EQ(std::pair(raw, physical), std::pair(0xFFFFFFFEUL, 9.0));
  // With a mask that was taken from the signal when it was always there.
  signal.mux_ranges = nullptr;
  const zelk_sig_mask_t plain = mask_of(signal);
  EXPECT_EQ(manager.GetSignalValueInt64(frame[0], plain, signal, kMessage, raw_64, physical), 4);
  EXPECT_EQ(std::pair(raw_64, physical), std::pair(-2LL, 9.0));
  EXPECT_EQ(manager.GetSignalValue(frame[0], plain, signal, kMessage, raw_ieee, physical), 2);
  signal = scaled(make_signal(0, 1), 0.5, 0.0);
  signal.value_type = 1;
  EXPECT_EQ(manager.GetSignalPhysicalValue(frame[0], signal, kMessage, physical), 0);
  EXPECT_EQ(physical, 0x1.41FFFCp+2);  // half of the single 0x4120FFFE
}

}  // namespace

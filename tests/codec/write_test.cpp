#include <gtest/gtest.h>

#include <tuple>

#include "codec/frames.hpp"
#include "manager/manager_test.hpp"

namespace {

const msgblk kMessage = {};

TEST(RawWrites, ChangeTheBitsOfTheSignalAlone) {
  Random random;
  const Manager manager;
  for (int i = 0; i < 20000; ++i) {
    const unsigned length = random.between(0, 89);
    const sigblk signal = random.signal(length, 13);
    const auto bits = bits_of(signal);
    const bool is_signed = (signal.flags & kSigned) != 0;
    const std::uint64_t number = low_bits(random.bits(), length);
    // A number's memory ends where the number does.
    Frame bytes = random.frame((length + 7) / 8);
    if (length % 8 != 0)
      bytes.back() = static_cast<unsigned char>(low_bits(bytes.back(), length % 8));

    const std::size_t size = std::max<std::size_t>(bytes_for(bits), 1);
    const Frame before = random.one_in(3) ? Frame(size, 0xFF) : random.frame(size);
    Frame expected = before, frame = before;
    put_number(expected, bits, number);
    if (length <= 64) {
      const auto raw = static_cast<long long>(number);
      ASSERT_EQ(manager.SetSignalRawValueInt64(*frame.data(), signal, kMessage, raw), 0);
      ASSERT_EQ(frame, expected) << signal.start_bit << ", " << length << ", " << signal.flags;
      frame = before;
      ASSERT_EQ(manager.SetSignalRawValueUint64(*frame.data(), signal, kMessage, number), 0);
      ASSERT_EQ(frame, expected);
    }
    if (length <= 32) {
      frame = before;
      const std::uint64_t pattern = is_signed ? sign_extended(number, length) : number;
      const auto raw = static_cast<unsigned long>(low_bits(pattern, 32));
      ASSERT_EQ(manager.SetSignalRawValue(*frame.data(), signal, kMessage, raw), 0);
      ASSERT_EQ(frame, expected) << signal.start_bit << ", " << length << ", " << signal.flags;
    }
    expected = frame = before;
    for (std::size_t bit = 0; bit < length; ++bit) {
      set_bit(expected, bits[bit], (bytes[bit / 8] >> bit % 8 & 1) != 0);
    }
    const unsigned char* const first = bytes.data();
    const unsigned char* given = first;
    ASSERT_EQ(manager.SetSignalRawValue(*frame.data(), signal, kMessage, given), 0);
    ASSERT_EQ(frame, expected) << signal.start_bit << ", " << length << ", " << signal.flags;
    ASSERT_EQ(given, first);
  }
}

TEST(RawWrites, OfValuesThatDoNotFit) {
  // -1 from bit 4 on, of 32 and of 64 bits.
  const Frame spilt_32 = {0xF0, 255, 255, 255, 0x0F, 0, 0, 0, 0};
  const Frame spilt_64 = {0xF0, 255, 255, 255, 255, 255, 255, 255, 0x0F};
  const Frame folded = {0xF0, 255, 255, 255, 1};
  const Frame low_32 = {0xFC, 255, 255, 255, 3, 0}, masked_40 = {0xFC, 255, 255, 255, 255, 3};
  const struct {
    sigblk signal;
    long long raw;
    int result_32, result_64;
    Frame frame_32, frame_64;
  } cases[] = {
      // Up to four bytes: masked.
      {make_signal(3, 29), -1, 0, 0, {0xF8, 255, 255, 255}, {0xF8, 255, 255, 255}},
      // Up to 32 bits in five bytes: spilt. A negative one of 32 bits is folded into the signal.
      {make_signal(4, 29), -1, 0, 0, {0xF0, 255, 255, 255, 0x0F}, {0xF0, 255, 255, 255, 0x0F}},
      {make_signal(4, 29, kSigned), -1, 0, 0, folded, {0xF0, 255, 255, 255, 0x0F}},
      // 33 to 64 bits in up to eight bytes: masked; 32 bits are zero-extended.
      {make_signal(2, 40), -1, 3, 0, low_32, masked_40},
      // In nine bytes: spilt.
      {make_signal(4, 64), -1, 3, 0, spilt_32, spilt_64},
      // Over 64: zero-extended.
      {make_signal(4, 68, kSigned), -1, 3, 3, spilt_32, spilt_64},
      {make_signal(0, 90), -1, 3, 3, Frame(12), Frame(12)},
      // Across the first byte: none below it is written.
      {make_signal(65535, 9, kMotorola), 1, 0, 0, {0x80}, {0x80}},
  };
  const Manager manager;
  for (const auto& c : cases) {
    Frame frame(c.frame_32.size());
    const auto raw = static_cast<unsigned long>(c.raw);
    EXPECT_EQ(manager.SetSignalRawValue(frame[0], c.signal, kMessage, raw), c.result_32);
    EXPECT_EQ(frame, c.frame_32) << c.signal.start_bit << ", " << c.signal.length;
    frame.assign(c.frame_64.size(), 0);
    EXPECT_EQ(manager.SetSignalRawValueInt64(frame[0], c.signal, kMessage, c.raw), c.result_64);
    EXPECT_EQ(frame, c.frame_64) << c.signal.start_bit << ", " << c.signal.length;
  }
}

/// The double that is written into a signal of the type, the result, and the frame.
using DoubleCases = std::vector<std::tuple<sigblk, unsigned, double, int, Frame>>;

template <typename Write>
void expect_writes(const DoubleCases& cases, Write write) {
  for (auto [signal, value_type, number, result, expected] : cases) {
    signal.value_type = value_type;
    Frame frame(expected.size());
    EXPECT_EQ(write(frame[0], signal, kMessage, number), result) << number;
    EXPECT_EQ(frame, expected) << signal.start_bit << ", " << number;
  }
}

TEST(RawWrites, OfIeeeNumbers) {
  const DoubleCases cases = {
      {make_signal(0, 1), 2, 0.1, 0, {0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0x3F}},
      {make_signal(4, 32), 2, 0.1, 0, {0xA0, 0x99, 0x99, 0x99, 0x99, 0x99, 0x99, 0xFB, 0x03}},
      {make_signal(0, 99), 1, 10.0, 0, {0, 0, 0x20, 0x41}},
      {make_signal(11, 0, kMotorola), 1, 10.0, 0, {0, 0x04, 0x12, 0, 0, 0}},
      {make_signal(0, 32), 1, 1e300, 0, {0, 0, 0x80, 0x7F}},
      // Into an integer signal go the double's own bits.
      {make_signal(8, 8), 3, 0.1, 2, {0, 0x9A, 0}},
      {make_signal(0, 72), 0, 0.1, 2, {0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0x3F, 0}},
  };
  expect_writes(cases, [](auto&... to) { return Manager().SetSignalRawValue(to...); });
}

TEST(Writes, TestForPresenceAfterwards) {
  const Manager manager;
  Message message;
  sigblk& multiplexor = message.add(make_signal(0, 8, kMultiplexor));
  sigblk& across = message.add(make_signal(4, 8));  // its low half selects it
  message.select(across, multiplexor, 0x50, 0x5F);
  for (const unsigned value : {0x35U, 0x34U}) {
    const int result = value == 0x35 ? 0 : 5;
    const Frame expected = {static_cast<unsigned char>(value << 4), 3};
    const auto expect = [&](auto write) {
      Frame frame(2);
      EXPECT_EQ(write(frame[0], across, message.record), result);
      EXPECT_EQ(frame, expected);
    };
    const Frame memory = {static_cast<unsigned char>(value)};
    const unsigned char* bytes = memory.data();
    expect([&](auto&... to) { return manager.SetSignalRawValue(to..., value + 0UL); });
    expect([&](auto&... to) { return manager.SetSignalRawValueInt64(to..., value + 0LL); });
    expect([&](auto&... to) { return manager.SetSignalRawValue(to..., bytes); });
    expect([&](auto&... to) { return manager.SetSignalPhysicalValue(to..., value + 0.0); });
  }
  // The type or length refuses before presence does.
  Frame frame(10);
  EXPECT_EQ(manager.SetSignalRawValue(frame[0], across, message.record, 0.1), 2);
  across.length = 65;
  EXPECT_EQ(manager.SetSignalRawValueInt64(frame[0], across, message.record, 0LL), 3);
}

TEST(PhysicalWrites, ConvertByTypeAndLength) {
  const DoubleCases cases = {
      // Factor 0.5, offset 10, range 0 to 50.
      {make_signal(0, 8, kSigned), 0, 5.0, 0, {0xF6, 0}},
      {make_signal(0, 8), 0, 160.0, 4, {0x2C, 0}},  // 300 in 8 bits
      {make_signal(4, 8, kSigned), 0, -1.0, 4, {0xA0, 0x0E}},
      {make_signal(0, 40, kSigned), 0, 5.0, 0, {0xF6, 255, 255, 255, 255, 0}},
      {make_signal(0, 40), 0, 5.0, 0, {0, 0, 0, 0, 0, 0}},  // nothing below 0
      {make_signal(0, 65), 0, 51.0, 3, {82, 0, 0, 0, 0, 0, 0, 0, 0}},
      {make_signal(0, 8), 1, 15.0, 0, {0, 0, 0x20, 0x41}},
      {make_signal(0, 8), 2, 10.25, 0, {0, 0, 0, 0, 0, 0, 0xE0, 0x3F}},
  };
  const Manager manager;
  expect_writes(cases, [&](unsigned char& data, const sigblk& signal, auto&... to) {
    return manager.SetSignalPhysicalValue(data, scaled(signal, 0.5, 10.0, 50.0), to...);
  });
  // Out of range and not present.
  muxor_val_range range = {1, 1, nullptr};
  sigblk absent = scaled(make_signal(0, 8), 1.0, 0.0, 1.0);
  absent.mux_ranges = &range;
  Frame frame(1);
  EXPECT_EQ(manager.SetSignalPhysicalValue(frame[0], absent, kMessage, 2.0), 5);
}

}  // namespace

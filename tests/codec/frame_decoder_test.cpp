#include "zelk/frame_decoder.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "codec/frames.hpp"
#include "manager/manager_test.hpp"

namespace {

unsigned length_in_frame(const sigblk& signal) {
  return signal.value_type == 2 ? 64 : signal.value_type == 1 ? 32 : signal.length;
}

/// What one signal is expected to be in a frame.
struct Expected {
  bool is_present = false;
  std::int64_t raw = 0;
  double physical = 0.0;
};

bool fits(const sigblk& signal, std::size_t bytes) {
  const unsigned length = length_in_frame(signal);
  return length <= 64 && bytes_for(bits_of(signal, length)) <= bytes &&
         (!signal.mux_signal ||
          (fits(*signal.mux_signal, bytes) && bytes_for(bits_of(*signal.mux_signal)) <= bytes));
}

/// The bits are counted one by one; the manager is asked for the rest, on a frame that is long
/// enough for it.
Expected expected_of(const Frame& frame, const sigblk& signal) {
  const Manager manager;
  const msgblk message = {};
  Frame padded = frame;
  padded.resize(80);
  if (!fits(signal, frame.size()) || !manager.CheckSignalModeValue(padded[0], signal, message)) {
    return {};
  }
  Expected expected = {true, 0, 0.0};
  const auto bits = bits_of(signal, length_in_frame(signal));
  std::uint64_t number = number_in(padded, bits);
  const bool is_integer = signal.value_type != 1 && signal.value_type != 2;
  if (is_integer && (signal.flags & kSigned) != 0) number = sign_extended(number, signal.length);
  expected.raw = static_cast<std::int64_t>(number);
  manager.RawToPhysicalValueInt64(expected.raw, signal, expected.physical);
  const bool is_lossy = is_integer && bits.front() % 8 + bits.size() > 64;
  if (!is_lossy) manager.GetSignalPhysicalValue(padded[0], signal, message, expected.physical);
  return expected;
}

bool is_in_circle(const sigblk& signal) {
  const sigblk* above = signal.mux_signal;
  for (int i = 0; above && i < 300; ++i) above = above->mux_signal;
  return above != nullptr;
}

bool is_set(const std::vector<std::uint64_t>& mask, std::size_t index) {
  return (mask[index / 64] >> index % 64 & 1) != 0;
}

TEST(FrameDecoder, DecodesWhatTheManagerReads) {
  Random random;
  std::size_t present_count = 0, absent_count = 0;
  for (int i = 0; i < 400; ++i) {
    Message message;
    add_random_signals(message, random, i < 2 ? 200 : random.between(1, 12));
    const ZelkFrameDecoder decoder(message.record);
    ASSERT_EQ(decoder.SignalCount(), message.signals.size());
    ASSERT_EQ(decoder.PresenceWords(), i < 2 ? 4U : 1U);
    for (int j = 0; j < 20; ++j) {
      const Frame frame = random.frame(random.one_in(3) ? 8 : random.between(0, 64));
      std::vector<double> values(message.signals.size(), -1.0);
      std::vector<std::int64_t> raws(message.signals.size(), -1);
      std::vector<std::uint64_t> present(decoder.PresenceWords(), ~0ULL), again(present);
      decoder.Decode(frame.data(), frame.size(), values.data(), present.data());
      decoder.DecodeRaw(frame.data(), frame.size(), raws.data(), again.data());
      ASSERT_EQ(present, again);
      for (std::size_t s = 0; s < message.signals.size(); ++s) {
        const sigblk& signal = decoder.Signal(s);
        ASSERT_EQ(&signal, &message.signals[s]);
        const Expected expected = is_in_circle(signal) ? Expected() : expected_of(frame, signal);
        ASSERT_EQ(is_set(present, s), expected.is_present) << i << ", " << s;
        ASSERT_EQ(raws[s], expected.raw) << i << ", " << s;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(values[s]),
                  std::bit_cast<std::uint64_t>(expected.physical))
            << values[s] << ", " << expected.physical;
        ++(expected.is_present ? present_count : absent_count);
      }
    }
  }
  EXPECT_GT(present_count, 20000U);
  EXPECT_GT(absent_count, 10000U);
}

TEST(FrameDecoder, ByHand) {
  Message message;
  message.add(make_signal(4, 64)).factor = 0.5;  // whole, with its ninth byte
  message.add(make_signal(4, 64, kSigned));
  message.add(make_signal(0, 65));
  message.add(make_signal(72, 8));
  message.add(make_signal(76, 0));  // at the end of the frame, and no byte of it is read
  message.add(make_signal(65535, 9, kMotorola));
  sigblk& single = message.add(make_signal(0, 64, kMultiplexor));  // it selects by 64 bits
  single.value_type = 1;
  message.select(message.add(make_signal(0, 8)), single, 0, 0xFFFFFFFF);
  const ZelkFrameDecoder decoder(message.record);
  std::vector<double> values(8);
  std::uint64_t present = 0;
  const Frame ones(9, 0xFF);
  decoder.Decode(ones.data(), 9, values.data(), &present);
  EXPECT_EQ(present, 0b11000011U);
  EXPECT_EQ(values[0], 0x1p63);
  EXPECT_EQ(values[1], -1.0);
  decoder.Decode(nullptr, 0, values.data(), &present);
  EXPECT_EQ(present, 0U);
  EXPECT_EQ(values, std::vector<double>(8));

  const ZelkFrameDecoder of_nothing{msgblk()};
  EXPECT_EQ(of_nothing.SignalCount() + of_nothing.PresenceWords(), 0U);
  of_nothing.Decode(ones.data(), 9, nullptr, nullptr);
  EXPECT_TRUE(ZelkFrameEncoder(msgblk()).Encode(nullptr, nullptr, nullptr, 0));
}

TEST(FrameEncoder, GivesTheValueBackAndTouchesNothingElse) {
  Random random;
  for (int i = 0; i < 400; ++i) {
    Message message;
    add_random_signals(message, random, random.between(1, 12));
    for (sigblk& signal : message.signals) {
      signal.mux_signal = nullptr;
      signal.mux_ranges = nullptr;
    }
    const ZelkFrameDecoder decoder(message.record);
    const ZelkFrameEncoder encoder(message.record);
    const Frame source = random.frame(random.between(0, 68));
    std::vector<double> values(message.signals.size());
    std::uint64_t present = 0;
    decoder.Decode(source.data(), source.size(), values.data(), &present);
    for (std::size_t s = 0; s < values.size(); ++s) {
      const sigblk& signal = message.signals[s];
      if (std::isnan(values[s])) continue;
      // A signal at a time: they overlap.
      const std::uint64_t selected = std::uint64_t{1} << s;
      const Frame before = random.frame(source.size());
      Frame frame = before;
      const bool is_written = encoder.Encode(values.data(), &selected, frame.data(), frame.size());
      std::vector<double> back(values.size());
      std::uint64_t present_again = 0;
      decoder.Decode(frame.data(), frame.size(), back.data(), &present_again);
      if ((present >> s & 1) == 0) {
        ASSERT_FALSE(is_written || frame != before);
        continue;
      }
      // What more than 52 bits lose in a double may take them out of the signal's reach.
      const double tolerance = std::abs(values[s]) * 1e-9 + 1e-9;
      ASSERT_TRUE(is_written || length_in_frame(signal) > 52) << values[s];
      ASSERT_TRUE(back[s] == values[s] || std::abs(back[s] - values[s]) <= tolerance)
          << signal.length << ": " << back[s] << " for " << values[s];
      for (const std::size_t bit : bits_of(signal, length_in_frame(signal))) {
        set_bit(frame, bit, (before[bit / 8] >> bit % 8 & 1) != 0);
      }
      ASSERT_EQ(frame, before) << signal.start_bit << ", " << signal.length;
    }
  }
}

TEST(FrameEncoder, RoundsAndSaturates) {
  const double nan = std::nan(""), infinity = HUGE_VAL;
  const struct {
    sigblk signal;
    double value;
    bool holds;
    std::uint64_t bits;
    std::uint32_t value_type = 0;
  } cases[] = {
      {make_signal(4, 8), 255.5, false, 255},
      {make_signal(4, 8), 0.49999999999999994, true, 1},
      {make_signal(4, 8), nan, false, 0},
      {make_signal(3, 8, kMotorola | kSigned), -128.5, false, 0x80},
      {make_signal(4, 1, kSigned), 1.0, false, 0},
      {make_signal(0, 64, kSigned), 0x1p63, false, 0x7FFFFFFFFFFFFFFF},
      {make_signal(0, 64), 0x1p63, true, 0x8000000000000000},
      {make_signal(4, 64), 0x1p64, false, ~0ULL},
      {make_signal(0, 65), 1.0, false, 0},
      {make_signal(4, 0), 0.0, true, 0},
      {make_signal(8, 32), infinity, true, 0x7F800000, 1},
      {make_signal(8, 32), -1e300, false, 0xFF7FFFFF, 1},
  };
  for (const auto& c : cases) {
    for (const unsigned char fill : {std::uint8_t{0}, std::uint8_t{255}}) {
      Message message;
      message.add(c.signal).value_type = c.value_type;
      const ZelkFrameEncoder encoder(message.record);
      Frame frame(9, fill), expected(9, fill);
      EXPECT_EQ(encoder.Encode(&c.value, nullptr, frame.data(), 9), c.holds) << c.value;
      if (c.signal.length <= 64) put_number(expected, bits_of(c.signal), c.bits);
      EXPECT_EQ(frame, expected) << c.signal.length << ", " << c.value;
    }
  }
}

TEST(FrameDecoderTable, FindsTheFirstOfAnIdentifier) {
  constexpr std::uint32_t kCount = 5000;
  std::vector<msgblk> messages(kCount);
  for (std::uint32_t i = 0; i < kCount; ++i) {
    messages[i].id = i % 2 != 0 ? i : 0x80000000U | i << 8;
    if (i + 1 < kCount) messages[i].next = &messages[i + 1];
  }
  messages[11].id = 0xFFFFFFFF;
  messages[20].id = messages[4000].id = 0;
  const ZelkFrameDecoderTable table(messages.data());
  for (std::uint32_t i = 0; i < kCount; ++i) {
    ASSERT_EQ(&table.Find(messages[i].id)->Message(), &messages[i == 4000 ? 20 : i]);
    ASSERT_EQ(&table.Find(messages[i])->Message(), &messages[i]);
  }
  for (const std::uint32_t id : {10U, 11U, 5001U, 0x7FFFFFFFU, 0x80000001U, 0xFFFFFFFEU}) {
    EXPECT_EQ(table.Find(id), nullptr) << id;
  }
  const msgblk foreign = messages[30];
  EXPECT_EQ(table.Find(foreign), nullptr);
  EXPECT_EQ(ZelkFrameDecoderTable(nullptr).Find(0), nullptr);
}

}  // namespace

#include <gtest/gtest.h>

#include "codec/frames.hpp"
#include "manager/manager_test.hpp"

namespace {

TEST(MultiplexedSignals, FactsOfASignal) {
  using M = ZelkManager;
  EXPECT_FALSE(M::GetMultiplexorSignal(nullptr) || M::SignalIsMultiplexor(nullptr) ||
               M::SignalIsMultiplexed(nullptr) || M::SignalIsMultiplexedByValue(nullptr, 0) ||
               M::GetMultiplexorValueRanges(nullptr));
  Message message;
  sigblk& multiplexor = message.add(make_signal(0, 8, kMultiplexor));
  sigblk& linked = message.add(make_signal(8, 8));
  linked.mux_signal = &multiplexor;
  sigblk& ranged = message.add(make_signal(8, 8));
  message.add_range(ranged, 0xFFFFFFFE, 0xFFFFFFFF);
  message.add_range(ranged, 9, 3);
  message.add_range(ranged, 1, 3);
  EXPECT_TRUE(M::SignalIsMultiplexor(&multiplexor) && M::SignalIsMultiplexed(&linked) &&
              M::SignalIsMultiplexed(&ranged));
  EXPECT_FALSE(M::SignalIsMultiplexor(&linked) || M::SignalIsMultiplexed(&multiplexor));
  std::vector<unsigned long> selected;
  for (const unsigned long value : {0UL, 1UL, 3UL, 4UL, 9UL, 0xFFFFFFFDUL, 0xFFFFFFFEUL, ~0UL}) {
    if (M::SignalIsMultiplexedByValue(&ranged, value)) selected.push_back(value);
    EXPECT_FALSE(M::SignalIsMultiplexedByValue(&linked, value)) << value;
  }
  EXPECT_EQ(selected, (std::vector<unsigned long>{1, 3, 0xFFFFFFFE, ~0UL}));
}

TEST(MultiplexedSignals, PresenceByTheMultiplexor) {
  const struct {
    sigblk multiplexor;
    std::uint32_t low, high;
    bool is_present;
  } cases[] = {
      // The frame counts: byte 0 is 0xF0, byte 1 0xF1 ...
      {make_signal(0, 8), 0xF0, 0xF0, true},
      {make_signal(0, 8), 0xF1, 0xEF, false},
      {make_signal(15, 16, kMotorola), 0xF1F2, 0xF1F2, true},
      // Two's complement of 32 bits.
      {make_signal(0, 8, kSigned), 0xFFFFFFF0, 0xFFFFFFF0, true},
      // Of 33 to 63 bits the low (length - 32) ones are compared, of 64 the low 32.
      {make_signal(0, 33), 0, 0, true},
      {make_signal(0, 63), 0x73F2F1F0, 0x73F2F1F0, true},
      {make_signal(0, 64), 0xF3F2F1F0, 0xF3F2F1F0, true},
      {make_signal(0, 33, kSigned), 0, 0xFFFFFFFF, false},
      {make_signal(0, 65), 0, 0xFFFFFFFF, false},
      {make_signal(0, 0), 0, 0, true},
  };
  Frame frame(13);
  for (std::size_t i = 0; i < 12; ++i) frame[i] = static_cast<unsigned char>(0xF0 + i);
  frame[12] = 0x5A;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.multiplexor.length);
    const Manager manager;
    Message message;
    sigblk& multiplexor = message.add(c.multiplexor);
    sigblk& signal = message.add(make_signal(96, 8));
    message.select(signal, multiplexor, c.low, c.high);
    EXPECT_EQ(manager.CheckSignalModeValue(frame[0], signal, {}), c.is_present);
    long long raw = 0;
    EXPECT_EQ(manager.GetSignalRawValueInt64(frame[0], signal, {}, raw), c.is_present ? 0 : 5);
    EXPECT_EQ(raw, 0x5A);
  }
}

}  // namespace

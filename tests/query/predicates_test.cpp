// Which signals of a message an iterator stops at.

#include "zelk/predicates.hpp"

#include "codec/frames.hpp"
#include "manager/manager_test.hpp"
#include "zelk/write_manager.hpp"

namespace {

using Predicates = ManagerTest;

bool is_valid(const Frame& frame, unsigned data_length, const sigblk* signal) {
  Manager manager;
  static const unsigned char none = 0;
  ValidSignalPredicate predicate(frame.empty() ? none : frame[0], data_length);
  return predicate(signal, manager, nullptr);
}

TEST_F(Predicates, AcceptSignalsThatFitInTheData) {
  // The least bytes that a signal fits in.
  const std::pair<sigblk, unsigned> cases[] = {{make_signal(1, 64), 9},
                                               {make_signal(1, 0), 1},
                                               {make_signal(16, 0), 2},
                                               {make_signal(6, 64, kMotorola), 9},
                                               {make_signal(0xFFFF, 0xFFFF), 16384}};
  for (const auto& [wanted, bytes] : cases) {
    Message message;
    const sigblk& signal = message.add(wanted);
    EXPECT_TRUE(is_valid(Frame(bytes), bytes, &signal)) << bytes;
    EXPECT_FALSE(is_valid(Frame(bytes - 1), bytes - 1, &signal)) << bytes;
    EXPECT_TRUE(is_valid(Frame(bytes), 0xFFFFFFFF, &signal)) << bytes;
  }
  const sigblk ownerless = make_signal(0, 1);
  EXPECT_FALSE(is_valid(Frame(1), 1, &ownerless));
  EXPECT_FALSE(is_valid(Frame(1), 1, nullptr));
}

TEST_F(Predicates, ChooseAmongTheSignalsOfAMessage) {
  Manager m;
  ZelkWriteManager editor(static_cast<void*>(nullptr));
  Message message;
  sigblk& top = message.add(make_signal(0, 8, kMultiplexor));
  sigblk& inner = message.add(make_signal(16, 8, kMultiplexor));
  sigblk& leaf = message.add(make_signal(8, 8));
  sigblk& other = message.add(make_signal(8, 8));
  sigblk& linkless = message.add(make_signal(8, 8));
  const sigblk& last = message.add(make_signal(24, 8));
  message.select(inner, top, 1, 1);
  message.select(leaf, inner, 5, 6);
  message.select(other, top, 2, 9);
  message.add_range(linkless, 0, 255);
  const std::vector<std::pair<const sigblk*, char>> letters = {
      {&top, 't'}, {&inner, 'i'}, {&leaf, 'l'}, {&other, 'o'}, {&linkless, 'n'}, {&last, 'p'}};
  const auto walk = [&](auto it) {
    std::string text;
    for (; it; ++it) {
      for (const auto& [signal, letter] : letters)
        text += signal == *it ? std::string(1, letter) : "";
    }
    return text;
  };
  const struct {
    Frame frame;
    const char* valid;
    const char* multiplexors;
  } cases[] = {{{1, 0, 5, 0}, "tilp", "ti"}, {{1, 0, 7, 0}, "tip", "ti"},
               {{9, 0, 5, 0}, "top", "t"},   {{0, 0, 5, 0}, "tp", "t"},
               {{1, 0, 5}, "til", "ti"},     {{2}, "t", "t"}};
  for (const auto& c : cases) {
    const auto length = static_cast<unsigned>(c.frame.size());
    ValidSignalPredicate is_valid(c.frame[0], length);
    ValidMultiplexorPredicate is_multiplexor(c.frame[0], length);
    EXPECT_EQ(walk(m.GetValidSignalIterator(message.record, is_valid)), c.valid);
    EXPECT_EQ(walk(editor.GetValidMultiplexorSignalIterator(message.record, is_multiplexor)),
              c.multiplexors);
  }
  MultiplexedBySignalPredicate by_top(top);
  EXPECT_EQ(walk(m.GetMultiplexedSignalIterator(message.record, by_top)), "io");
  EXPECT_EQ(walk(editor.GetMultiplexorSignalIterator(message.record)), "ti");
  MultiplexedSignalPredicate is_multiplexed;
  const sigblk* const first = &top;
  EXPECT_EQ(walk(ZelkIterator(m, first, is_multiplexed, nullptr)), "ilon");
  EXPECT_FALSE(MultiplexorPredicate()(nullptr, m, nullptr) || is_multiplexed(nullptr, m, nullptr) ||
               by_top(nullptr, m, nullptr));
}

// Each frame ends where its memory ends. A third of the signals lead into a circle.
TEST_F(Predicates, ReadNothingBeyondTheData) {
  Manager m;
  Random random;
  unsigned accepted = 0;
  for (int round = 0; round < 3000; ++round) {
    Message message;
    std::vector<std::size_t> ends;
    const unsigned levels = random.between(1, 5);
    for (unsigned level = 0; level < levels; ++level) {
      sigblk& signal = message.add(random.signal(random.between(1, 40), 8));
      ends.push_back(bytes_for(bits_of(signal)));
      if (level == 0) continue;
      message.select(signal, message.signals[level - 1], 0, random.one_in(8) ? 0 : 0xFFFFFFFF);
    }
    const bool is_circle = random.one_in(3);
    sigblk& entered = message.signals[random.between(0, levels - 1)];
    if (is_circle) message.select(message.signals.front(), entered, 0, 0xFFFFFFFF);
    const auto length = random.between(1, 10);
    const Frame frame = random.frame(length);
    const sigblk& signal = message.signals.back();
    const bool fits = *std::max_element(ends.begin(), ends.end()) <= length;
    const bool expected = fits && m.CheckSignalModeValue(frame[0], signal, message.record);
    EXPECT_EQ(is_valid(frame, length, &signal), expected) << round;
    EXPECT_FALSE(expected && is_circle);
    accepted += expected ? 1 : 0;
  }
  EXPECT_GT(accepted, 500U);
}

}  // namespace

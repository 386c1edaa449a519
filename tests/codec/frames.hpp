/// Signals, messages and frames, and which bits of a frame a signal has, counted one by one.
#ifndef ZELK_TESTS_CODEC_FRAMES_HPP
#define ZELK_TESTS_CODEC_FRAMES_HPP

#include <algorithm>
#include <cstdint>
#include <deque>
#include <random>
#include <string_view>
#include <vector>

#include "zelk/records.h"

enum : unsigned { kIntel = 0, kMotorola = 1, kSigned = 2, kMultiplexor = 4 };

/// A frame ends where its memory ends.
using Frame = std::vector<unsigned char>;

inline sigblk make_signal(unsigned start_bit, unsigned length, unsigned flags = 0) {
  sigblk signal = {};
  signal.start_bit = static_cast<std::uint16_t>(start_bit);
  signal.length = static_cast<std::uint16_t>(length);
  signal.flags = static_cast<std::uint16_t>(flags);
  signal.factor = 1.0;
  return signal;
}

inline sigblk scaled(sigblk signal, double factor, double offset, double maximum = 0.0,
                     std::string_view unit = "") {
  signal.factor = factor;
  signal.offset = offset;
  signal.maximum = maximum;
  signal.unit[unit.copy(signal.unit, sizeof signal.unit - 1)] = '\0';
  return signal;
}

/// A message that has its signals and their ranges; they stay where they are in memory.
struct Message {
  Message() = default;
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  sigblk& add(const sigblk& signal) {
    sigblk& added = signals.emplace_back(signal);
    added.message = &record;
    if (signals.size() == 1) record.signals = &added;
    if (signals.size() > 1) signals[signals.size() - 2].next = &added;
    return added;
  }
  void add_range(sigblk& signal, std::uint32_t low, std::uint32_t high) {
    ranges.push_back({low, high, signal.mux_ranges});
    signal.mux_ranges = &ranges.back();
  }
  void select(sigblk& signal, sigblk& multiplexor, std::uint32_t low, std::uint32_t high) {
    signal.mux_signal = &multiplexor;
    add_range(signal, low, high);
  }

  msgblk record = {};
  std::deque<sigblk> signals;
  std::deque<muxor_val_range> ranges;
};

/// Positions of a signal's bits, the least significant one first. From bit 0 of a byte a Motorola
/// signal goes on at bit 7 of the next one.
inline std::vector<std::size_t> bits_of(const sigblk& signal, unsigned length) {
  const bool is_motorola = (signal.flags & kMotorola) != 0;
  std::vector<std::size_t> bits;
  bits.reserve(length);
  for (std::size_t bit = signal.start_bit; bits.size() < length;) {
    bits.push_back(bit);
    bit = !is_motorola ? bit + 1 : bit % 8 == 0 ? bit + 15 : bit - 1;
  }
  if (is_motorola) std::reverse(bits.begin(), bits.end());
  return bits;
}

inline std::vector<std::size_t> bits_of(const sigblk& signal) {
  return bits_of(signal, signal.length);
}

/// Bytes from the first of a frame to the last one that has one of the bits.
inline std::size_t bytes_for(const std::vector<std::size_t>& bits) {
  return bits.empty() ? 0 : *std::max_element(bits.begin(), bits.end()) / 8 + 1;
}

/// The number in the first 64 of the bits.
inline std::uint64_t number_in(const Frame& frame, const std::vector<std::size_t>& bits) {
  std::uint64_t number = 0;
  for (std::size_t i = std::min<std::size_t>(bits.size(), 64); i-- > 0;) {
    number = number << 1 | (frame[bits[i] / 8] >> bits[i] % 8 & 1U);
  }
  return number;
}

inline void set_bit(Frame& frame, std::size_t bit, bool on) {
  const auto mask = static_cast<unsigned char>(1U << bit % 8);
  frame[bit / 8] = static_cast<unsigned char>(on ? frame[bit / 8] | mask : frame[bit / 8] & ~mask);
}

inline void put_number(Frame& frame, const std::vector<std::size_t>& bits, std::uint64_t number) {
  for (const std::size_t bit : bits) {
    set_bit(frame, bit, (number & 1) != 0);
    number >>= 1;
  }
}

/// The lowest `length` bits of a number.
inline std::uint64_t low_bits(std::uint64_t number, unsigned length) {
  return length >= 64 ? number : number & ((std::uint64_t{1} << length) - 1);
}

/// A number of `length` bits as two's complement of 64.
inline std::uint64_t sign_extended(std::uint64_t number, unsigned length) {
  const bool is_negative = length > 0 && length < 64 && (number >> (length - 1) & 1) != 0;
  return is_negative ? number | ~std::uint64_t{0} << length : number;
}

class Random {
 public:
  std::uint64_t bits() { return engine_(); }
  unsigned between(unsigned low, unsigned high) {
    return low + static_cast<unsigned>(engine_() % (high - low + 1));
  }
  bool one_in(unsigned n) { return engine_() % n == 0; }

  Frame frame(std::size_t size) {
    Frame frame(size);
    for (unsigned char& byte : frame) byte = static_cast<unsigned char>(engine_());
    return frame;
  }
  /// Byte order and sign are random.
  sigblk signal(unsigned length, unsigned frame_bytes) {
    const unsigned flags = between(0, 3);
    const unsigned first = between(0, frame_bytes * 8 - length);
    return make_signal((flags & kMotorola) != 0 ? first / 8 * 8 + 7 - first % 8 : first, length,
                       flags);
  }

 private:
  std::mt19937_64 engine_;
};

/// Signals of every kind, some of them reaching beyond 64 bytes; `count` of them.
inline void add_random_signals(Message& message, Random& random, unsigned count) {
  const unsigned frame_bytes = random.one_in(2) ? 8 : 66;
  for (unsigned i = 0; i < count; ++i) {
    const unsigned length = random.between(1, random.one_in(8) ? 64 : random.one_in(20) ? 70 : 16);
    sigblk& signal = message.add(random.signal(std::min(length, frame_bytes * 8), frame_bytes));
    if (random.one_in(6)) {
      signal.value_type = random.between(1, 3);
      const unsigned flags = signal.flags;
      if (signal.value_type < 3) signal = random.signal(signal.value_type * 32, frame_bytes);
      signal.value_type = signal.value_type < 3 ? signal.length / 32U : 3;
      signal.flags = static_cast<std::uint16_t>(flags);
    }
    signal.factor = random.one_in(3) ? 1.0 : 0.1 * random.between(1, 99) - 5.05;
    signal.offset = random.one_in(3) ? 0.0 : 0.3 * random.between(0, 99) - 15;
    signal.maximum = random.one_in(2) ? 1.0 : 0.0;
  }
  for (sigblk& signal : message.signals) {
    if (!random.one_in(3)) continue;
    // Any other signal may be the multiplexor: behind this one, in a circle, or an odd one.
    sigblk& multiplexor = message.signals[random.between(0, count - 1)];
    if (!random.one_in(9)) signal.mux_signal = &multiplexor;
    if (multiplexor.length > 4 && !random.one_in(4)) multiplexor.length = 2;
    while (!random.one_in(3)) {
      const std::uint32_t low = random.between(0, 4);
      message.add_range(signal, low, random.one_in(5) ? 0xFFFFFFFF : low + random.between(0, 2));
    }
  }
}

#endif

/// \file
/// The signals of the messages that are decoded and encoded, and how one would decode them by hand.

#ifndef ZELK_BENCH_TRAFFIC_LAYOUT_HPP
#define ZELK_BENCH_TRAFFIC_LAYOUT_HPP

#include <array>
#include <cstdint>
#include <random>

#include "zelk/records.h"

namespace zelk::bench {

struct Layout {
  std::uint16_t start_bit;
  std::uint16_t length;
  std::uint16_t flags;
};

inline constexpr std::uint16_t kMotorola = ZELK_SIGNAL_MOTOROLA;
inline constexpr std::uint16_t kSigned = ZELK_SIGNAL_SIGNED;
/// A whole frame of 8 bytes: bytes 0 to 2 and 5 to 7 Intel, the rest Motorola, neighbours in one
/// byte.
inline constexpr std::array<Layout, 8> kLayout = {{{0, 12, 0},
                                                   {12, 5, kSigned},
                                                   {17, 7, 0},
                                                   {31, 10, kMotorola},
                                                   {37, 3, kMotorola},
                                                   {34, 3, kMotorola | kSigned},
                                                   {40, 16, kSigned},
                                                   {56, 8, kSigned}}};
inline constexpr std::size_t kSignals = kLayout.size();

/// Gives a signal its place, and a scale that differs from message to message.
inline void lay_out(sigblk& signal, std::size_t index, std::mt19937_64& random) {
  signal.start_bit = kLayout[index].start_bit;
  signal.length = kLayout[index].length;
  signal.flags = kLayout[index].flags;
  signal.factor = 0.01 * static_cast<double>(1 + random() % 99);
  signal.offset = 0.5 * static_cast<double>(random() % 99) - 20.25;
}

/// A signal as loops written by hand take it out of the frame, which is read as one number: in the
/// byte order of Motorola for such signals.
struct HandSignal {
  explicit HandSignal(const sigblk& signal)
      : factor(signal.factor),
        offset(signal.offset),
        is_motorola((signal.flags & kMotorola) != 0 ? 1U : 0U) {
    const unsigned first = signal.start_bit / 8U * 8 + 7 - signal.start_bit % 8U;
    const std::uint64_t top = std::uint64_t{1} << (signal.length - 1);
    mask = 2 * top - 1;
    sign = (signal.flags & kSigned) != 0 ? top : 0;
    shift = is_motorola ? 64 - first - signal.length : signal.start_bit;
  }
  HandSignal() = default;

  double factor = 0;
  double offset = 0;
  std::uint64_t mask = 0;
  std::uint64_t sign = 0;
  std::uint32_t is_motorola = 0;
  std::uint32_t shift = 0;
};

}  // namespace zelk::bench

#endif

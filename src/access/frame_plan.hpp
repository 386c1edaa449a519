/// \file
/// What a message's signals say, worked out for decoding and encoding frame after frame.

#ifndef ZELK_ACCESS_FRAME_PLAN_HPP
#define ZELK_ACCESS_FRAME_PLAN_HPP

#include <cstdint>
#include <vector>

#include "access/codec.hpp"

namespace zelk {

/// A signal within the first eight bytes whose raw value is a signed 64-bit number: all but the
/// odd ones. The eight bytes are taken as one word in both byte orders.
struct QuickSignal {
  double factor;
  double offset;
  std::uint64_t mask;   ///< of its bits, shifted down
  std::uint64_t sign;   ///< the topmost of them for a signed signal, else 0
  std::uint32_t index;  ///< among the message's signals
  std::uint8_t word;    ///< 0: the little-endian word, 1: the big-endian one
  std::uint8_t shift;   ///< of its lowest bit in that word
};

/// Any other signal of up to 64 bits.
struct SlowSignal {
  codec::Position at;
  std::uint16_t length_bits;  ///< 32 or 64 for an IEEE signal
  std::uint32_t index;
};

/// A signal that its multiplexor has to select.
struct DependentSignal {
  std::uint32_t index;
  std::uint32_t multiplexor;  ///< index of another signal of the message
  std::uint32_t first_range;
  std::uint32_t range_count;
};

struct ValueRange {
  std::uint32_t low;
  std::uint32_t high;
};

/// Everything is told by the index of a signal in the message's list.
struct alignas(64) FramePlan {
  explicit FramePlan(const msgblk& message);

  /// Never fits: 65 bits and more, or positions that wrap.
  static constexpr std::size_t kNeverFits = SIZE_MAX;

  // What most frames need, and no more, stands first: one line of the cache.

  /// Bytes by which a frame holds all signals; `kNeverFits` when some signal is not always present.
  std::size_t bytes_for_all = 0;
  std::vector<QuickSignal> quick;
  std::vector<SlowSignal> slow;
  std::uint32_t presence_words = 0;
  std::uint64_t last_word = 0;  ///< of the presence mask of a frame that holds all signals

  const msgblk& message;
  std::vector<const sigblk*> records;
  std::vector<sigblk> signals;  ///< copies, for their numbers
  std::vector<zelk_sig_mask_t> masks;
  std::vector<std::size_t> bytes_needed;
  std::vector<std::uint32_t> unconditional;  ///< indexes of signals that are not multiplexed
  /// Those that can be present; a multiplexor stands in front of the signals that it selects.
  std::vector<DependentSignal> dependent;
  std::vector<ValueRange> ranges;
  std::vector<std::uint32_t> never_fitting;  ///< indexes

 private:
  enum class Standing : std::uint8_t { kUnknown, kUnderWay, kKnown, kNever };

  void add(const sigblk& signal);
  void add_dependents();
  void add_dependent(std::uint32_t index, std::uint32_t multiplexor);
};

/// Bytes that a frame needs to hold a signal.
std::size_t bytes_needed_by(const sigblk& signal);

/// Bits that a signal has in a frame.
inline std::uint16_t length_in_frame(const sigblk& signal) {
  return codec::is_ieee(signal) ? codec::ieee_length(signal) : signal.length;
}

}  // namespace zelk

#endif

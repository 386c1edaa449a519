/// \file
/// A message's signals, prepared for decoding and encoding frame after frame.

#ifndef ZELK_CODEC_FRAME_PLAN_HPP
#define ZELK_CODEC_FRAME_PLAN_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "codec/bits.hpp"

namespace zelk {

/// A signal within the first eight bytes whose raw value fits a signed 64-bit number; nearly all
/// are. The eight bytes are taken as one word in both byte orders.
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
  sigblk signal;  ///< a copy, for its numbers
  codec::Position at;
  std::uint16_t length_bits;  ///< 32 or 64 for an IEEE signal
  std::uint32_t index;
};

/// A multiplexor by whose value others are present.
struct Multiplexor {
  sigblk signal;  ///< a copy, for its numbers
  zelk_sig_mask_t mask;
  std::uint32_t index;
};

/// A signal that its multiplexor has to select.
struct DependentSignal {
  std::uint32_t index;
  std::uint32_t multiplexor;  ///< among the plan's multiplexors
  std::uint32_t first_range;
  std::uint32_t range_count;
};

struct ValueRange {
  std::uint32_t low;
  std::uint32_t high;
};

/// Signals are named by their index in the message's list. A plan keeps only what is needed frame
/// by frame, so that the plans of some hundred messages stay in the caches.
///
/// The quick signals stand behind the plan in its own memory: no read of a pointer has to come
/// before theirs.
struct alignas(64) FramePlan {
  static std::unique_ptr<const FramePlan> of(const msgblk& message);
  FramePlan(const FramePlan&) = delete;
  FramePlan& operator=(const FramePlan&) = delete;
  void operator delete(void* memory);

  /// Never fits: 65 bits and more, or positions that wrap.
  static constexpr std::size_t kNeverFits = SIZE_MAX;

  std::span<const QuickSignal> quick() const {
    return {reinterpret_cast<const QuickSignal*>(this + 1), quick_count};
  }

  /// At this length, at least eight bytes, a frame holds all signals, and these are up to 64 quick
  /// ones; else `kNeverFits`.
  std::size_t plain_bytes = kNeverFits;
  std::uint64_t last_word = 0;  ///< of the presence mask of a frame that holds all signals
  std::size_t presence_words = 0;
  std::size_t quick_count = 0;
  /// Bytes by which a frame holds all signals; `kNeverFits` when some signal is not always present.
  std::size_t bytes_for_all = 0;
  std::vector<SlowSignal> slow;
  const msgblk& message;
  std::vector<const sigblk*> records;
  std::vector<std::size_t> bytes_needed;
  std::vector<std::uint32_t> unconditional;  ///< indexes of signals that are not multiplexed
  /// Those that can be present; a multiplexor stands in front of the signals that it selects.
  std::vector<DependentSignal> dependent;
  std::vector<Multiplexor> multiplexors;
  std::vector<ValueRange> ranges;

 private:
  explicit FramePlan(const msgblk& of);
  void* operator new(std::size_t size, std::size_t signal_count);
  void operator delete(void* memory, std::size_t signal_count);

  void add(std::uint32_t index);
  void add_dependents();
  void add_dependent(std::uint32_t index, std::uint32_t multiplexor);
};

}  // namespace zelk

#endif

/// \file
/// Which signals hold the bits of a frame.

#ifndef ZELK_CHECK_LINT_OCCUPANCY_HPP
#define ZELK_CHECK_LINT_OCCUPANCY_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/signal_bits.hpp"

namespace zelk::check {

/// Words of 64 bits of the frame, bit n of the frame is bit n % 64 of word n / 64.
inline constexpr std::uint32_t kWordBits = 64;

/// Bit n of each byte becomes bit 7 - n: between the numbering of a database and that of
/// transmission (see `mirrored_bit`), in which Motorola signals run upwards.
constexpr std::uint64_t mirrored_bytes(std::uint64_t word) {
  word = (word & 0x5555555555555555) << 1 | (word >> 1 & 0x5555555555555555);
  word = (word & 0x3333333333333333) << 2 | (word >> 2 & 0x3333333333333333);
  return (word & 0x0F0F0F0F0F0F0F0F) << 4 | (word >> 4 & 0x0F0F0F0F0F0F0F0F);
}

/// Calls `visit(word, mask)` for each word below `words` that has bits of the signal.
template <typename Visit>
void for_each_word(const sigblk& signal, std::uint32_t words, const Visit& visit) {
  if (signal.length == 0) return;
  const bool mirrors = is_motorola(signal);
  const std::uint32_t first = mirrors ? mirrored_bit(signal.start_bit) : signal.start_bit;
  const std::uint32_t end = first + signal.length;
  for (std::uint32_t word = first / kWordBits; word < words && word * kWordBits < end; ++word) {
    const std::uint32_t base = word * kWordBits;
    const std::uint32_t low = std::max(first, base) - base;
    const std::uint32_t high = std::min(end - base, kWordBits);
    const std::uint64_t mask = low_bits(high) & ~low_bits(low);
    visit(word, mirrors ? mirrored_bytes(mask) : mask);
  }
}

/// The signal's bits of one word.
inline std::uint64_t mask_of(const sigblk& signal, std::uint32_t wanted) {
  std::uint64_t found = 0;
  for_each_word(signal, wanted + 1, [&](std::uint32_t word, std::uint64_t mask) {
    if (word == wanted) found = mask;
  });
  return found;
}

/// Some bits of a word of the frame, and the signal that holds them.
struct Holding {
  std::uint32_t word;
  std::uint64_t mask;
  std::uint32_t signal;
};

/// The signals that are in a frame together. Bits that several signals hold are no matter here.
class Occupancy {
 public:
  explicit Occupancy(std::uint32_t words) : words_(words) {}

  /// Calls `visit` for what other signals hold of these bits, as long as it returns true.
  template <typename Visit>
  void visit_others(const Holding& wanted, const Visit& visit) const {
    const Word& word = words_[wanted.word];
    if ((word.held & wanted.mask) == 0) return;
    for (const Holding& holding : word.holdings) {
      const bool is_other = holding.signal != wanted.signal && (holding.mask & wanted.mask);
      if (is_other && !visit(holding)) return;
    }
  }

  /// Some overlaps of a frame that is hopelessly overcrowded are not found.
  void take(const Holding& holding) {
    Word& word = words_[holding.word];
    if (word.holdings.size() < kMostHoldings) word.holdings.push_back(holding);
    word.held |= holding.mask;
  }

  /// Takes those bits that no other signal has.
  void take_free(Holding holding) {
    holding.mask &= ~words_[holding.word].held;
    if (holding.mask) take(holding);
  }

  /// Frees the bits of a word that the signal holds.
  void free(std::uint32_t index, std::uint32_t signal) {
    Word& word = words_[index];
    std::erase_if(word.holdings, [&](const Holding& held) { return held.signal == signal; });
    word.held = 0;
    for (const Holding& holding : word.holdings) word.held |= holding.mask;
  }

  /// Everything that is held.
  std::vector<Holding> holdings() const {
    std::vector<Holding> all;
    for (const Word& word : words_)
      all.insert(all.end(), word.holdings.begin(), word.holdings.end());
    return all;
  }

 private:
  static constexpr std::size_t kMostHoldings = 128;

  struct Word {
    std::uint64_t held = 0;
    std::vector<Holding> holdings;
  };

  std::vector<Word> words_;
};

}  // namespace zelk::check

#endif

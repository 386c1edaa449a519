/// \file
/// Bitmaps of 64-bit words: bit i % 64 of word i / 64 belongs to row i. Words stand in memory with
/// their lowest byte first, on every machine: these are the bytes of the columnar format, which
/// counts bits of a byte from the lowest one.

#ifndef ZELK_LOGS_COLUMNS_BITS_HPP
#define ZELK_LOGS_COLUMNS_BITS_HPP

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "base/byte_order.hpp"
#include "base/signal_bits.hpp"

namespace zelk::logs {

inline constexpr std::size_t kWordBits = 64;

inline bool is_set(const std::uint64_t* bitmap, std::size_t bit) {
  return (little_endian(bitmap[bit / kWordBits]) >> (bit % kWordBits) & 1) != 0;
}

constexpr std::size_t words_for(std::size_t bits) { return (bits + kWordBits - 1) / kWordBits; }

/// Appends `count` bits to a bitmap of `size` bits, behind which its last word has zeros; so it has
/// afterwards. One word behind the last bit may be written.
///
/// @param word_at  word_at(i) gives the new bits from 64 i on; what it gives beyond `count` is
/// ignored
template <typename WordAt>
void append_bits(std::uint64_t* bitmap, std::size_t size, std::size_t count,
                 const WordAt& word_at) {
  std::uint64_t* to = bitmap + size / kWordBits;
  const std::size_t shift = size % kWordBits;
  for (std::size_t i = 0; i * kWordBits < count; ++i, ++to) {
    const std::size_t rest = std::min(count - i * kWordBits, kWordBits);
    const std::uint64_t word = word_at(i) & low_bits(static_cast<unsigned>(rest));
    if (shift == 0) {
      *to = little_endian(word);
    } else {
      to[0] |= little_endian(word << shift);
      to[1] = little_endian(word >> (kWordBits - shift));
    }
  }
}

/// The bits of a bitmap from `first` on, for `append_bits`. One word behind the last bit is read.
inline auto bits_from(const std::uint64_t* bitmap, std::size_t first) {
  return [from = bitmap + first / kWordBits, shift = first % kWordBits](std::size_t i) {
    const std::uint64_t low = little_endian(from[i]) >> shift;
    return shift == 0 ? low : low | little_endian(from[i + 1]) << (kWordBits - shift);
  };
}

/// How many of `count` bits are clear.
template <typename WordAt>
std::size_t clear_bits(std::size_t count, const WordAt& word_at) {
  std::size_t set = 0;
  for (std::size_t i = 0; i * kWordBits < count; ++i) {
    const std::size_t rest = std::min(count - i * kWordBits, kWordBits);
    set +=
        static_cast<std::size_t>(std::popcount(word_at(i) & low_bits(static_cast<unsigned>(rest))));
  }
  return count - set;
}

/// Bits from bytes that are 0 or 1.
///
/// @param bytes  `count` of them, and memory for a multiple of 8
/// @param words  receives the bits, and zeros behind them in the last word
inline void pack_bits(const std::uint8_t* bytes, std::size_t count, std::uint64_t* words) {
  std::fill_n(words, words_for(count), 0);
  for (std::size_t at = 0; at < count; at += 8) {
    auto eight = load_little_endian<std::uint64_t>(bytes + at);
    // Bytes behind the last one may be anything, and must not reach into the product.
    eight &= low_bits(static_cast<unsigned>(8 * std::min<std::size_t>(count - at, 8)));
    // The product has byte k of the eight at bit 56 + k.
    words[at / kWordBits] |= little_endian(eight * 0x0102040810204080 >> 56 << (at % kWordBits));
  }
}

}  // namespace zelk::logs

#endif

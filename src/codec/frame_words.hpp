/// \file
/// The first bytes of a frame as words, and masks of signals.

#ifndef ZELK_CODEC_FRAME_WORDS_HPP
#define ZELK_CODEC_FRAME_WORDS_HPP

#include <cstddef>
#include <cstdint>

#include "base/byte_order.hpp"
#include "codec/bits.hpp"

namespace zelk {

inline constexpr std::size_t kWordBits = 64;
inline constexpr std::size_t kWordBytes = 8;

inline bool is_set(const std::uint64_t* mask, std::size_t index) {
  return (mask[index / kWordBits] >> (index % kWordBits) & 1) != 0;
}

inline void set(std::uint64_t* mask, std::size_t index) {
  mask[index / kWordBits] |= std::uint64_t{1} << (index % kWordBits);
}

/// The first eight bytes of a frame, zeros behind a shorter one, as a number in both byte orders.
struct FrameWords {
  FrameWords(const unsigned char* data, std::size_t length) : FrameWords(load(data, length)) {}
  explicit FrameWords(std::uint64_t word) : words{word, reversed_bytes(word)} {}

  static std::uint64_t load(const unsigned char* data, std::size_t length) {
    if (length < kWordBytes) {
      return length > 0 ? codec::load_bytes(data, static_cast<std::uint32_t>(length)) : 0;
    }
    return first_eight(data);
  }
  static std::uint64_t first_eight(const unsigned char* data) {
    return load_little_endian<std::uint64_t>(data);
  }

  std::uint64_t words[2];
};

}  // namespace zelk

#endif

/// \file
/// Where the bits of a signal lie in a frame, and how they are taken out and put in.
///
/// A signal of n bits, drawn with the least significant bit on the right. Its lowest bit lies at
/// `bit_offset` in the byte `lsb_byte`; the further bytes follow upwards (Intel) or downwards
/// (Motorola):
///
///     touched byte    byte_count - 1   ...       1           0
///                     . . n n n n n n  ...  n n n n n n n n  n n n n n . . .
///                         highest bit                                  lowest bit, offset 3
///
/// With the touched bytes in that order both byte orders are one: the value is the number that
/// they make, shifted down by the offset. Frames are pointers to the first data byte; the caller
/// makes sure that all bytes that a signal touches are there. Where the 16-bit arithmetic of
/// positions wraps, a signal reaches below the first byte: such bytes read as 0 and are not
/// written.

#ifndef ZELK_CODEC_BITS_HPP
#define ZELK_CODEC_BITS_HPP

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/byte_order.hpp"
#include "base/compiler.hpp"
#include "base/signal_bits.hpp"
#include "zelk/types.hpp"

namespace zelk::codec {

/// Longest signals, in bits, of the 32-bit, 64-bit and text operations. At every bit offset 89 bits
/// fit into three words; 90 do not.
inline constexpr unsigned kLongMax = 32;
inline constexpr unsigned kInt64Max = 64;
inline constexpr unsigned kStringMax = 89;

struct Position {
  std::uint32_t lsb_byte;
  std::uint32_t bit_offset;
  std::uint32_t byte_count;
  bool motorola;
};

constexpr Position locate(std::uint16_t start_bit, std::uint16_t length_bits, bool motorola) {
  const std::uint32_t lsb =
      motorola ? static_cast<std::uint16_t>(mirrored_bit(mirrored_bit(start_bit) + length_bits - 1))
               : start_bit;
  const std::uint32_t offset = lsb & 7;
  // For no bits at offset 0 the sum is -1, and shifted -1 again.
  const std::int32_t last = static_cast<std::int32_t>(length_bits + offset) - 1;
  return {lsb >> 3, offset, static_cast<std::uint32_t>((last >> 3) + 1), motorola};
}

inline Position locate(const sigblk& signal) {
  return locate(signal.start_bit, signal.length, is_motorola(signal));
}

/// Bits that the IEEE operations read and write, whatever the signal's length.
inline std::uint16_t ieee_length(const sigblk& signal) {
  return signal.value_type == ZELK_VALUE_IEEE_DOUBLE ? 64 : 32;
}

/// Bits that a signal has in a frame.
inline std::uint16_t length_in_frame(const sigblk& signal) {
  return is_ieee(signal) ? ieee_length(signal) : signal.length;
}

inline Position locate_in_frame(const sigblk& signal) {
  return locate(signal.start_bit, length_in_frame(signal), is_motorola(signal));
}

// --- Access records ---

zelk_sig_mask_t access_mask(const sigblk& signal);
/// Leaves `mask.mask` as it is for signals of 90 bits and more.
void fill_access_mask(const sigblk& signal, zelk_sig_mask_t& mask);

inline Position position_of(const zelk_sig_mask_t& mask) {
  return {mask.lsb_byte, mask.bit_offset, mask.byte_count, mask.motorola != 0};
}

// --- Extraction ---

/// 1 to 8 bytes, the first one lowest. Two loads that overlap cover any number without reaching
/// beyond.
ZELK_ALWAYS_INLINE std::uint64_t load_bytes(const unsigned char* bytes, std::uint32_t count) {
  if (count >= 4) {
    const auto low = load_little_endian<std::uint32_t>(bytes);
    const auto high = load_little_endian<std::uint32_t>(bytes + count - 4);
    return low | std::uint64_t{high} << (8 * (count - 4));
  }
  if (count == 1) return *bytes;
  const auto low = load_little_endian<std::uint16_t>(bytes);
  const auto high = load_little_endian<std::uint16_t>(bytes + count - 2);
  return low | std::uint32_t{high} << (8 * (count - 2));
}

/// The touched byte at `index`, counted from the lowest one.
inline std::uint8_t touched_byte(const unsigned char* frame, const Position& at,
                                 std::uint32_t index) {
  if (!at.motorola) return frame[at.lsb_byte + index];
  return index <= at.lsb_byte ? frame[at.lsb_byte - index] : std::uint8_t{0};
}

/// `low_word` of a signal that reaches below the first byte.
std::uint64_t low_word_at_wrap(const unsigned char* frame, Position at);

/// The lowest touched bytes, eight at most, as a number.
ZELK_ALWAYS_INLINE std::uint64_t low_word(const unsigned char* frame, const Position& at) {
  const std::uint32_t count = at.byte_count < 8 ? at.byte_count : 8;
  if (count == 0) return 0;
  if (!at.motorola) return load_bytes(frame + at.lsb_byte, count);
  if (count <= at.lsb_byte + 1) {
    const std::uint64_t reversed = load_bytes(frame + at.lsb_byte + 1 - count, count);
    return reversed_bytes(reversed) >> (64 - 8 * count);
  }
  return low_word_at_wrap(frame, at);
}

/// Up to 64 bits; those in a ninth byte are left out.
ZELK_ALWAYS_INLINE std::uint64_t extract_int64(const unsigned char* frame, const Position& at,
                                               unsigned length_bits) {
  return low_word(frame, at) >> at.bit_offset & low_bits(length_bits);
}

/// Up to 64 bits, all of them.
inline std::uint64_t extract_whole(const unsigned char* frame, const Position& at,
                                   unsigned length_bits) {
  std::uint64_t bits = low_word(frame, at) >> at.bit_offset;
  if (at.byte_count > 8 && at.bit_offset > 0) {
    bits |= std::uint64_t{touched_byte(frame, at, 8)} << (64 - at.bit_offset);
  }
  return bits & low_bits(length_bits);
}

/// The value of a signal in 32-bit words, the lowest first.
using Words = std::array<std::uint32_t, 3>;

inline Words words_of(std::uint64_t value) {
  return {static_cast<std::uint32_t>(value), static_cast<std::uint32_t>(value >> 32), 0};
}

/// Byte of a value, counted from the lowest one.
inline std::uint8_t byte_of(const Words& words, std::size_t index) {
  return static_cast<std::uint8_t>(words[index / 4] >> (index % 4 * 8));
}

/// Up to `kStringMax` bits; false, with nothing extracted, for more.
bool extract_string(const unsigned char* frame, const Position& at, unsigned length_bits,
                    Words& words);

// --- Insertion ---

/// Puts the lowest `length_bits` bits of a value into the frame. A value that is wider than the
/// signal spills into the bits above it in the layouts that are written without masking: up to 32
/// bits in five bytes, and more in nine.
///
/// @param length_bits  up to `kStringMax`; more are not written
void insert(const Words& value, std::uint16_t start_bit, std::uint16_t length_bits, bool motorola,
            unsigned char* frame);

}  // namespace zelk::codec

#endif

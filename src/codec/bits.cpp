#include "codec/bits.hpp"

#include <algorithm>

namespace zelk::codec {
namespace {

/// Mask of the valid bits in the topmost word of a value of up to `kStringMax` bits.
std::uint32_t top_mask(unsigned length_bits) {
  if (length_bits == 0) return 0;
  return static_cast<std::uint32_t>(low_bits((length_bits - 1) % 32 + 1));
}

/// The bits that a word loses from its top byte when it is shifted up.
std::uint32_t carry(std::uint8_t top_byte, std::uint32_t bit_offset) {
  return std::uint32_t{top_byte} >> (8 - bit_offset);
}

}  // namespace

// --- Access records ---

void fill_access_mask(const sigblk& signal, zelk_sig_mask_t& mask) {
  const Position at = locate(signal);
  if (signal.length <= kStringMax) mask.mask = top_mask(signal.length);
  mask.bit_offset = at.bit_offset;
  mask.motorola = at.motorola ? 1 : 0;
  mask.length = signal.length;
  mask.byte_count = at.byte_count;
  mask.lsb_byte = at.lsb_byte;
  mask.bit_span = signal.length + at.bit_offset;
  const std::int32_t last_bit = signal.start_bit + signal.length - 1;
  mask.min_data_length =
      at.motorola ? at.lsb_byte + 1 : static_cast<std::uint32_t>((last_bit >> 3) + 1);
}

zelk_sig_mask_t access_mask(const sigblk& signal) {
  zelk_sig_mask_t mask = {};
  fill_access_mask(signal, mask);
  return mask;
}

// --- Extraction ---

std::uint64_t low_word_at_wrap(const unsigned char* frame, Position at) {
  std::uint64_t word = 0;
  for (std::uint32_t i = 0; i < at.byte_count && i < 8; ++i) {
    word |= std::uint64_t{touched_byte(frame, at, i)} << (8 * i);
  }
  return word;
}

bool extract_string(const unsigned char* frame, const Position& at, unsigned length_bits,
                    Words& words) {
  constexpr std::uint32_t kTouchedMax = 12;
  if (length_bits > kStringMax || at.byte_count > kTouchedMax) return false;
  const std::uint64_t low = extract_whole(frame, at, kInt64Max);
  std::uint64_t high = 0;
  for (std::uint32_t i = 8; i < at.byte_count; ++i) {
    high |= std::uint64_t{touched_byte(frame, at, i)} << (8 * (i - 8));
  }
  words = {static_cast<std::uint32_t>(low), static_cast<std::uint32_t>(low >> 32),
           static_cast<std::uint32_t>(high >> at.bit_offset)};
  const std::size_t top = length_bits <= 32 ? 0 : length_bits <= 64 ? 1 : 2;
  words[top] &= top_mask(length_bits);
  std::fill(words.begin() + static_cast<std::ptrdiff_t>(top) + 1, words.end(), 0);
  return true;
}

// --- Insertion ---

namespace {

/// The value shifted up to its place.
Words shifted_value(const Words& in, const Position& at, unsigned length_bits) {
  const std::uint32_t offset = at.bit_offset;
  const std::uint32_t mask = top_mask(length_bits);
  if (at.byte_count <= 4) return {(in[0] & mask) << offset, 0, 0};
  const std::uint32_t low = in[0] << offset;
  const std::uint32_t low_carry = carry(byte_of(in, 3), offset);
  if (length_bits <= 32) return {low, low_carry, 0};
  if (at.byte_count <= 8) return {low, (in[1] & mask) << offset | low_carry, 0};
  const std::uint32_t middle = in[1] << offset | low_carry;
  const std::uint32_t middle_carry = carry(byte_of(in, 7), offset);
  if (length_bits <= 64) return {low, middle, middle_carry};
  return {low, middle, (in[2] & mask) << offset | middle_carry};
}

}  // namespace

void insert(const Words& value, std::uint16_t start_bit, std::uint16_t length_bits, bool motorola,
            unsigned char* frame) {
  if (length_bits == 0 || length_bits > kStringMax) return;
  const Position at = locate(start_bit, length_bits, motorola);
  const Words words = shifted_value(value, at, length_bits);
  std::array<std::uint8_t, 12> bytes = {};
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = byte_of(words, i);

  const std::uint32_t last = at.byte_count - 1;
  const std::uint32_t above = (at.bit_offset + length_bits) & 7;
  const auto keep = [&](std::uint32_t index, std::uint64_t mask) {
    bytes[index] =
        static_cast<std::uint8_t>(bytes[index] | (touched_byte(frame, at, index) & mask));
  };
  keep(0, low_bits(at.bit_offset));
  if (above != 0) keep(last, ~low_bits(above));
  for (std::uint32_t i = 0; i <= last; ++i) {
    if (!motorola) {
      frame[at.lsb_byte + i] = bytes[i];
    } else if (i <= at.lsb_byte) {
      frame[at.lsb_byte - i] = bytes[i];
    }
  }
}

}  // namespace zelk::codec

/// \file
/// Digits, several at a time: up to sixteen hexadecimal ones, eight decimal ones.

#ifndef ZELK_LOGS_FORMS_HEX_HPP
#define ZELK_LOGS_FORMS_HEX_HPP

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/byte_order.hpp"
#include "base/compiler.hpp"

namespace zelk::logs {

inline constexpr int kNoDigit = -1;

/// Values of all characters as hexadecimal digits.
inline constexpr std::array<std::int8_t, 256> kHexDigits = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(kNoDigit);
  for (const std::string_view digits : {"0123456789ABCDEF", "0123456789abcdef"}) {
    for (std::size_t i = 0; i < digits.size(); ++i)
      values[static_cast<unsigned char>(digits[i])] = static_cast<std::int8_t>(i);
  }
  return values;
}();

/// Value of a hexadecimal digit; `kNoDigit` for another character.
inline int digit_value(char c) { return kHexDigits[static_cast<unsigned char>(c)]; }

// Eight characters as the bytes of a number, the first one lowest.

constexpr std::uint64_t repeated(std::uint8_t byte) { return 0x0101010101010101ull * byte; }

inline std::uint64_t load_characters(const char* at) {
  return load_little_endian<std::uint64_t>(at);
}

/// The bytes that eight digits stand for.
///
/// @param bytes  receives four of them, the first one lowest
/// @return whether all are digits
inline bool decode_digits(std::uint64_t characters, std::uint32_t& bytes) {
  // Letters, and none of the digits, have bit 6; their low bits count from 1.
  const std::uint64_t letters = characters >> 6 & repeated(1);
  std::uint64_t values = (characters & repeated(0x0F)) + 9 * letters;
  // What they would be spelled as shows whether they were digits.
  const std::uint64_t big = (values + repeated(6)) >> 4 & repeated(1);  // 10 and more
  const std::uint64_t spelled = (values + repeated('0') + 7 * big) | (characters & 32 * big);
  const bool are_digits = spelled == characters && (values & repeated(0xF0)) == 0;
  values = (values << 4 | values >> 8) & 0x00FF00FF00FF00FF;
  values = (values | values >> 8) & 0x0000FFFF0000FFFF;
  bytes = static_cast<std::uint32_t>(values | values >> 16);
  return are_digits;
}

/// The number that eight decimal digits stand for, given as their values: the first one lowest, and
/// the highest of the number.
constexpr std::uint64_t joined_digits(std::uint64_t digits) {
  // Pairs, then fours, then all: the upper of two neighbours is the lower one's tens.
  digits = (digits * 10 + (digits >> 8)) & 0x00FF00FF00FF00FF;
  digits = (digits * 100 + (digits >> 16)) & 0x0000FFFF0000FFFF;
  return (digits * 10000 + (digits >> 32)) & 0xFFFFFFFF;
}

/// The number that eight decimal digits spell; beyond 99,999,999 for other characters.
constexpr std::uint64_t number_of(std::uint64_t characters) {
  const std::uint64_t digits = characters - repeated('0');
  const std::uint64_t others = (digits | (digits + repeated(0x76))) & repeated(0x80);
  return others == 0 ? joined_digits(digits) : UINT64_MAX;
}

/// What stands in front of the first character that is no digit.
struct HexBytes {
  unsigned digits;      ///< 0 to 16
  std::uint64_t bytes;  ///< that they stand for, the first one lowest; zeros behind them. Of an odd
                        ///< number of digits, the last byte means nothing
};

/// Up to 16 digits as bytes.
///
/// @param at  16 characters that can be read
inline HexBytes portable_hex_bytes(const char* at) {
  std::uint32_t halves[2];
  if (decode_digits(load_characters(at), halves[0]) &&
      decode_digits(load_characters(at + 8), halves[1]))
    return {16, halves[0] | std::uint64_t{halves[1]} << 32};
  HexBytes found{0, 0};
  for (int digit = 0; found.digits < 16; ++found.digits) {
    digit = digit_value(at[found.digits]);
    if (digit == kNoDigit) break;
    found.bytes |= std::uint64_t(digit) << (4 * (found.digits ^ 1));
  }
  return found;
}

#if ZELK_HAS_SSE2
/// Likewise, with all characters at a time.
inline HexBytes hex_bytes(const char* at) {
  const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
  // Characters that are none are beyond 9 and beyond 5, without a sign.
  const __m128i numbers = _mm_sub_epi8(characters, _mm_set1_epi8('0'));
  const __m128i letters =
      _mm_sub_epi8(_mm_or_si128(characters, _mm_set1_epi8(0x20)), _mm_set1_epi8('a'));
  const __m128i is_number = _mm_cmpeq_epi8(_mm_min_epu8(numbers, _mm_set1_epi8(9)), numbers);
  const __m128i is_letter = _mm_cmpeq_epi8(_mm_min_epu8(letters, _mm_set1_epi8(5)), letters);
  const __m128i values =
      _mm_or_si128(_mm_and_si128(is_number, numbers),
                   _mm_and_si128(is_letter, _mm_add_epi8(letters, _mm_set1_epi8(10))));
  const int digits = _mm_movemask_epi8(_mm_or_si128(is_number, is_letter));
  // Of two characters in 16 bits, the first one is the lower one.
  const __m128i pairs = _mm_and_si128(
      _mm_or_si128(_mm_slli_epi16(values, 4), _mm_srli_epi16(values, 8)), _mm_set1_epi16(0xFF));
  std::uint64_t bytes = 0;
  _mm_storel_epi64(reinterpret_cast<__m128i*>(&bytes), _mm_packus_epi16(pairs, pairs));
  const auto count = static_cast<unsigned>(std::countr_one(static_cast<unsigned>(digits)));
  // Behind 15 digits there is nothing to clear: the last character has the value 0.
  if (count < 15) bytes &= (std::uint64_t{1} << (4 * (count + count % 2))) - 1;
  return {count, bytes};
}
#else
inline HexBytes hex_bytes(const char* at) { return portable_hex_bytes(at); }
#endif

}  // namespace zelk::logs

#endif

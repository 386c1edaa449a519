/// \file
/// Hexadecimal digits, one and eight at a time.

#ifndef ZELK_LOGS_FORMS_HEX_HPP
#define ZELK_LOGS_FORMS_HEX_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

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
  std::uint64_t characters = 0;
  std::memcpy(&characters, at, sizeof characters);
  return characters;
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

}  // namespace zelk::logs

#endif

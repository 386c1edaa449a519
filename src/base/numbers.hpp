/// \file
/// Numbers as the format spells them, independent of the process's locale.

#ifndef ZELK_BASE_NUMBERS_HPP
#define ZELK_BASE_NUMBERS_HPP

#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>

namespace zelk {

/// Value of an unsigned decimal literal (digits, then optionally a fraction and an exponent),
/// rounded to nearest. Beyond the range of a double it is the largest finite double: infinity could
/// not be written back.
double literal_to_double(std::string_view literal);

/// An integer of a file.
struct WholeLiteral {
  std::uint32_t value;
  bool is_short;  ///< it may stand for a count
};

/// An integer as `strtoul` in base 0 reads it, so that a leading zero means octal; but where that
/// gives a count, which is at most 32767, the decimal value counts.
///
/// @param digits  decimal digits and nothing else
/// @return none for values beyond 32 bits
inline std::optional<WholeLiteral> whole_literal(std::string_view digits) {
  constexpr std::uint32_t kLargestCount = 32767;
  std::uint64_t decimal = 0;
  for (const char digit : digits) {
    decimal = decimal * 10 + static_cast<unsigned>(digit - '0');
    if (decimal > UINT32_MAX) return std::nullopt;
  }
  auto prefixed = static_cast<std::uint32_t>(decimal);
  if (digits.front() == '0')
    std::from_chars(digits.data(), digits.data() + digits.size(), prefixed, 8);
  const bool is_short = prefixed <= kLargestCount;
  return WholeLiteral{is_short ? static_cast<std::uint32_t>(decimal) : prefixed, is_short};
}

/// Value of `text` when all of it is a decimal number with an optional sign; none for anything
/// else, such as "0x10", " 5" or "inf".
std::optional<double> parse_number(std::string_view text);

/// All of `text` as `std::from_chars` reads it; none when something is left over, or when the value
/// is out of the type's range.
///
/// @param format  base of an integer, or `std::chars_format`
template <typename Number, typename... Format>
std::optional<Number> parse_whole(std::string_view text, Format... format) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, format...);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

/// A number as "%.14G" writes it in the C locale; infinities as the largest finite doubles,
/// not-a-number as 0.
class NumberText {
 public:
  explicit NumberText(double number);
  std::string_view view() const { return {buffer_.data(), size_}; }

 private:
  bool set_short(double number);

  std::array<char, 32> buffer_;  // at most 24 characters
  std::size_t size_ = 0;
};

}  // namespace zelk

#endif

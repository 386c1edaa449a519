#include "base/numbers.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "base/characters.hpp"

namespace zelk {
namespace {

constexpr double kLargestNumber = std::numeric_limits<double>::max();
constexpr int kWrittenDigits = 14;
constexpr std::size_t kShortDecimal = 16;  // 15 digits and the point
constexpr std::array<double, kShortDecimal> kPowersOfTen = {
    1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
constexpr std::int64_t kHugeExponent = std::numeric_limits<std::int64_t>::max() / 4;

/// Power of ten of the leading non-zero digit of a mantissa such as "0.0012" (-3). There is such a
/// digit.
std::int64_t leading_power(std::string_view mantissa) {
  const auto leading = static_cast<std::int64_t>(mantissa.find_first_not_of("0."));
  const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  return leading < point ? point - leading - 1 : point - leading;
}

/// Value of the text behind "e", cut to a size that no mantissa can make up for; 0 for an empty
/// text.
std::int64_t exponent_value(std::string_view text) {
  if (text.empty()) return 0;
  const std::string_view digits = text.substr(text[0] == '-' || text[0] == '+' ? 1 : 0);
  std::int64_t magnitude = kHugeExponent;  // stays when the digits are out of range
  std::from_chars(digits.data(), digits.data() + digits.size(), magnitude);
  magnitude = std::min(magnitude, kHugeExponent);
  return text[0] == '-' ? -magnitude : magnitude;
}

/// Whether a literal outside the range of a double is too large; else it is too small.
bool is_overflow(std::string_view literal) {
  const std::size_t mark = std::min(literal.find_first_of("eE"), literal.size());
  const std::string_view exponent = literal.substr(std::min(mark + 1, literal.size()));
  return leading_power(literal.substr(0, mark)) + exponent_value(exponent) > 0;
}

/// Value of a literal of at most 15 digits and a point, or of 16 digits; none for others. Digits
/// and power of ten are exact doubles, so their quotient is the correctly rounded value; 16 digits
/// are rounded once, by the conversion.
std::optional<double> short_decimal(std::string_view literal) {
  if (literal.size() > kShortDecimal) return std::nullopt;
  std::int64_t digits = 0;
  std::size_t point = literal.size() - 1;  // without a point there is no fraction
  for (std::size_t i = 0; i < literal.size(); ++i) {
    if (is_digit(literal[i])) {
      digits = digits * 10 + (literal[i] - '0');
    } else if (literal[i] == '.') {
      point = i;
    } else {
      return std::nullopt;
    }
  }
  return static_cast<double>(digits) / kPowersOfTen[literal.size() - 1 - point];
}

}  // namespace

double literal_to_double(std::string_view literal) {
  if (const auto exact = short_decimal(literal)) return *exact;
  double value = 0.0;
  const auto result = std::from_chars(literal.data(), literal.data() + literal.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  return is_overflow(literal) ? kLargestNumber : 0.0;
}

std::optional<double> parse_number(std::string_view text) {
  const bool has_sign = !text.empty() && (text[0] == '-' || text[0] == '+');
  const std::string_view literal = text.substr(has_sign ? 1 : 0);
  const bool starts_as_number =
      !literal.empty() && (is_digit(literal[0]) || (literal.size() > 1 && literal[0] == '.'));
  if (!starts_as_number) return std::nullopt;
  double value = 0.0;
  const char* end = literal.data() + literal.size();
  const auto result = std::from_chars(literal.data(), end, value);
  if (result.ptr != end || result.ec == std::errc::invalid_argument) return std::nullopt;
  if (result.ec == std::errc::result_out_of_range) value = literal_to_double(literal);
  return text[0] == '-' ? -value : value;
}

NumberText::NumberText(double number) : buffer_() {
  if (std::isnan(number)) number = 0.0;
  number = std::clamp(number, -kLargestNumber, kLargestNumber);
  const double magnitude = std::abs(number);
  const bool has_no_exponent = number == 0.0 || (magnitude >= 1e-4 && magnitude < 1e14);
  if (has_no_exponent && set_short(number)) return;
  char* const end = buffer_.data() + buffer_.size();
  const auto result =
      std::to_chars(buffer_.data(), end, number, std::chars_format::general, kWrittenDigits);
  std::replace(buffer_.data(), result.ptr, 'e', 'E');
  size_ = static_cast<std::size_t>(result.ptr - buffer_.data());
}

/// The short way for a number that is written without an exponent: when the shortest text that is
/// read back as the same double has no more digits than are written, rounding to that many gives it
/// too.
bool NumberText::set_short(double number) {
  char* const end = buffer_.data() + buffer_.size();
  const auto result = std::to_chars(buffer_.data(), end, number, std::chars_format::fixed);
  if (result.ec != std::errc{}) return false;
  size_ = static_cast<std::size_t>(result.ptr - buffer_.data());
  const std::string_view digits = view().substr(std::min(view().find_first_not_of("-0."), size_));
  const bool has_point = std::find(digits.begin(), digits.end(), '.') != digits.end();
  return digits.size() - (has_point ? 1 : 0) <= kWrittenDigits;
}

}  // namespace zelk

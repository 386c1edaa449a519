#include "base/decimal.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "base/characters.hpp"
#include "base/numbers.hpp"

namespace zelk {

namespace {

// No two decimals of up to 15 digits are the same double: a text of so few digits is the shortest
// one of its double.
constexpr std::int64_t kLargest = 1'000'000'000'000'000;
constexpr int kLargestExponent = 15;
constexpr int kMostDecimals = 12;

/// digits * 10^exponent
struct Decimal {
  std::int64_t digits;
  int exponent;
};

std::int64_t power_of_ten(int exponent) {
  std::int64_t power = 1;
  for (; exponent > 0; --exponent) power *= 10;
  return power;
}

/// `std::to_chars` alone would write 100000 as 1e+05, which is shorter. In fixed notation it writes
/// all digits of large floats, also those that are not needed to tell them: these come from the
/// notation with an exponent.
template <typename Number>
char* put_shortest(char* at, Number value) {
  constexpr Number kExactBelow = Number{1} / std::numeric_limits<Number>::epsilon();
  const Number size = std::abs(value);
  char* const end = at + kNumberBytes;
  if (size == 0 || (size >= static_cast<Number>(1e-4) && size < kExactBelow))
    return std::to_chars(at, end, value, std::chars_format::fixed).ptr;
  char* const stop = std::to_chars(at, end, value, std::chars_format::scientific).ptr;
  if (!(size >= kExactBelow && size < static_cast<Number>(1e16))) return stop;
  char* const mark = std::find(at, stop, 'e');
  const int exponent = (mark[2] - '0') * 10 + (mark[3] - '0');  // of two digits, behind a plus
  char* const digits = at + (*at == '-' ? 1 : 0);
  char* const whole_end = digits + 1 + exponent;
  // No fraction is left of so large a number: its digits move over the point, and zeros follow.
  char* const moved = mark > digits + 1 ? std::copy(digits + 2, mark, digits + 1) : digits + 1;
  std::fill(moved, std::max(moved, whole_end), '0');
  return whole_end;
}

/// The shortest decimal of `value`; none for one of more than 15 digits or beyond the exponents
/// used here.
std::optional<Decimal> decimal_of(double value) {
  if (!std::isfinite(value)) return std::nullopt;
  std::array<char, kNumberBytes> buffer;
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::scientific);
  if (error != std::errc()) return std::nullopt;
  // "-1.25e-02": the number without its point, and the power of ten of its last digit.
  const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  const std::size_t mark = text.find('e');
  const std::size_t point = std::min(text.find('.'), mark);
  std::string digits(text.substr(0, mark));
  if (point < mark) digits.erase(point, 1);
  const int decimals = point < mark ? static_cast<int>(mark - point) - 1 : 0;
  const std::size_t sign = text[mark + 1] == '+' ? 1 : 0;
  const auto number = parse_whole<std::int64_t>(digits);
  const auto power = parse_whole<int>(text.substr(mark + 1 + sign));
  if (!number || std::abs(*number) >= kLargest || std::abs(*power - decimals) > kLargestExponent)
    return std::nullopt;
  return Decimal{*number, *power - decimals};
}

/// The digits of `decimal` in units of 10^-decimals; none when they are too many.
std::optional<std::int64_t> in_units(const Decimal& decimal, int decimals) {
  const int shift = decimal.exponent + decimals;
  if (shift < 0 || shift > kLargestExponent) return std::nullopt;
  const std::int64_t power = power_of_ten(shift);
  if (std::abs(decimal.digits) > kLargest / power) return std::nullopt;
  return decimal.digits * power;
}

/// magnitude / 10^decimals, without needless zeros.
char* put_with_point(char* at, std::uint64_t magnitude, std::size_t decimals) {
  while (decimals > 0 && magnitude % 10 == 0) {
    magnitude /= 10;
    --decimals;
  }
  if (decimals == 0) return std::to_chars(at, at + kNumberBytes, magnitude).ptr;
  std::array<char, 20> digits;
  const char* const end =
      std::to_chars(digits.data(), digits.data() + digits.size(), magnitude).ptr;
  const auto count = static_cast<std::size_t>(end - digits.data());
  if (count <= decimals) {
    *at++ = '0';
    *at++ = '.';
    at = std::fill_n(at, decimals - count, '0');
    return std::copy_n(digits.data(), count, at);
  }
  at = std::copy_n(digits.data(), count - decimals, at);
  *at++ = '.';
  return std::copy_n(end - decimals, decimals, at);
}

}  // namespace

char* put_double(char* at, double value) { return put_shortest(at, value); }

char* put_float(char* at, float value) { return put_shortest(at, value); }

char* put_hex(char* at, std::uint64_t number, int digits) {
  std::array<char, 16> buffer;
  const char* const end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, 16).ptr;
  at = std::fill_n(at, std::max<std::ptrdiff_t>(digits - (end - buffer.data()), 0), '0');
  return std::transform(static_cast<const char*>(buffer.data()), end, at, to_upper);
}

char* put_integer(char* at, std::int64_t raw, bool is_signed) {
  if (is_signed) return std::to_chars(at, at + kNumberBytes, raw).ptr;
  return std::to_chars(at, at + kNumberBytes, static_cast<std::uint64_t>(raw)).ptr;
}

DecimalScale::DecimalScale(double factor, double offset) : factor_(factor), offset_(offset) {
  const std::optional<Decimal> step = decimal_of(factor);
  const std::optional<Decimal> start = decimal_of(offset);
  if (!step || !start) return;
  const int decimals = std::max({0, -step->exponent, -start->exponent});
  if (decimals > kMostDecimals) return;
  const std::optional<std::int64_t> multiplier = in_units(*step, decimals);
  const std::optional<std::int64_t> addend = in_units(*start, decimals);
  if (!multiplier || !addend) return;
  multiplier_ = *multiplier;
  addend_ = *addend;
  decimals_ = static_cast<std::size_t>(decimals);
  limit_ = (kLargest - 1 - std::abs(addend_)) / std::max<std::int64_t>(std::abs(multiplier_), 1);
}

char* DecimalScale::put(char* at, std::int64_t raw, bool is_signed) const {
  const bool is_huge = raw < 0 && !is_signed;  // above 2^63
  if (is_huge || raw > limit_ || raw < -limit_) {
    const double number =
        is_signed ? static_cast<double>(raw) : static_cast<double>(static_cast<std::uint64_t>(raw));
    return put_double(at, number * factor_ + offset_);
  }
  const std::int64_t units = raw * multiplier_ + addend_;
  if (units < 0) *at++ = '-';
  return put_with_point(at, static_cast<std::uint64_t>(std::abs(units)), decimals_);
}

}  // namespace zelk

/// \file
/// Numbers as outputs spell them, put into a buffer: physical values in decimal, identifiers in
/// hexadecimal. Independent of the process's locale.

#ifndef ZELK_BASE_DECIMAL_HPP
#define ZELK_BASE_DECIMAL_HPP

#include <cstddef>
#include <cstdint>

namespace zelk {

/// Room that every number of this file fits into.
inline constexpr std::size_t kNumberBytes = 40;

/// Puts the shortest text that reads back as `value`: "0.1", "655.35", "nan", "-inf"; below 0.0001
/// and from 10^16 on with an exponent, "1e+20".
///
/// @param at  has room for `kNumberBytes`
/// @return where the text ends
char* put_double(char* at, double value);
/// Likewise, the shortest that reads back as this float.
char* put_float(char* at, float value);

/// Puts at least `digits` hexadecimal digits, in capitals and without "0x".
///
/// @param digits  at most 16
char* put_hex(char* at, std::uint64_t number, int digits);

/// Puts a whole number; `is_signed` false takes `raw` as unsigned.
char* put_integer(char* at, std::int64_t raw, bool is_signed);

/// physical = raw * factor + offset, as text.
///
/// Databases state factors and offsets in decimal, and so the value is computed in decimal:
/// 3 * 0.1 is "0.3", although in binary arithmetic it comes out as 0.30000000000000004. Values
/// beyond 15 digits, or of factors and offsets with many of them, are computed in binary.
class DecimalScale {
 public:
  DecimalScale(double factor, double offset);

  /// @param at         has room for `kNumberBytes`
  /// @param is_signed  false takes `raw` as unsigned
  /// @return where the text ends
  char* put(char* at, std::int64_t raw, bool is_signed) const;

 private:
  double factor_;
  double offset_;
  // raw * factor + offset = (raw * multiplier_ + addend_) / 10^decimals_, for raw values from
  // -limit_ to limit_; a negative limit for none.
  std::int64_t multiplier_ = 0;
  std::int64_t addend_ = 0;
  std::int64_t limit_ = -1;
  std::size_t decimals_ = 0;
};

}  // namespace zelk

#endif

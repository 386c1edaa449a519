#include "codec/conversion.hpp"

#include <limits>

namespace zelk::codec {
namespace {

template <typename Integer>
Integer saturated(double number) {
  using Limits = std::numeric_limits<Integer>;
  // The first number above the type is a power of two, and so a double.
  constexpr double kLow = static_cast<double>(Limits::min());
  constexpr Integer kHalf = Limits::max() / 2 + 1;
  constexpr double kAbove = 2.0 * static_cast<double>(kHalf);
  if (std::isnan(number)) return 0;
  if (number >= kAbove) return Limits::max();
  return number <= kLow ? Limits::min() : static_cast<Integer>(number);
}

}  // namespace

std::int32_t to_int32(double number) { return saturated<std::int32_t>(number); }
std::int64_t to_int64(double number) { return saturated<std::int64_t>(number); }
std::uint64_t to_uint64(double number) { return saturated<std::uint64_t>(number); }

ZelkSigvalueResult to_raw(double physical, const sigblk& signal, std::uint32_t& raw) {
  const double rounded = rounded_quotient(physical, signal.factor, signal.offset);
  raw = is_signed(signal) ? static_cast<std::uint32_t>(to_int32(rounded))
                          : static_cast<std::uint32_t>(to_int64(rounded));
  return range_test(physical, signal);
}

ZelkSigvalueResult to_raw(double physical, const sigblk& signal, std::int64_t& raw) {
  const double rounded = rounded_quotient(physical, signal.factor, signal.offset);
  raw = is_signed(signal) ? to_int64(rounded) : static_cast<std::int64_t>(to_uint64(rounded));
  return range_test(physical, signal);
}

ZelkSigvalueResult to_raw(double physical, const sigblk& signal, double& raw) {
  raw = (physical - signal.offset) / signal.factor;
  return range_test(physical, signal);
}

}  // namespace zelk::codec

/// \file
/// Conversion between raw and physical values.

#ifndef ZELK_CODEC_CONVERSION_HPP
#define ZELK_CODEC_CONVERSION_HPP

#include <cmath>
#include <cstdint>

#include "base/signal_bits.hpp"
#include "zelk/types.hpp"

namespace zelk::codec {

inline ZelkSigvalueResult range_test(double physical, const sigblk& signal) {
  if (signal.minimum == 0.0 && signal.maximum == 0.0) return ZelkSigvalueOk;
  const bool is_outside = physical > signal.maximum || signal.minimum > physical;
  return is_outside ? ZelkSigvalueOutOfRange : ZelkSigvalueOk;
}

inline ZelkSigvalueResult to_physical(double raw, const sigblk& signal, double& physical) {
  physical = raw * signal.factor + signal.offset;
  return range_test(physical, signal);
}

inline ZelkSigvalueResult to_physical(std::uint32_t raw, const sigblk& signal, double& physical) {
  const auto number = is_signed(signal) ? static_cast<double>(static_cast<std::int32_t>(raw))
                                        : static_cast<double>(raw);
  return to_physical(number, signal, physical);
}

inline ZelkSigvalueResult to_physical(std::int64_t raw, const sigblk& signal, double& physical) {
  // The test of the value's own sign spares all but the largest unsigned values the slower way.
  const double number = is_signed(signal) || raw >= 0
                            ? static_cast<double>(raw)
                            : static_cast<double>(static_cast<std::uint64_t>(raw));
  return to_physical(number, signal, physical);
}

/// (physical - offset) / factor, rounded half away from zero but not yet cut to a whole number.
inline double rounded_quotient(double physical, double factor, double offset) {
  const double quotient = (physical - offset) / factor;
  return quotient + std::copysign(0.5, quotient);
}

/// Cut toward zero; the nearest value of the type for numbers beyond it, 0 for not-a-number.
std::int32_t to_int32(double number);
std::int64_t to_int64(double number);
std::uint64_t to_uint64(double number);

ZelkSigvalueResult to_raw(double physical, const sigblk& signal, std::uint32_t& raw);
ZelkSigvalueResult to_raw(double physical, const sigblk& signal, std::int64_t& raw);
ZelkSigvalueResult to_raw(double physical, const sigblk& signal, double& raw);

}  // namespace zelk::codec

#endif

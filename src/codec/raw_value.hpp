/// \file
/// Raw values: what the bits of a signal mean as a number.

#ifndef ZELK_CODEC_RAW_VALUE_HPP
#define ZELK_CODEC_RAW_VALUE_HPP

#include <bit>
#include <cstdint>
#include <optional>

#include "codec/bits.hpp"

namespace zelk::codec {

/// Two's complement of `length_bits` (1 to 64) bits, extended to 64.
constexpr std::int64_t sign_extended(std::uint64_t bits, unsigned length_bits) {
  const std::uint64_t sign = std::uint64_t{1} << (length_bits - 1);
  return static_cast<std::int64_t>((bits ^ sign) - sign);
}

// Two's complement of as many bits as the signal has.

inline std::uint32_t sign_handled(std::uint32_t raw, const sigblk& signal) {
  if (!is_signed(signal) || signal.length == 0 || signal.length > kLongMax) return raw;
  return static_cast<std::uint32_t>(sign_extended(raw, signal.length));
}

inline std::int64_t sign_handled64(std::uint64_t raw, const sigblk& signal) {
  if (!is_signed(signal) || signal.length == 0) return static_cast<std::int64_t>(raw);
  return sign_extended(raw, signal.length);
}

// The same for a value that an access record of another length gave: of a signed signal of n bits,
// 2^n is subtracted from what is not below 2^(n - 1). Bits above the signal stay.
std::uint32_t record_sign_handled(std::uint32_t raw, const sigblk& signal);
std::uint64_t record_sign_handled64(std::uint64_t raw, const sigblk& signal);

/// The number whose 32 or 64 bits, by the signal's value type, these are.
inline double ieee_value(std::uint64_t bits, const sigblk& signal) {
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE) return std::bit_cast<double>(bits);
  return double{std::bit_cast<float>(static_cast<std::uint32_t>(bits))};
}

/// The 32-bit raw value by an access record, without asking whether the frame holds the signal.
ZelkSigvalueResult read_masked(const unsigned char* frame, const zelk_sig_mask_t& mask,
                               const sigblk& signal, std::optional<std::uint32_t>& raw);

}  // namespace zelk::codec

#endif

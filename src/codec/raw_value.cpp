#include "codec/raw_value.hpp"

namespace zelk::codec {
namespace {

/// 2^n, modulo 2^64, for what is not below 2^(n - 1); else 0. Of no bits that is 1 for all but 0.
std::uint64_t wrapped_by(std::uint64_t raw, const sigblk& signal) {
  if (!is_signed(signal) || signal.length > kInt64Max || raw <= low_bits(signal.length) / 2) {
    return 0;
  }
  return low_bits(signal.length) + 1;
}

}  // namespace

std::uint32_t record_sign_handled(std::uint32_t raw, const sigblk& signal) {
  return raw - static_cast<std::uint32_t>(wrapped_by(raw, signal));
}

std::uint64_t record_sign_handled64(std::uint64_t raw, const sigblk& signal) {
  return raw - wrapped_by(raw, signal);
}

ZelkSigvalueResult read_masked(const unsigned char* frame, const zelk_sig_mask_t& mask,
                               const sigblk& signal, std::optional<std::uint32_t>& raw) {
  if (mask.length > kInt64Max) return ZelkSigvalueTooLong;
  const std::uint64_t bits = low_word(frame, position_of(mask)) >> mask.bit_offset & mask.mask;
  raw = static_cast<std::uint32_t>(bits);
  if (!is_signed(signal)) return ZelkSigvalueOk;
  if (signal.length > kLongMax) return ZelkSigvalueTooLong;
  raw = record_sign_handled(*raw, signal);
  return ZelkSigvalueOk;
}

}  // namespace zelk::codec

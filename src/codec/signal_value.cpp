#include "codec/signal_value.hpp"

#include <bit>

#include "codec/presence.hpp"

namespace zelk::codec {

// --- Reading ---

ZelkSigvalueResult read(const unsigned char* frame, const sigblk& signal,
                        std::optional<std::uint32_t>& raw) {
  if (signal.length > kInt64Max) return ZelkSigvalueTooLong;
  raw = static_cast<std::uint32_t>(extract_int64(frame, locate(signal), signal.length));
  if (is_signed(signal) && signal.length > kLongMax) return ZelkSigvalueTooLong;
  raw = sign_handled(*raw, signal);
  return presence(frame, signal);
}

ZelkSigvalueResult read(const unsigned char* frame, const sigblk& signal,
                        std::optional<std::int64_t>& raw) {
  if (signal.length > kInt64Max) return ZelkSigvalueTooLong;
  raw = sign_handled64(extract_int64(frame, locate(signal), signal.length), signal);
  return presence(frame, signal);
}

ZelkSigvalueResult read(const unsigned char* frame, const sigblk& signal,
                        std::optional<std::uint64_t>& raw) {
  if (signal.length > kInt64Max) return ZelkSigvalueTooLong;
  const std::uint64_t bits = extract_whole(frame, locate(signal), signal.length);
  raw = static_cast<std::uint64_t>(sign_handled64(bits, signal));
  return presence(frame, signal);
}

ZelkSigvalueResult read(const unsigned char* frame, const sigblk& signal,
                        std::optional<double>& raw) {
  if (!is_ieee(signal)) return ZelkSigvalueWrongType;
  raw = ieee_value(extract_whole(frame, locate_in_frame(signal), ieee_length(signal)), signal);
  return presence(frame, signal);
}

ZelkSigvalueResult read(const unsigned char* frame, const zelk_sig_mask_t& mask,
                        const sigblk& signal, std::optional<std::uint32_t>& raw) {
  const ZelkSigvalueResult result = read_masked(frame, mask, signal, raw);
  return result != ZelkSigvalueOk ? result : presence(frame, signal);
}

/// Up to 32 bits the result is one of 32 bits, extended.
ZelkSigvalueResult read(const unsigned char* frame, const zelk_sig_mask_t& mask,
                        const sigblk& signal, std::optional<std::int64_t>& raw) {
  if (signal.length > kInt64Max) return ZelkSigvalueTooLong;
  const std::uint64_t bits = low_word(frame, position_of(mask)) >> mask.bit_offset & mask.mask;
  if (is_signed(signal) && signal.length <= kLongMax) {
    raw = static_cast<std::int32_t>(record_sign_handled(static_cast<std::uint32_t>(bits), signal));
  } else {
    raw = static_cast<std::int64_t>(record_sign_handled64(bits, signal));
  }
  return presence(frame, signal);
}

ZelkSigvalueResult read(const unsigned char* frame, const zelk_sig_mask_t& mask,
                        const sigblk& signal, std::optional<std::uint64_t>& raw) {
  if (mask.length > kInt64Max || signal.length > kInt64Max) return ZelkSigvalueTooLong;
  raw = record_sign_handled64(extract_whole(frame, position_of(mask), mask.length), signal);
  return presence(frame, signal);
}

ZelkSigvalueResult read(const unsigned char* frame, const zelk_sig_mask_t& mask,
                        const sigblk& signal, std::optional<double>& raw) {
  if (!is_ieee(signal)) return ZelkSigvalueWrongType;
  if (mask.length != 32 && mask.length != 64) return ZelkSigvalueTooLong;
  raw = ieee_value(extract_whole(frame, position_of(mask), mask.length), signal);
  return presence(frame, signal);
}

namespace {

ZELK_NEVER_INLINE ZelkSigvalueResult read_physical_of_any(const unsigned char* frame,
                                                          const sigblk& signal, double& physical) {
  const auto read_as = [&]<typename Raw>(std::optional<Raw> raw) {
    const ZelkSigvalueResult result = read(frame, signal, raw);
    return read_both(result, signal, raw.value_or(Raw{}), physical);
  };
  if (is_ieee(signal)) return read_as(std::optional<double>());
  return read_as(std::optional<std::int64_t>());
}

}  // namespace

/// The most frequent call of all: for ordinary signals it calls nothing further.
ZelkSigvalueResult read_physical(const unsigned char* frame, const sigblk& signal,
                                 double& physical) {
  if (is_ieee(signal) || is_multiplexed(signal) || signal.length > kInt64Max) {
    return read_physical_of_any(frame, signal, physical);
  }
  const std::uint64_t bits = extract_int64(frame, locate(signal), signal.length);
  return to_physical(sign_handled64(bits, signal), signal, physical);
}

// --- Writing ---

namespace {

void insert_into(const sigblk& signal, std::uint16_t length_bits, const Words& value,
                 unsigned char* frame) {
  insert(value, signal.start_bit, length_bits, is_motorola(signal), frame);
}

}  // namespace

ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, std::uint32_t raw) {
  const bool is_negative = static_cast<std::int32_t>(raw) < 0;
  if (is_signed(signal) && signal.length < kLongMax && is_negative) {
    raw += std::uint32_t{1} << signal.length;
  }
  insert_into(signal, signal.length, words_of(raw), frame);
  return signal.length > kLongMax ? ZelkSigvalueTooLong : presence(frame, signal);
}

ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, std::int64_t raw) {
  insert_into(signal, signal.length, words_of(static_cast<std::uint64_t>(raw)), frame);
  return signal.length > kInt64Max ? ZelkSigvalueTooLong : presence(frame, signal);
}

ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, double raw) {
  if (signal.value_type == ZELK_VALUE_IEEE_SINGLE) {
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(raw));
    insert_into(signal, 32, words_of(bits), frame);
  } else {
    const auto bits = std::bit_cast<std::uint64_t>(raw);
    insert_into(signal, length_in_frame(signal), words_of(bits), frame);
  }
  if (!is_ieee(signal))
    return signal.length > kStringMax ? ZelkSigvalueTooLong : ZelkSigvalueWrongType;
  return presence(frame, signal);
}

ZelkSigvalueResult write_bytes(unsigned char* frame, const sigblk& signal,
                               const unsigned char* bytes) {
  if (signal.length > kStringMax) return ZelkSigvalueTooLong;
  Words value = {};
  for (std::size_t i = 0; i < (signal.length + std::size_t{7}) / 8; ++i)
    value[i / 4] |= std::uint32_t{bytes[i]} << (i % 4 * 8);
  insert_into(signal, signal.length, value, frame);
  return presence(frame, signal);
}

ZelkSigvalueResult write_physical(unsigned char* frame, const sigblk& signal, double physical) {
  const auto convert_and_write = [&](auto raw) {
    const ZelkSigvalueResult conversion = to_raw(physical, signal, raw);
    const ZelkSigvalueResult written = write(frame, signal, raw);
    return written != ZelkSigvalueOk ? written : conversion;
  };
  if (is_ieee(signal)) return convert_and_write(double{});
  if (signal.length <= kLongMax) return convert_and_write(std::uint32_t{});
  return convert_and_write(std::int64_t{});
}

}  // namespace zelk::codec

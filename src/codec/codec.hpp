/// \file
/// The signal value codec: from the data bytes of a frame to values and back, by the signal alone.
///
/// A signal of n bits, drawn with the least significant bit on the right. Its lowest bit lies at
/// `bit_offset` in the byte `lsb_byte`; the further bytes follow upwards (Intel) or downwards
/// (Motorola):
///
///     touched byte    byte_count - 1   ...       1           0
///                     . . n n n n n n  ...  n n n n n n n n  n n n n n . . .
///                         highest bit                                  lowest bit, offset 3
///
/// With the touched bytes in that order both byte orders are one: the value is the number that
/// they make, shifted down by the offset. Frames are pointers to the first data byte; the caller
/// answers for the bytes that a signal touches. Where the 16-bit arithmetic of positions wraps, a
/// signal would reach below the first byte: such bytes read as 0 and are not written.

#ifndef ZELK_CODEC_CODEC_HPP
#define ZELK_CODEC_CODEC_HPP

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>

#include "base/compiler.hpp"
#include "zelk/types.hpp"

namespace zelk::codec {

static_assert(std::endian::native == std::endian::little);

/// Longest signals, in bits, of the 32-bit, 64-bit and text operations. 90 bits have no place: at
/// every offset they must fit into three words.
inline constexpr unsigned kLongMax = 32;
inline constexpr unsigned kInt64Max = 64;
inline constexpr unsigned kStringMax = 89;

struct Position {
  std::uint32_t lsb_byte;
  std::uint32_t bit_offset;
  std::uint32_t byte_count;
  bool motorola;
};

/// Mirrors a bit number inside its byte: from the numbering of DBC files to that in which a
/// Motorola signal runs upwards, and back.
constexpr std::uint16_t ic(unsigned bit) {
  return static_cast<std::uint16_t>((bit & ~7u) + 7 - (bit & 7u));
}

constexpr Position locate(std::uint16_t start_bit, std::uint16_t length_bits, bool motorola) {
  const std::uint32_t lsb = motorola ? ic(ic(start_bit) + length_bits - 1u) : start_bit;
  const std::uint32_t offset = lsb & 7;
  // For no bits at offset 0 the sum is -1, and shifted -1 again.
  const std::int32_t last = static_cast<std::int32_t>(length_bits + offset) - 1;
  return {lsb >> 3, offset, static_cast<std::uint32_t>((last >> 3) + 1), motorola};
}

inline bool is_motorola(const sigblk& signal) { return (signal.flags & ZELK_SIGNAL_MOTOROLA) != 0; }
inline bool is_signed(const sigblk& signal) { return (signal.flags & ZELK_SIGNAL_SIGNED) != 0; }
inline bool is_ieee(const sigblk& signal) {
  return signal.value_type == ZELK_VALUE_IEEE_SINGLE || signal.value_type == ZELK_VALUE_IEEE_DOUBLE;
}

/// Bits that the IEEE operations read and write, whatever the signal's length.
inline std::uint16_t ieee_length(const sigblk& signal) {
  return signal.value_type == ZELK_VALUE_IEEE_DOUBLE ? 64 : 32;
}

inline Position locate(const sigblk& signal) {
  return locate(signal.start_bit, signal.length, is_motorola(signal));
}

constexpr std::uint64_t low_bits(unsigned count) {
  return count < 64 ? (std::uint64_t{1} << count) - 1 : ~std::uint64_t{0};
}

/// Two's complement of `length_bits` (1 to 64) bits, extended to 64.
constexpr std::int64_t sign_extended(std::uint64_t bits, unsigned length_bits) {
  const std::uint64_t sign = std::uint64_t{1} << (length_bits - 1);
  return static_cast<std::int64_t>((bits ^ sign) - sign);
}

// --- Reading bits ---

/// 1 to 8 bytes, the first one lowest. Two loads that overlap cover any number without reaching
/// beyond.
ZELK_ALWAYS_INLINE std::uint64_t load_bytes(const unsigned char* bytes, std::uint32_t count) {
  if (count >= 4) {
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    std::memcpy(&low, bytes, 4);
    std::memcpy(&high, bytes + count - 4, 4);
    return low | std::uint64_t{high} << (8 * (count - 4));
  }
  if (count == 1) return *bytes;
  std::uint16_t low = 0;
  std::uint16_t high = 0;
  std::memcpy(&low, bytes, 2);
  std::memcpy(&high, bytes + count - 2, 2);
  return low | std::uint32_t{high} << (8 * (count - 2));
}

/// The touched byte at `index`, counted from the lowest one.
inline std::uint8_t touched_byte(const unsigned char* frame, const Position& at,
                                 std::uint32_t index) {
  if (!at.motorola) return frame[at.lsb_byte + index];
  return index <= at.lsb_byte ? frame[at.lsb_byte - index] : std::uint8_t{0};
}

/// `low_word` of a signal that reaches below the first byte.
std::uint64_t low_word_at_wrap(const unsigned char* frame, Position at);

/// The lowest touched bytes, eight at most, as a number.
ZELK_ALWAYS_INLINE std::uint64_t low_word(const unsigned char* frame, const Position& at) {
  const std::uint32_t count = at.byte_count < 8 ? at.byte_count : 8;
  if (count == 0) return 0;
  if (!at.motorola) return load_bytes(frame + at.lsb_byte, count);
  if (count <= at.lsb_byte + 1) {
    const std::uint64_t reversed = load_bytes(frame + at.lsb_byte + 1 - count, count);
    return reversed_bytes(reversed) >> (64 - 8 * count);
  }
  return low_word_at_wrap(frame, at);
}

/// Up to 64 bits; those in a ninth byte are left out.
ZELK_ALWAYS_INLINE std::uint64_t extract_int64(const unsigned char* frame, const Position& at,
                                               unsigned length_bits) {
  return low_word(frame, at) >> at.bit_offset & low_bits(length_bits);
}

/// Up to 64 bits, all of them.
inline std::uint64_t extract_whole(const unsigned char* frame, const Position& at,
                                   unsigned length_bits) {
  std::uint64_t bits = low_word(frame, at) >> at.bit_offset;
  if (at.byte_count > 8 && at.bit_offset > 0) {
    bits |= std::uint64_t{touched_byte(frame, at, 8)} << (64 - at.bit_offset);
  }
  return bits & low_bits(length_bits);
}

/// The value of a signal in 32-bit words, the lowest first.
using Words = std::array<std::uint32_t, 3>;

/// Up to `kStringMax` bits; false, with nothing extracted, for more.
bool extract_string(const unsigned char* frame, const Position& at, unsigned length_bits,
                    Words& words);

// --- Access records ---

zelk_sig_mask_t access_mask(const sigblk& signal);
/// Keeps `mask.mask` for signals of 90 bits and more.
void fill_access_mask(const sigblk& signal, zelk_sig_mask_t& mask);

inline Position position_of(const zelk_sig_mask_t& mask) {
  return {mask.lsb_byte, mask.bit_offset, mask.byte_count, mask.motorola != 0};
}

// --- Multiplexing ---

/// Whether the frame holds the signal (`ZelkManager::CheckSignalModeValue`).
bool is_present_multiplexed(const unsigned char* frame, const sigblk& signal);

inline bool is_multiplexed(const sigblk& signal) { return signal.mux_signal || signal.mux_ranges; }
bool has_in_ranges(const sigblk& signal, std::uint32_t value);

inline bool is_present(const unsigned char* frame, const sigblk& signal) {
  return !is_multiplexed(signal) || is_present_multiplexed(frame, signal);
}

inline ZelkSigvalueResult presence(const unsigned char* frame, const sigblk& signal) {
  return is_present(frame, signal) ? ZelkSigvalueOk : ZelkSigvalueNotPresent;
}

// --- Raw values ---

// Two's complement of as many bits as the signal has.
std::uint32_t sign_handled(std::uint32_t raw, const sigblk& signal);
std::int64_t sign_handled64(std::uint64_t raw, const sigblk& signal);

// The same for a value that an access record of another length gave: of a signed signal of n bits,
// 2^n is subtracted from what is not below 2^(n - 1). Bits above the signal stay.
std::uint32_t record_sign_handled(std::uint32_t raw, const sigblk& signal);
std::uint64_t record_sign_handled64(std::uint64_t raw, const sigblk& signal);

/// The 32-bit raw value by an access record, without asking whether the frame holds the signal.
ZelkSigvalueResult read_masked(const unsigned char* frame, const zelk_sig_mask_t& mask,
                               const sigblk& signal, std::optional<std::uint32_t>& raw);

// All leave `raw` empty when the signal's type, or its length alone, refuses. The form for
// `std::uint64_t` gives every bit of the signal; the one for `std::int64_t` leaves out those in a
// ninth byte, and by a record those that the record's 32-bit mask has not.
ZelkSigvalueResult read(const unsigned char* frame, const sigblk& signal,
                        std::optional<std::uint32_t>& raw);
ZelkSigvalueResult read(const unsigned char* frame, const sigblk& signal,
                        std::optional<std::int64_t>& raw);
ZelkSigvalueResult read(const unsigned char* frame, const sigblk& signal,
                        std::optional<std::uint64_t>& raw);
ZelkSigvalueResult read(const unsigned char* frame, const sigblk& signal,
                        std::optional<double>& raw);
ZelkSigvalueResult read(const unsigned char* frame, const zelk_sig_mask_t& mask,
                        const sigblk& signal, std::optional<std::uint32_t>& raw);
ZelkSigvalueResult read(const unsigned char* frame, const zelk_sig_mask_t& mask,
                        const sigblk& signal, std::optional<std::int64_t>& raw);
ZelkSigvalueResult read(const unsigned char* frame, const zelk_sig_mask_t& mask,
                        const sigblk& signal, std::optional<std::uint64_t>& raw);
ZelkSigvalueResult read(const unsigned char* frame, const zelk_sig_mask_t& mask,
                        const sigblk& signal, std::optional<double>& raw);

/// The number whose 32 or 64 bits, by the signal's value type, these are.
inline double ieee_value(std::uint64_t bits, const sigblk& signal) {
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE) return std::bit_cast<double>(bits);
  return double{std::bit_cast<float>(static_cast<std::uint32_t>(bits))};
}

// --- Physical values ---

inline ZelkSigvalueResult range_test(double physical, const sigblk& signal) {
  if (signal.minimum == 0.0 && signal.maximum == 0.0) return ZelkSigvalueOk;
  const bool is_outside = physical > signal.maximum || signal.minimum > physical;
  return is_outside ? ZelkSigvalueOutOfRange : ZelkSigvalueOk;
}

ZelkSigvalueResult to_physical(std::uint32_t raw, const sigblk& signal, double& physical);
ZelkSigvalueResult to_physical(std::int64_t raw, const sigblk& signal, double& physical);
ZelkSigvalueResult to_physical(double raw, const sigblk& signal, double& physical);

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

/// Reads raw, then converts; the reading's result, else the conversion's.
template <typename Raw>
ZelkSigvalueResult read_both(ZelkSigvalueResult read_result, const sigblk& signal, const Raw& raw,
                             double& physical) {
  const ZelkSigvalueResult conversion = to_physical(raw, signal, physical);
  return read_result != ZelkSigvalueOk ? read_result : conversion;
}

ZelkSigvalueResult read_physical(const unsigned char* frame, const sigblk& signal,
                                 double& physical);

// --- Writing ---

/// Puts the lowest `length_bits` bits of a value into the frame. A value that is wider than the
/// signal spills into the bits above it in the layouts that are written without masking: up to 32
/// bits in five bytes, and more in nine.
///
/// @param value        (`length_bits` + 7) / 8 bytes at most are looked at
/// @param size_bytes   of `value`; the rest counts as 0
/// @param length_bits  up to `kStringMax`; more are not written
void insert(const void* value, std::size_t size_bytes, std::uint16_t start_bit,
            std::uint16_t length_bits, bool motorola, unsigned char* frame);

ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, std::uint32_t raw);
ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, std::int64_t raw);
ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, double raw);
ZelkSigvalueResult write_bytes(unsigned char* frame, const sigblk& signal,
                               const unsigned char* bytes);
ZelkSigvalueResult write_physical(unsigned char* frame, const sigblk& signal, double physical);

// --- Texts (value_text.cpp) ---

ZelkSigvalueResult value_text(const unsigned char* frame, const sigblk& signal, char* text,
                              std::size_t size, ZelkSigvalueFormat text_format, const char* format);

}  // namespace zelk::codec

#endif

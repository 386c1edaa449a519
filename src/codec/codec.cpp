#include "codec/codec.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelk::codec {
namespace {

/// Mask of the valid bits in the topmost word of a value of up to `kStringMax` bits.
std::uint32_t top_mask(unsigned length_bits) {
  if (length_bits == 0) return 0;
  return static_cast<std::uint32_t>(low_bits((length_bits - 1) % 32 + 1));
}

/// What lies above the cut of a word that is shifted up: the bits that its top byte loses.
std::uint32_t carry(std::uint8_t top_byte, std::uint32_t bit_offset) {
  return std::uint32_t{top_byte} >> (8 - bit_offset);
}

}  // namespace

// --- Reading bits ---

std::uint64_t low_word_at_wrap(const unsigned char* frame, Position at) {
  std::uint64_t word = 0;
  for (std::uint32_t i = 0; i < at.byte_count && i < 8; ++i) {
    word |= std::uint64_t{touched_byte(frame, at, i)} << (8 * i);
  }
  return word;
}

bool extract_string(const unsigned char* frame, const Position& at, unsigned length_bits,
                    Words& words) {
  constexpr std::uint32_t kTouchedMax = 12;
  if (length_bits > kStringMax || at.byte_count > kTouchedMax) return false;
  const std::uint64_t low = extract_whole(frame, at, kInt64Max);
  std::uint64_t high = 0;
  for (std::uint32_t i = 8; i < at.byte_count; ++i) {
    high |= std::uint64_t{touched_byte(frame, at, i)} << (8 * (i - 8));
  }
  words = {static_cast<std::uint32_t>(low), static_cast<std::uint32_t>(low >> 32),
           static_cast<std::uint32_t>(high >> at.bit_offset)};
  const std::size_t top = length_bits <= 32 ? 0 : length_bits <= 64 ? 1 : 2;
  words[top] &= top_mask(length_bits);
  std::fill(words.begin() + static_cast<std::ptrdiff_t>(top) + 1, words.end(), 0);
  return true;
}

// --- Access records ---

void fill_access_mask(const sigblk& signal, zelk_sig_mask_t& mask) {
  const Position at = locate(signal);
  if (signal.length <= kStringMax) mask.mask = top_mask(signal.length);
  mask.bit_offset = at.bit_offset;
  mask.motorola = at.motorola ? 1 : 0;
  mask.length = signal.length;
  mask.byte_count = at.byte_count;
  mask.lsb_byte = at.lsb_byte;
  mask.bit_span = signal.length + at.bit_offset;
  const std::int32_t last_bit = signal.start_bit + signal.length - 1;
  mask.min_data_length =
      at.motorola ? at.lsb_byte + 1 : static_cast<std::uint32_t>((last_bit >> 3) + 1);
}

zelk_sig_mask_t access_mask(const sigblk& signal) {
  zelk_sig_mask_t mask = {};
  fill_access_mask(signal, mask);
  return mask;
}

// --- Multiplexing ---

bool has_in_ranges(const sigblk& signal, std::uint32_t value) {
  const muxor_val_range* range = signal.mux_ranges;
  while (range && (value < range->low || value > range->high)) range = range->next;
  return range != nullptr;
}

namespace {

/// Whether the signal's multiplexor, taken as present, selects it.
bool is_selected(const unsigned char* frame, const sigblk& signal) {
  std::optional<std::uint32_t> value;
  const sigblk& multiplexor = *signal.mux_signal;
  return read_masked(frame, access_mask(multiplexor), multiplexor, value) == ZelkSigvalueOk &&
         has_in_ranges(signal, *value);
}

}  // namespace

/// Follows the multiplexors upwards. `behind` walks at half the pace: in a circle it is met.
bool is_present_multiplexed(const unsigned char* frame, const sigblk& signal) {
  const sigblk* behind = &signal;
  bool follows = false;
  for (const sigblk* level = &signal; is_multiplexed(*level);) {
    if (!level->mux_signal || !is_selected(frame, *level)) return false;
    level = level->mux_signal;
    if (follows) behind = behind->mux_signal;
    follows = !follows;
    if (level == behind) return false;
  }
  return true;
}

// --- Raw values ---

/// A raw value above the largest positive one stands for a negative one.
std::uint32_t sign_handled(std::uint32_t raw, const sigblk& signal) {
  if (!is_signed(signal) || signal.length == 0 || signal.length > kLongMax) return raw;
  return static_cast<std::uint32_t>(sign_extended(raw, signal.length));
}

std::int64_t sign_handled64(std::uint64_t raw, const sigblk& signal) {
  if (!is_signed(signal) || signal.length == 0) return static_cast<std::int64_t>(raw);
  return sign_extended(raw, signal.length);
}

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
  const std::uint16_t length = ieee_length(signal);
  const Position at = locate(signal.start_bit, length, is_motorola(signal));
  raw = ieee_value(extract_whole(frame, at, length), signal);
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

// --- Physical values ---

ZelkSigvalueResult to_physical(double raw, const sigblk& signal, double& physical) {
  physical = raw * signal.factor + signal.offset;
  return range_test(physical, signal);
}

ZelkSigvalueResult to_physical(std::uint32_t raw, const sigblk& signal, double& physical) {
  const auto number = is_signed(signal) ? static_cast<double>(static_cast<std::int32_t>(raw))
                                        : static_cast<double>(raw);
  return to_physical(number, signal, physical);
}

ZelkSigvalueResult to_physical(std::int64_t raw, const sigblk& signal, double& physical) {
  // The test of the value's own sign spares all but the largest unsigned values the slower way.
  const double number = is_signed(signal) || raw >= 0
                            ? static_cast<double>(raw)
                            : static_cast<double>(static_cast<std::uint64_t>(raw));
  return to_physical(number, signal, physical);
}

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

/// The most frequent call of all, and of the most frequent signals: they need no further call.
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

/// The value shifted up to its place, as up to twelve bytes.
Words shifted_value(const std::array<std::uint8_t, 12>& value, const Position& at,
                    unsigned length_bits) {
  Words in = {};
  std::memcpy(in.data(), value.data(), sizeof in);
  const std::uint32_t offset = at.bit_offset;
  const std::uint32_t mask = top_mask(length_bits);
  if (at.byte_count <= 4) return {(in[0] & mask) << offset, 0, 0};
  const std::uint32_t low = in[0] << offset;
  const std::uint32_t low_carry = carry(value[3], offset);
  if (length_bits <= 32) return {low, low_carry, 0};
  if (at.byte_count <= 8) return {low, (in[1] & mask) << offset | low_carry, 0};
  const std::uint32_t middle = in[1] << offset | low_carry;
  const std::uint32_t middle_carry = carry(value[7], offset);
  if (length_bits <= 64) return {low, middle, middle_carry};
  return {low, middle, (in[2] & mask) << offset | middle_carry};
}

}  // namespace

void insert(const void* value, std::size_t size_bytes, std::uint16_t start_bit,
            std::uint16_t length_bits, bool motorola, unsigned char* frame) {
  if (length_bits == 0 || length_bits > kStringMax) return;
  const Position at = locate(start_bit, length_bits, motorola);
  std::array<std::uint8_t, 12> own = {};
  std::memcpy(own.data(), value, std::min(size_bytes, own.size()));
  const Words words = shifted_value(own, at, length_bits);
  std::array<std::uint8_t, 12> bytes = {};
  std::memcpy(bytes.data(), words.data(), bytes.size());

  const std::uint32_t last = at.byte_count - 1;
  const std::uint32_t above = (at.bit_offset + length_bits) & 7;
  const auto keep = [&](std::uint32_t index, std::uint64_t mask) {
    bytes[index] =
        static_cast<std::uint8_t>(bytes[index] | (touched_byte(frame, at, index) & mask));
  };
  keep(0, low_bits(at.bit_offset));
  if (above != 0) keep(last, ~low_bits(above));
  for (std::uint32_t i = 0; i <= last; ++i) {
    if (!motorola) {
      frame[at.lsb_byte + i] = bytes[i];
    } else if (i <= at.lsb_byte) {
      frame[at.lsb_byte - i] = bytes[i];
    }
  }
}

namespace {

void insert_into(const sigblk& signal, std::uint16_t length_bits, const void* value,
                 std::size_t size_bytes, unsigned char* frame) {
  insert(value, size_bytes, signal.start_bit, length_bits, is_motorola(signal), frame);
}

}  // namespace

ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, std::uint32_t raw) {
  const bool is_negative = static_cast<std::int32_t>(raw) < 0;
  if (is_signed(signal) && signal.length < kLongMax && is_negative) {
    raw += std::uint32_t{1} << signal.length;
  }
  insert_into(signal, signal.length, &raw, sizeof raw, frame);
  return signal.length > kLongMax ? ZelkSigvalueTooLong : presence(frame, signal);
}

ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, std::int64_t raw) {
  insert_into(signal, signal.length, &raw, sizeof raw, frame);
  return signal.length > kInt64Max ? ZelkSigvalueTooLong : presence(frame, signal);
}

ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, double raw) {
  if (signal.value_type == ZELK_VALUE_IEEE_SINGLE) {
    const auto single = static_cast<float>(raw);
    insert_into(signal, 32, &single, sizeof single, frame);
  } else {
    const std::uint16_t length = is_ieee(signal) ? ieee_length(signal) : signal.length;
    insert_into(signal, length, &raw, sizeof raw, frame);
  }
  if (!is_ieee(signal))
    return signal.length > kStringMax ? ZelkSigvalueTooLong : ZelkSigvalueWrongType;
  return presence(frame, signal);
}

ZelkSigvalueResult write_bytes(unsigned char* frame, const sigblk& signal,
                               const unsigned char* bytes) {
  if (signal.length > kStringMax) return ZelkSigvalueTooLong;
  insert_into(signal, signal.length, bytes, (signal.length + std::size_t{7}) / 8, frame);
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

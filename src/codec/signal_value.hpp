/// \file
/// The values of a signal in a frame, read and written by the signal alone.

#ifndef ZELK_CODEC_SIGNAL_VALUE_HPP
#define ZELK_CODEC_SIGNAL_VALUE_HPP

#include <cstddef>
#include <cstdint>
#include <optional>

#include "codec/conversion.hpp"
#include "codec/raw_value.hpp"

namespace zelk::codec {

// --- Reading ---

// All leave `raw` empty when they refuse because of the signal's type, or of its length alone. The
// form for `std::uint64_t` gives every bit of the signal; the one for `std::int64_t` leaves out
// bits in a ninth byte and, by an access record, those outside the record's 32-bit mask.
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

/// Converts what was read; gives the result of reading, or that of the conversion when reading
/// succeeded.
template <typename Raw>
ZelkSigvalueResult read_both(ZelkSigvalueResult read_result, const sigblk& signal, const Raw& raw,
                             double& physical) {
  const ZelkSigvalueResult conversion = to_physical(raw, signal, physical);
  return read_result != ZelkSigvalueOk ? read_result : conversion;
}

ZelkSigvalueResult read_physical(const unsigned char* frame, const sigblk& signal,
                                 double& physical);

// --- Writing ---

ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, std::uint32_t raw);
ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, std::int64_t raw);
ZelkSigvalueResult write(unsigned char* frame, const sigblk& signal, double raw);
ZelkSigvalueResult write_bytes(unsigned char* frame, const sigblk& signal,
                               const unsigned char* bytes);
ZelkSigvalueResult write_physical(unsigned char* frame, const sigblk& signal, double physical);

// --- As texts (value_text.cpp) ---

ZelkSigvalueResult value_text(const unsigned char* frame, const sigblk& signal, char* text,
                              std::size_t size, ZelkSigvalueFormat text_format, const char* format);

}  // namespace zelk::codec

#endif

// The members of the manager for signals in frames: each only forwards.

#include <optional>

#include "codec/presence.hpp"
#include "codec/signal_value.hpp"
#include "zelk/manager.hpp"

namespace codec = zelk::codec;

namespace {

/// Reads a value of the codec's type into one of the interface's; 32-bit results are zero-extended.
/// `out` is never read, because callers may leave it uninitialised, and only written when a value
/// was read.
template <typename Raw, typename Out, typename... Position>
ZelkSigvalueResult read_into(Out& out, Position&&... position) {
  std::optional<Raw> raw;
  const ZelkSigvalueResult result = codec::read(position..., raw);
  if (raw) out = static_cast<Out>(*raw);
  return result;
}

}  // namespace

// --- Multiplexing ---

const sigblk* ZelkManager::GetMultiplexorSignal(const sigblk* signal) {
  return signal ? signal->mux_signal : nullptr;
}

bool ZelkManager::SignalIsMultiplexor(const sigblk* signal) {
  return signal && zelk::is_multiplexor(*signal);
}

bool ZelkManager::SignalIsMultiplexed(const sigblk* signal) {
  return signal && zelk::is_multiplexed(*signal);
}

bool ZelkManager::SignalIsMultiplexedByValue(const sigblk* signal, unsigned long value) {
  return signal && zelk::is_selected_by(*signal, static_cast<std::uint32_t>(value));
}

const muxor_val_range* ZelkManager::GetMultiplexorValueRanges(const sigblk* signal) {
  return signal ? signal->mux_ranges : nullptr;
}

void ZelkManager::GetSignalAccessMask(const sigblk& signal, zelk_sig_mask_t& mask) const {
  codec::fill_access_mask(signal, mask);
}

bool ZelkManager::CheckSignalModeValue(const unsigned char& frame, const sigblk& signal,
                                       const msgblk&) const {
  return codec::is_present(&frame, signal);
}

// --- Conversions ---

ZelkSigvalueResult ZelkManager::RawToPhysicalValue(const unsigned long& raw, const sigblk& signal,
                                                   double& physical) const {
  return codec::to_physical(static_cast<std::uint32_t>(raw), signal, physical);
}

ZelkSigvalueResult ZelkManager::RawToPhysicalValueInt64(const long long& raw, const sigblk& signal,
                                                        double& physical) const {
  return codec::to_physical(std::int64_t{raw}, signal, physical);
}

ZelkSigvalueResult ZelkManager::RawToPhysicalValue(const double& raw, const sigblk& signal,
                                                   double& physical) const {
  return codec::to_physical(raw, signal, physical);
}

ZelkSigvalueResult ZelkManager::PhysicalToRawValue(const double& physical, const sigblk& signal,
                                                   unsigned long& raw) const {
  std::uint32_t bits = 0;
  const ZelkSigvalueResult result = codec::to_raw(physical, signal, bits);
  raw = bits;
  return result;
}

ZelkSigvalueResult ZelkManager::PhysicalToRawValueInt64(const double& physical,
                                                        const sigblk& signal,
                                                        long long& raw) const {
  std::int64_t bits = 0;
  const ZelkSigvalueResult result = codec::to_raw(physical, signal, bits);
  raw = bits;
  return result;
}

ZelkSigvalueResult ZelkManager::PhysicalToRawValue(const double& physical, const sigblk& signal,
                                                   double& raw) const {
  return codec::to_raw(physical, signal, raw);
}

// --- Reading ---

ZelkSigvalueResult ZelkManager::GetSignalRawValue(const unsigned char& frame, const sigblk& signal,
                                                  const msgblk&, unsigned long& raw) const {
  return read_into<std::uint32_t>(raw, &frame, signal);
}

ZelkSigvalueResult ZelkManager::GetSignalRawValueInt64(const unsigned char& frame,
                                                       const sigblk& signal, const msgblk&,
                                                       long long& raw) const {
  return read_into<std::int64_t>(raw, &frame, signal);
}

ZelkSigvalueResult ZelkManager::GetSignalRawValueUint64(const unsigned char& frame,
                                                        const sigblk& signal, const msgblk&,
                                                        std::uint64_t& raw) const {
  return read_into<std::uint64_t>(raw, &frame, signal);
}

ZelkSigvalueResult ZelkManager::GetSignalRawValue(const unsigned char& frame, const sigblk& signal,
                                                  const msgblk&, double& raw) const {
  return read_into<double>(raw, &frame, signal);
}

ZelkSigvalueResult ZelkManager::GetSignalRawValue(const unsigned char& frame,
                                                  const zelk_sig_mask_t& mask, const sigblk& signal,
                                                  const msgblk&, unsigned long& raw) const {
  return read_into<std::uint32_t>(raw, &frame, mask, signal);
}

ZelkSigvalueResult ZelkManager::GetSignalRawValueInt64(const unsigned char& frame,
                                                       const zelk_sig_mask_t& mask,
                                                       const sigblk& signal, const msgblk&,
                                                       long long& raw) const {
  return read_into<std::int64_t>(raw, &frame, mask, signal);
}

ZelkSigvalueResult ZelkManager::GetSignalRawValueUint64(const unsigned char& frame,
                                                        const zelk_sig_mask_t& mask,
                                                        const sigblk& signal, const msgblk&,
                                                        std::uint64_t& raw) const {
  return read_into<std::uint64_t>(raw, &frame, mask, signal);
}

ZelkSigvalueResult ZelkManager::GetSignalRawValue(const unsigned char& frame,
                                                  const zelk_sig_mask_t& mask, const sigblk& signal,
                                                  const msgblk&, double& raw) const {
  return read_into<double>(raw, &frame, mask, signal);
}

ZelkSigvalueResult ZelkManager::GetSignalValue(const unsigned char& frame, const sigblk& signal,
                                               const msgblk& message, unsigned long& raw,
                                               double& physical) const {
  const ZelkSigvalueResult result = GetSignalRawValue(frame, signal, message, raw);
  return codec::read_both(result, signal, static_cast<std::uint32_t>(raw), physical);
}

ZelkSigvalueResult ZelkManager::GetSignalValueInt64(const unsigned char& frame,
                                                    const sigblk& signal, const msgblk& message,
                                                    long long& raw, double& physical) const {
  const ZelkSigvalueResult result = GetSignalRawValueInt64(frame, signal, message, raw);
  return codec::read_both(result, signal, std::int64_t{raw}, physical);
}

ZelkSigvalueResult ZelkManager::GetSignalValue(const unsigned char& frame, const sigblk& signal,
                                               const msgblk& message, double& raw,
                                               double& physical) const {
  const ZelkSigvalueResult result = GetSignalRawValue(frame, signal, message, raw);
  return codec::read_both(result, signal, raw, physical);
}

ZelkSigvalueResult ZelkManager::GetSignalValue(const unsigned char& frame,
                                               const zelk_sig_mask_t& mask, const sigblk& signal,
                                               const msgblk& message, unsigned long& raw,
                                               double& physical) const {
  const ZelkSigvalueResult result = GetSignalRawValue(frame, mask, signal, message, raw);
  return codec::read_both(result, signal, static_cast<std::uint32_t>(raw), physical);
}

ZelkSigvalueResult ZelkManager::GetSignalValueInt64(const unsigned char& frame,
                                                    const zelk_sig_mask_t& mask,
                                                    const sigblk& signal, const msgblk& message,
                                                    long long& raw, double& physical) const {
  const ZelkSigvalueResult result = GetSignalRawValueInt64(frame, mask, signal, message, raw);
  return codec::read_both(result, signal, std::int64_t{raw}, physical);
}

ZelkSigvalueResult ZelkManager::GetSignalValue(const unsigned char& frame,
                                               const zelk_sig_mask_t& mask, const sigblk& signal,
                                               const msgblk& message, double& raw,
                                               double& physical) const {
  const ZelkSigvalueResult result = GetSignalRawValue(frame, mask, signal, message, raw);
  return codec::read_both(result, signal, raw, physical);
}

ZelkSigvalueResult ZelkManager::GetSignalPhysicalValue(const unsigned char& frame,
                                                       const sigblk& signal, const msgblk&,
                                                       double& physical) const {
  return codec::read_physical(&frame, signal, physical);
}

ZelkSigvalueResult ZelkManager::GetSignalValue(const unsigned char& frame, const sigblk& signal,
                                               const msgblk&, char* text, unsigned long size,
                                               ZelkSigvalueFormat text_format, const char* format) {
  const ZelkSigvalueResult result =
      codec::value_text(&frame, signal, text, size, text_format, format);
  if (text_format == ZelkFormatValueDescription && signal.length <= codec::kStringMax) {
    status_ = result == ZelkSigvalueError ? ZelkStatusNoDescription : ZelkStatusOk;
  }
  return result;
}

// --- Writing ---

ZelkSigvalueResult ZelkManager::SetSignalRawValue(unsigned char& frame, const sigblk& signal,
                                                  const msgblk&, const unsigned long& raw) const {
  return codec::write(&frame, signal, static_cast<std::uint32_t>(raw));
}

ZelkSigvalueResult ZelkManager::SetSignalRawValueInt64(unsigned char& frame, const sigblk& signal,
                                                       const msgblk&, const long long& raw) const {
  return codec::write(&frame, signal, std::int64_t{raw});
}

ZelkSigvalueResult ZelkManager::SetSignalRawValueUint64(unsigned char& frame, const sigblk& signal,
                                                        const msgblk&,
                                                        const std::uint64_t& raw) const {
  return codec::write(&frame, signal, static_cast<std::int64_t>(raw));
}

ZelkSigvalueResult ZelkManager::SetSignalRawValue(unsigned char& frame, const sigblk& signal,
                                                  const msgblk&, const double& raw) const {
  return codec::write(&frame, signal, raw);
}

ZelkSigvalueResult ZelkManager::SetSignalRawValue(unsigned char& frame, const sigblk& signal,
                                                  const msgblk&,
                                                  const unsigned char*& bytes) const {
  return codec::write_bytes(&frame, signal, bytes);
}

ZelkSigvalueResult ZelkManager::SetSignalPhysicalValue(unsigned char& frame, const sigblk& signal,
                                                       const msgblk&,
                                                       const double& physical) const {
  return codec::write_physical(&frame, signal, physical);
}

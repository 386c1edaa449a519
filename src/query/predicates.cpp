#include "zelk/predicates.hpp"

#include "base/multiplexing.hpp"
#include "codec/bits.hpp"

namespace codec = zelk::codec;

namespace {

/// Whether the signal's bits lie within the data. A signal without bits at bit 0 has the highest
/// bit -1, which the division takes to byte 0.
bool fits(const sigblk& signal, unsigned data_length) {
  const codec::Position at = codec::locate(signal);
  const std::int64_t highest = at.motorola ? std::int64_t{at.lsb_byte} * 8 + at.bit_offset
                                           : std::int64_t{signal.start_bit} + signal.length - 1;
  return highest / 8 + 1 <= std::int64_t{data_length};
}

/// Whether the multiplexors above the signal fit too, so that they can be read.
bool multiplexors_fit(const sigblk& signal, unsigned data_length) {
  zelk::MultiplexorsAbove above(signal);
  while (const sigblk* const multiplexor = above.next()) {
    if (!fits(*multiplexor, data_length)) return false;
  }
  return true;
}

}  // namespace

bool MultiplexorPredicate::operator()(const sigblk* signal, ZelkManager&, const char*) {
  return ZelkManager::SignalIsMultiplexor(signal);
}

bool MultiplexedSignalPredicate::operator()(const sigblk* signal, ZelkManager&, const char*) {
  return ZelkManager::SignalIsMultiplexed(signal);
}

bool MultiplexedBySignalPredicate::operator()(const sigblk* signal, ZelkManager&, const char*) {
  return ZelkManager::SignalIsMultiplexed(signal) && signal->mux_signal == multiplexor_;
}

bool ValidSignalPredicate::operator()(const sigblk* signal, ZelkManager& manager, const char*) {
  return signal && signal->message && fits(*signal, data_length_) &&
         multiplexors_fit(*signal, data_length_) &&
         manager.CheckSignalModeValue(*frame_, *signal, *signal->message);
}

bool ValidMultiplexorPredicate::operator()(const sigblk* signal, ZelkManager& manager,
                                           const char* db_name) {
  return is_valid_(signal, manager, db_name) && ZelkManager::SignalIsMultiplexor(signal);
}

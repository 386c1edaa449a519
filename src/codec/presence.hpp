/// \file
/// Whether a frame holds a signal.

#ifndef ZELK_CODEC_PRESENCE_HPP
#define ZELK_CODEC_PRESENCE_HPP

#include "base/multiplexing.hpp"
#include "zelk/types.hpp"

namespace zelk::codec {

/// `is_present` for multiplexed signals.
bool is_present_multiplexed(const unsigned char* frame, const sigblk& signal);

/// Whether the frame holds the signal (`ZelkManager::CheckSignalModeValue`).
inline bool is_present(const unsigned char* frame, const sigblk& signal) {
  return !is_multiplexed(signal) || is_present_multiplexed(frame, signal);
}

inline ZelkSigvalueResult presence(const unsigned char* frame, const sigblk& signal) {
  return is_present(frame, signal) ? ZelkSigvalueOk : ZelkSigvalueNotPresent;
}

}  // namespace zelk::codec

#endif

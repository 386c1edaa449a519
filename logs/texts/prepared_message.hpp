/// \file
/// What a message needs to print its frames, prepared once.

#ifndef ZELK_LOGS_TEXTS_PREPARED_MESSAGE_HPP
#define ZELK_LOGS_TEXTS_PREPARED_MESSAGE_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/signal_spelling.hpp"
#include "logs/lookup/choosing.hpp"
#include "logs/texts/frame_format.hpp"
#include "zelk/frame_decoder.hpp"

namespace zelk::logs {

/// How the texts of a message are made.
struct FrameOptions {
  const FrameFormat& format;
  bool raw;      ///< raw values instead of physical ones
  bool numbers;  ///< no value descriptions
};

/// One signal of a message.
struct PreparedSignal {
  PreparedSignal(const sigblk& signal, std::size_t position, const FrameOptions& options,
                 const NamedDatabase& database);

  std::size_t index;  ///< among the message's signals
  SignalNumbers numbers;
  SignalTexts texts;
  SpelledDescriptions descriptions;
};

/// @param raw     the raw value instead of the physical one
/// @param value   of the signal, from `ZelkFrameDecoder::DecodeRaw`
void append_value(LineBuffer& out, const PreparedSignal& signal, std::int64_t value, bool raw,
                  NonFinite non_finite);

/// One message.
struct PreparedMessage {
  PreparedMessage(const msgblk& message, const NamedDatabase& database, const NameFilter& choice,
                  const FrameOptions& options);

  ZelkFrameDecoder decoder;
  std::size_t length_bytes;
  std::string name;                     ///< as the format has it
  std::vector<PreparedSignal> signals;  ///< those to print, in the order of the message
  bool is_shown;                        ///< whether the message and any of its signals are chosen
  bool needs_signal;                    ///< whether a frame without any signal to print is left out
};

/// A decoded frame.
struct DecodedFrame {
  std::string_view time;            ///< empty for none
  std::string_view interface_text;  ///< as the format has it
  std::uint32_t id;                 ///< bit 31: extended
  const PreparedMessage* message;
  const std::int64_t* raw;       ///< from `ZelkFrameDecoder::DecodeRaw`
  const std::uint64_t* present;  ///< likewise
};

inline bool is_present(const DecodedFrame& frame, const PreparedSignal& signal) {
  return (frame.present[signal.index / 64] >> (signal.index % 64) & 1) != 0;
}

/// Calls `visit(signal, raw value)` for each signal to print that the frame holds.
template <typename Visit>
void for_each_present(const DecodedFrame& frame, const Visit& visit) {
  for (const PreparedSignal& signal : frame.message->signals) {
    if (is_present(frame, signal)) visit(signal, frame.raw[signal.index]);
  }
}

}  // namespace zelk::logs

#endif

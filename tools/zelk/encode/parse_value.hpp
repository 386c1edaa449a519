/// \file
/// Values of signals as a user writes them.

#ifndef ZELK_TOOL_ENCODE_PARSE_VALUE_HPP
#define ZELK_TOOL_ENCODE_PARSE_VALUE_HPP

#include <cstdint>
#include <string>
#include <string_view>

#include "input/encoded_database.hpp"
#include "input/lookup.hpp"
#include "zelk/records.h"

namespace zelk::tool {

struct ValueOptions {
  bool raw = false;    ///< values are raw ones
  bool force = false;  ///< values out of range are taken, and cut to what the bits can hold
  Encoding encoding = Encoding::kUtf8;  ///< of the database's texts; values are in UTF-8
};

/// The raw value that `text` means for a signal: the bit pattern of IEEE signals, else a whole
/// number, which is unsigned for an unsigned signal. As `ZelkFrameDecoder::DecodeRaw` reads it.
///
/// @param text  a number, physical or raw; or the text of a value description
/// @throws RequestError when it is neither, or out of the signal's range, or does not fit into it
std::int64_t parse_signal_value(const sigblk& signal, std::string_view text,
                                const ValueOptions& options);

}  // namespace zelk::tool

#endif

/// \file
/// The frame of a message, made of values that a user writes.

#ifndef ZELK_TOOL_ENCODE_ENCODE_MESSAGE_HPP
#define ZELK_TOOL_ENCODE_ENCODE_MESSAGE_HPP

#include <optional>
#include <string>
#include <vector>

#include "encode/parse_value.hpp"
#include "input/encoded_database.hpp"
#include "zelk/logs/frame.hpp"

namespace zelk::tool {

/// What the frame is to hold.
struct FrameValues {
  std::string message;               ///< name or identifier
  std::vector<std::string> signals;  ///< "SIGNAL=VALUE"
  std::optional<std::string> from;   ///< frame to change; none: one of zeros
  ValueOptions options;
};

/// @throws RequestError when there is no such message or signal, or the frame cannot hold a value
ZelkFrame encode_message(EncodedDatabase of, const FrameValues& wanted);

}  // namespace zelk::tool

#endif

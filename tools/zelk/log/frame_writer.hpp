/// \file
/// Decoded frames as lines.

#ifndef ZELK_TOOL_LOG_FRAME_WRITER_HPP
#define ZELK_TOOL_LOG_FRAME_WRITER_HPP

#include <cstdint>
#include <string>
#include <string_view>

#include "log/frame_layout.hpp"
#include "term/line_buffer.hpp"

namespace zelk::tool {

/// A frame with what it says.
struct DecodedFrame {
  std::string_view time;            ///< empty for none
  std::string_view interface_text;  ///< from `interface_text`
  std::uint32_t id;                 ///< bit 31: extended
  const MessageLayout* message;
  const std::int64_t* raw;       ///< from `ZelkFrameDecoder::DecodeRaw`
  const std::uint64_t* present;  ///< likewise
};

/// What a line has for the interface `name`, which may be empty.
std::string interface_text(std::string_view name, FrameFormat format);

/// The lines in front of all frames.
std::string_view heading(FrameFormat format);

/// Appends the line of a frame, or its lines; none when a signal is wanted that it does not hold.
void append_frame(LineBuffer& out, const DecodedFrame& frame, const FrameOptions& options);

}  // namespace zelk::tool

#endif

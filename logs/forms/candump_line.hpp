/// \file
/// Lines as candump writes them.

#ifndef ZELK_LOGS_FORMS_CANDUMP_LINE_HPP
#define ZELK_LOGS_FORMS_CANDUMP_LINE_HPP

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "zelk/logs/frame.hpp"

namespace zelk::logs {

inline constexpr std::size_t kClassicBytes = 8;  // of data, at most, but for CAN FD

/// By this bit SocketCAN marks the identifiers of error frames.
inline constexpr std::uint32_t kErrorFlag = 0x20000000;

/// The kind of a line of a log.
enum class LineKind : std::uint8_t {
  kBlank,
  kFrame,
  kMalformed,  ///< none of the forms
};

/// The frame of a line. Texts point into the line.
struct LineFrame {
  std::string_view time{};     ///< without its brackets; empty when there is none
  std::string_view channel{};  ///< empty when there is none
  std::uint32_t id = 0;        ///< bit 31: extended
  unsigned flags = 0;          ///< of `ZelkFrameFlags`
  std::size_t length = 0;      ///< of the data
  unsigned char* data;         ///< room for 64 bytes and the slack; padded with 8 zeros
};

/// Reads one line, without its line feed; a carriage return at its end is ignored.
///
/// @param frame  `data` is given; the others are replaced, in part also for lines without a frame
LineKind parse_candump_line(std::string_view line, LineFrame& frame);

/// Reads a frame alone, in the form of logs: "123#DEADBEEF".
///
/// @param frame  as `parse_candump_line`; its time and channel do not change
bool parse_candump_frame(std::string_view text, LineFrame& frame);

/// The flags of a CAN FD frame.
///
/// @param digit  the one behind "##", 0 to 15
unsigned fd_flags(int digit);

/// The time of a frame; `kZelkNoTime` when it has none, or it is neither a number of seconds nor a
/// date.
std::int64_t time_of(const LineFrame& frame);

}  // namespace zelk::logs

#endif

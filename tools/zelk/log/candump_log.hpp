/// \file
/// Recorded frames, in the forms that the `candump` program writes.

#ifndef ZELK_TOOL_LOG_CANDUMP_LOG_HPP
#define ZELK_TOOL_LOG_CANDUMP_LOG_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zelk::tool {

inline constexpr std::size_t kClassicDataBytes = 8;
inline constexpr std::size_t kFdDataBytes = 64;
inline constexpr std::size_t kLongestInterface = 64;  // bytes of its name

/// The kind of a line of a log.
enum class LogLine {
  kBlank,
  kData,       ///< a frame with data, also of no bytes
  kRemote,     ///< a request for a frame
  kError,      ///< the controller's report of a fault on the bus
  kMalformed,  ///< none of the forms
};

/// A frame of a log. Texts point into the line that it was read from.
struct LogFrame {
  std::string_view time;            ///< without its brackets; empty when there is none
  std::string_view interface_name;  ///< empty when there is none
  std::uint32_t id = 0;             ///< bit 31: extended
  bool is_fd = false;
  std::uint8_t fd_flags = 0;                       ///< 0 to 15; of CAN FD only
  std::size_t length = 0;                          ///< in bytes
  std::array<unsigned char, kFdDataBytes> data{};  ///< `length` bytes count
};

/// Reads one line, without its line feed; a carriage return at its end is ignored.
///
/// @param frame  receives the frame of a `kData` line; in part also of other lines
LogLine parse_log_line(std::string_view line, LogFrame& frame);

/// Reads a frame alone, as the log form has it: "123#DEADBEEF".
///
/// @param frame  receives the frame; its time and interface do not change
LogLine parse_frame(std::string_view text, LogFrame& frame);

/// The frame in the log form, "123#DEADBEEF", "12345678##0DEADBEEF".
std::string frame_text(const LogFrame& frame);

}  // namespace zelk::tool

#endif

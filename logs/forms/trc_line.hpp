/// \file
/// Lines of traces.

#ifndef ZELK_LOGS_FORMS_TRC_LINE_HPP
#define ZELK_LOGS_FORMS_TRC_LINE_HPP

#include <cstdint>
#include <string_view>

#include "logs/forms/candump_line.hpp"
#include "logs/forms/trc_header.hpp"

namespace zelk::logs {

/// The frame of a line.
struct TrcFrame {
  std::int64_t time = 0;  ///< nanoseconds since the start
  bool has_time = false;
  std::uint32_t id = 0;    ///< bit 31: extended
  unsigned flags = 0;      ///< of `ZelkFrameFlags`
  unsigned bus = 0;        ///< 1 to 99; 0 when the line has none
  std::size_t length = 0;  ///< of the data
  unsigned char* data;     ///< room for `kLongestTrcData` bytes and the slack; padded with 8 zeros
};

/// Bytes of data: a message of J1939 that the recorder has put together.
inline constexpr std::size_t kLongestTrcData = 1785;

/// Reads one line, which is no comment, without its line end.
///
/// @param frame  as it was made, with `data` given
/// @return `kBlank` also for what a recorder notes that is no frame: a status, an event, counters
LineKind parse_trc_line(std::string_view line, const TrcHeader& header, TrcFrame& frame);

}  // namespace zelk::logs

#endif

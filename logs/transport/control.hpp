/// \file
/// Frames that manage the transport of J1939 messages (TP.CM):
///
// clang-format off
///    byte 0           1 | 2        3         4          5 | 6 | 7
///   +---------------+--------+---------+--------------+-------------+
///   | 16  RTS       | length | packets | most at once | group       |
///   | 17  CTS       | packets, next one |              | number,     |
///   | 19  end (ACK) | length | packets |              | lowest byte |
///   | 32  BAM       | length | packets |              | first       |
///   | 255 abort     | reason |         |              |             |
///   +---------------+--------+---------+--------------+-------------+
// clang-format on

#ifndef ZELK_LOGS_TRANSPORT_CONTROL_HPP
#define ZELK_LOGS_TRANSPORT_CONTROL_HPP

#include <cstddef>
#include <cstdint>
#include <span>

#include "base/j1939.hpp"
#include "zelk/logs/transport.hpp"

namespace zelk::logs {

inline constexpr std::size_t kControlBytes = 8;
/// Data of a packet (TP.DT), behind its number.
inline constexpr std::size_t kPacketBytes = 7;

enum class ControlKind : std::uint8_t {
  kRequestToSend = 16,
  kClearToSend = 17,
  kEndOfMessage = 19,
  kBroadcast = 32,
  kAbort = 255,
};

struct Control {
  ControlKind kind;            ///< or any other number
  std::size_t length_bytes;    ///< of announcements
  std::size_t packets;         ///< likewise
  std::uint32_t group_number;  ///< 24 bits
};

inline Control control_of(std::span<const unsigned char, kControlBytes> data) {
  const auto byte = [data](std::size_t at) { return std::uint32_t{data[at]}; };
  return {static_cast<ControlKind>(data[0]), byte(1) | byte(2) << 8, byte(3),
          byte(5) | byte(6) << 8 | byte(7) << 16};
}

/// Whether an announcement, RTS or BAM, may be one: its numbers agree, and a broadcast goes to all.
inline bool is_consistent(const Control& announcement, const j1939::FrameId& frame) {
  const bool is_broadcast = announcement.kind == ControlKind::kBroadcast;
  const std::size_t length = announcement.length_bytes;
  return length > 0 && length <= ZelkTransport::kMostData &&
         announcement.packets == (length + kPacketBytes - 1) / kPacketBytes &&
         announcement.group_number <= j1939::kLargestGroupNumber &&
         is_broadcast == (frame.group.destination == j1939::kGlobalAddress);
}

}  // namespace zelk::logs

#endif

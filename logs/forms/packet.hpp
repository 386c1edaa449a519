/// \file
/// Frames as packets of a capture hold them.

#ifndef ZELK_LOGS_FORMS_PACKET_HPP
#define ZELK_LOGS_FORMS_PACKET_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "logs/forms/candump_line.hpp"

namespace zelk::logs {

/// What packets begin with, by libpcap's number for it.
enum class LinkType : int {
  kSocketCan = 227,  ///< the frame
  kCooked = 113,     ///< a header of any interface (SLL)
  kCooked2 = 276,    ///< one with the interface's number (SLL2)
};

/// Bytes of a packet that matter, at most.
inline constexpr std::size_t kMostPacketBytes = 128;

/// A packet as it was captured.
struct Packet {
  std::span<const unsigned char> bytes;  ///< of it, the first `kMostPacketBytes`
  std::size_t length;                    ///< before the capture cut it
};

/// The frame of a packet.
struct PacketFrame {
  std::uint32_t id = 0;                   ///< bit 31: extended
  unsigned flags = 0;                     ///< of `ZelkFrameFlags`
  std::uint32_t interface = 0;            ///< number of the interface; 0 when there is none
  std::size_t length = 0;                 ///< of the data
  std::span<const unsigned char> data{};  ///< in the packet; empty for a request
};

/// @return `kBlank` for what is not of CAN
LineKind parse_packet(LinkType type, const Packet& packet, PacketFrame& frame);

}  // namespace zelk::logs

#endif

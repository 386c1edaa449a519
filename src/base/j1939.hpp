/// \file
/// Identifiers of J1939 frames and numbers of their parameter groups.
///
/// Layout of a 29-bit identifier (SAE J1939-21):
///
// clang-format off
///    28  26 25  24 23        16 15           8 7          0
///   +------+------+------------+--------------+------------+
///   | prio | DP   | PDU format | PDU specific | source     |
///   +------+------+------------+--------------+------------+
///          |<---- parameter group number ---->|
// clang-format on
///
/// A PDU format below 240 (PDU1) makes the PDU specific byte a destination address, which is no
/// part of the group number; from 240 on (PDU2) it extends the group number and the frame goes to
/// everybody.

#ifndef ZELK_BASE_J1939_HPP
#define ZELK_BASE_J1939_HPP

#include <cstdint>
#include <string_view>

namespace zelk::j1939 {

constexpr std::uint32_t kFirstPdu2Format = 240;
constexpr std::uint32_t kProprietaryPdu1Format = 0xEF;
constexpr std::uint32_t kProprietaryPdu2Format = 0xFF;
constexpr std::uint32_t kAnyAddress = 0xFE;
constexpr std::uint32_t kGlobalAddress = 0xFF;
/// The two groups of the transport protocol, which carries messages longer than a frame: its
/// control frames (TP.CM) and packets (TP.DT).
constexpr std::uint32_t kTransportControl = 0xEC00;
constexpr std::uint32_t kTransportData = 0xEB00;
/// The largest group number with its PDU specific byte: 18 bits.
constexpr std::uint32_t kLargestGroupNumber = 0x3FFFF;
/// The attribute that states a message's frame format.
constexpr char kFrameFormatAttribute[] = "VFrameFormat";

/// Whether a text of that attribute means a parameter group.
constexpr bool is_j1939_format(std::string_view text) { return text.starts_with("J1939PG"); }

/// What a group number names: the group itself and, for PDU1, the destination in its lowest byte.
struct Group {
  std::uint32_t key;
  std::uint32_t destination;
  bool is_pdu1;
};

/// @param number  group number with the PDU specific byte, in bits 0..17; higher bits are ignored
constexpr Group group_of_number(std::uint32_t number) {
  const std::uint32_t format = (number >> 8) & 0xFF;
  if (format < kFirstPdu2Format) return {number & 0x3FF00, number & 0xFF, true};
  return {number & kLargestGroupNumber, kGlobalAddress, false};
}

struct FrameId {
  Group group;
  std::uint32_t format;
  std::uint32_t source;
  std::uint32_t priority;  ///< 0 is the most urgent
};

constexpr FrameId frame_of_id(std::uint32_t id) {
  return {group_of_number(id >> 8), (id >> 16) & 0xFF, id & 0xFF, (id >> 26) & 7};
}

/// The reverse: 29 bits.
constexpr std::uint32_t id_of(const FrameId& frame) {
  const std::uint32_t specific = frame.group.is_pdu1 ? frame.group.destination : 0;
  return frame.priority << 26 | (frame.group.key | specific) << 8 | frame.source;
}

/// Whether a frame belongs to the transport protocol.
///
/// @param id  with bit 31 for an extended identifier
constexpr bool is_transport_packet(std::uint32_t id) {
  constexpr std::uint32_t kExtended = 0x80000000;
  const std::uint32_t group = id & (kExtended | 0x3FF00 << 8);  // both groups are PDU1
  return group == (kExtended | kTransportControl << 8) ||
         group == (kExtended | kTransportData << 8);
}

constexpr bool is_proprietary(const FrameId& frame) {
  return frame.format == kProprietaryPdu1Format || frame.format == kProprietaryPdu2Format;
}

}  // namespace zelk::j1939

#endif

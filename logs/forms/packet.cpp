#include "logs/forms/packet.hpp"

#include <algorithm>
#include <cstring>

#include "base/frame_id.hpp"
#include "zelk/logs/frame.hpp"
#include "zelk/records.h"

// Layouts. Numbers have the most significant byte first, where nothing else is said.
//
//   frame   0 identifier with flags (4 bytes), 4 length, 5 flags of CAN FD, 6 two others, 8 data
//   SLL     0 direction (2), 2 hardware, address (12), 14 protocol (2), 16 frame
//   SLL2    0 protocol (2), 4 interface (4), 10 direction (1), 12 address, 20 frame
//
// Behind the headers SLL and SLL2 the identifier is in the order of the recording machine, which
// libpcap turns into that of the reading one.

namespace zelk::logs {

namespace {

constexpr std::size_t kFrameHeaderBytes = 8;
constexpr std::size_t kCookedHeaderBytes = 16;
constexpr std::size_t kCooked2HeaderBytes = 20;
constexpr std::size_t kFdFrameBytes = 72;  // of all that have no mark of CAN FD

constexpr std::uint32_t kExtendedFlag = 0x80000000;
constexpr std::uint32_t kRemoteFlag = 0x40000000;
constexpr unsigned kFdMark = 4;
constexpr int kLowestFlags = 0xF;

constexpr std::uint32_t kCanProtocol = 0xC;
constexpr std::uint32_t kFdProtocol = 0xD;
constexpr std::uint32_t kSent = 4;

std::uint32_t number_at(std::span<const unsigned char> bytes, std::size_t at, std::size_t size) {
  std::uint32_t number = 0;
  for (const unsigned char byte : bytes.subspan(at, size)) number = number << 8 | byte;
  return number;
}

bool take_id(std::uint32_t number, PacketFrame& frame) {
  frame.id = number & kLargestExtendedId;
  if (number & kErrorFlag) {
    frame.flags |= kZelkFrameError;
    frame.id |= ZELK_ID_EXTENDED;
    return true;
  }
  if (number & kRemoteFlag) frame.flags |= kZelkFrameRemote;
  if (number & kExtendedFlag) frame.id |= ZELK_ID_EXTENDED;
  return (number & kExtendedFlag) || frame.id <= kLargestStandardId;
}

/// What stands behind the identifier.
bool take_rest(const Packet& packet, bool is_fd, PacketFrame& frame) {
  const unsigned fd_digit = packet.bytes[5];
  frame.length = packet.bytes[4];
  is_fd = is_fd || fd_digit & kFdMark || packet.length >= kFdFrameBytes;
  if (is_fd) frame.flags |= fd_flags(static_cast<int>(fd_digit) & kLowestFlags);
  if (frame.length > (is_fd ? ZelkFrame::kMostData : kClassicBytes)) return false;
  if (frame.flags & kZelkFrameRemote) return true;
  const auto data = packet.bytes.subspan(kFrameHeaderBytes);
  if (frame.length > data.size()) return false;
  frame.data = data.first(frame.length);
  return true;
}

LineKind parse_frame(std::uint32_t id, const Packet& packet, bool is_fd, PacketFrame& frame) {
  return take_id(id, frame) && take_rest(packet, is_fd, frame) ? LineKind::kFrame
                                                               : LineKind::kMalformed;
}

/// The frame behind a header of `size` bytes.
LineKind parse_cooked(const Packet& packet, std::size_t size, std::uint32_t protocol,
                      PacketFrame& frame) {
  if (protocol != kCanProtocol && protocol != kFdProtocol) return LineKind::kBlank;
  const Packet rest{packet.bytes.subspan(size), packet.length - std::min(size, packet.length)};
  if (rest.bytes.size() < kFrameHeaderBytes) return LineKind::kMalformed;
  std::uint32_t id = 0;
  std::memcpy(&id, rest.bytes.data(), sizeof id);
  return parse_frame(id, rest, protocol == kFdProtocol, frame);
}

LineKind parse_cooked1(const Packet& packet, PacketFrame& frame) {
  if (packet.bytes.size() < kCookedHeaderBytes) return LineKind::kMalformed;
  if (number_at(packet.bytes, 0, 2) == kSent) frame.flags |= kZelkFrameSent;
  return parse_cooked(packet, kCookedHeaderBytes, number_at(packet.bytes, 14, 2), frame);
}

LineKind parse_cooked2(const Packet& packet, PacketFrame& frame) {
  if (packet.bytes.size() < kCooked2HeaderBytes) return LineKind::kMalformed;
  if (packet.bytes[10] == kSent) frame.flags |= kZelkFrameSent;
  frame.interface = number_at(packet.bytes, 4, 4);
  return parse_cooked(packet, kCooked2HeaderBytes, number_at(packet.bytes, 0, 2), frame);
}

}  // namespace

LineKind parse_packet(LinkType type, const Packet& packet, PacketFrame& frame) {
  if (type == LinkType::kCooked) return parse_cooked1(packet, frame);
  if (type == LinkType::kCooked2) return parse_cooked2(packet, frame);
  if (packet.bytes.size() < kFrameHeaderBytes) return LineKind::kMalformed;
  return parse_frame(number_at(packet.bytes, 0, 4), packet, false, frame);
}

}  // namespace zelk::logs

#include "report/frame_length.hpp"

#include <initializer_list>

namespace zelk::tool {

namespace {

/// Most stuff bits among `bits` bits that are stuffed, one of the last bit included.
constexpr std::uint64_t most_stuff_bits(std::uint64_t bits) { return (bits - 1) / 4; }

/// Lengths of data that CAN FD has: 0 to 8, 12, 16, 20, 24, 32, 48 and 64.
std::uint64_t fd_bytes(std::uint32_t bytes) {
  if (bytes <= 8) return bytes;
  for (const std::uint32_t length : {12u, 16u, 20u, 24u, 32u, 48u})
    if (bytes <= length) return length;
  return 64;
}

}  // namespace

// ISO 11898-1, data frame; the number of bits is behind the name:
//
//   stuffed:      SOF 1, identifier 11, RTR 1, IDE 1, r0 1, DLC 4, data 8n, CRC 15
//                 an extended frame has 18 more bits of identifier, SRR 1 and r1 1
//   not stuffed:  CRC delimiter 1, ACK slot and delimiter 2, end of frame 7, interframe space 3
//
// The bound of stuff bits is that of R. Davis, A. Burns, R. Bril, J. Lukkien, "Controller Area
// Network (CAN) schedulability analysis: Refuted, revisited and revised", 2007:
// (34 + 8n - 1) / 4 or (54 + 8n - 1) / 4, rounded down.
FrameLength classic_length(bool is_extended, std::uint32_t bytes) {
  constexpr std::uint64_t kTail = 1 + 2 + 7 + 3;
  const std::uint64_t stuffed = (is_extended ? 54 : 34) + std::uint64_t{8} * bytes;
  return {.best = {stuffed + kTail, 0}, .worst = {stuffed + kTail + most_stuff_bits(stuffed), 0}};
}

// ISO 11898-1, frame in FD format:
//
//   nominal rate:  SOF 1, identifier 11, RRS 1, IDE 1, FDF 1, res 1, BRS 1
//                  an extended frame has 18 more bits of identifier, and SRR 1
//   data rate:     ESI 1, DLC 4, data 8n; stuff count 4, CRC 17 (up to 16 bytes) or 21, and a fixed
//                  stuff bit in front of each four of these: 6 or 7
//   nominal rate:  CRC delimiter 1, ACK slot and delimiter 2, end of frame 7, interframe space 3
//
// The rate changes inside of BRS and of the CRC delimiter; both count in full at the nominal rate.
// Stuffing by content ends with the data: a fixed stuff bit follows, which also takes the place of
// one that the last bit of the data would demand. So at most (bits - 2) / 4 are stuffed, of which
// those that follow the bits in front of BRS are at the nominal rate.
FrameLength fd_length(bool is_extended, std::uint32_t bytes, bool switches_rate) {
  constexpr std::uint64_t kTail = 1 + 2 + 7 + 3;
  const std::uint64_t length = fd_bytes(bytes);
  const std::uint64_t head = is_extended ? 36 : 17;
  const std::uint64_t body = 1 + 4 + 8 * length;
  const std::uint64_t checksum = length <= 16 ? 4 + 17 + 6 : 4 + 21 + 7;
  const std::uint64_t stuff_in_head = most_stuff_bits(head - 1);
  const std::uint64_t stuff_in_body = most_stuff_bits(head + body - 1) - stuff_in_head;
  FrameLength frame{.best = {head + kTail, body + checksum},
                    .worst = {head + kTail + stuff_in_head, body + checksum + stuff_in_body}};
  if (!switches_rate) frame = {{frame.best.sum(), 0}, {frame.worst.sum(), 0}};
  return frame;
}

FrameLength transported_length(std::uint32_t bytes) {
  constexpr std::uint32_t kPacketBytes = 7;
  const std::uint64_t frames = 1 + (std::uint64_t{bytes} + kPacketBytes - 1) / kPacketBytes;
  const FrameLength one = classic_length(true, 8);
  return {.best = {frames * one.best.nominal, 0}, .worst = {frames * one.worst.nominal, 0}};
}

}  // namespace zelk::tool

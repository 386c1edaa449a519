/// \file
/// How many bits a frame takes on the bus.
///
/// Between the fields stand stuff bits, as many as the content demands: after five equal bits one
/// of the other value. A frame without any is the shortest, one with a stuff bit after the first
/// five bits and then after each four is the longest.

#ifndef ZELK_TOOL_REPORT_FRAME_LENGTH_HPP
#define ZELK_TOOL_REPORT_FRAME_LENGTH_HPP

#include <cstdint>

namespace zelk::tool {

/// Bits of a frame by the rate at which they are sent.
struct BitCount {
  std::uint64_t nominal = 0;
  std::uint64_t data = 0;  ///< those of a CAN FD frame behind the switch of the bit rate

  std::uint64_t sum() const { return nominal + data; }
  double seconds(double bit_rate, double data_bit_rate) const {
    return static_cast<double>(nominal) / bit_rate + static_cast<double>(data) / data_bit_rate;
  }
};

/// Without stuff bits, and with as many as there can be.
struct FrameLength {
  BitCount best;
  BitCount worst;
};

/// A data frame of classic CAN with the three bits of interframe space behind it.
///
/// @param bytes  of data, up to 8
FrameLength classic_length(bool is_extended, std::uint32_t bytes);

/// A frame of CAN FD, likewise.
///
/// @param bytes          of data, up to 64; sent are those of the next length that CAN FD has
/// @param switches_rate  whether the data phase has the data bit rate
FrameLength fd_length(bool is_extended, std::uint32_t bytes, bool switches_rate);

/// A message of J1939 that is longer than a frame, sent to all: an announcement, and packets of
/// seven bytes each; all are extended frames of 8 bytes.
FrameLength transported_length(std::uint32_t bytes);

}  // namespace zelk::tool

#endif

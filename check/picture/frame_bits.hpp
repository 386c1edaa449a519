/// \file
/// Which signals have which bits of a frame.

#ifndef ZELK_CHECK_PICTURE_FRAME_BITS_HPP
#define ZELK_CHECK_PICTURE_FRAME_BITS_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "zelk/records.h"

namespace zelk::check {

/// Place of one bit in the data: byte from 0, and bit 7 (most significant) to 0 inside the byte.
struct BitPlace {
  std::uint32_t byte;
  std::uint32_t bit;
};

/// Place of the signal's bit `index`, counted from its least significant one; `index` is below its
/// length.
BitPlace bit_place(const sigblk& signal, std::uint32_t index);

/// Highest byte that the signal touches; 0 for one without bits.
std::uint32_t last_byte(const sigblk& signal);

/// Most significant to least significant bit: "byte 2 bit 7 to byte 1 bit 0", "byte 0 bits 1 to 0",
/// "byte 0 bit 5", "no bits".
std::string place_text(const sigblk& signal);

/// One bit of a frame.
struct FrameBit {
  static constexpr std::size_t kMaxNamed = 8;

  std::vector<const sigblk*> signals;  ///< those that have it, up to `kMaxNamed` of them
  std::size_t signal_count = 0;
  bool msb = false;  ///< it is the most significant one of a signal
  bool lsb = false;  ///< it is the least significant one of a signal
};

/// Signals that share bits, and how many.
struct BitOverlap {
  std::vector<const sigblk*> signals;  ///< up to `FrameBit::kMaxNamed`
  std::size_t signal_count = 0;
  std::size_t bit_count = 0;
  BitPlace first{};
};

/// The bits of a frame, byte by byte. Every byte of a frame of up to 64 bytes has a row, and beyond
/// that or behind the data length those that a signal touches; 128 rows at most.
class FrameBits {
 public:
  using Row = std::array<FrameBit, 8>;  ///< indexed by bit

  /// @param dlc      data length in bytes
  /// @param signals  to be placed, borrowed; those without bits leave no trace
  FrameBits(std::uint32_t dlc, const std::vector<const sigblk*>& signals);

  std::uint32_t dlc() const { return dlc_; }
  const std::map<std::uint32_t, Row>& rows() const { return rows_; }  ///< by byte
  /// Whether signals touch further bytes, which have no rows.
  bool is_cut() const { return is_cut_; }
  /// One for each set of signals that share bits, in the order of the bytes.
  std::vector<BitOverlap> overlaps() const;

 private:
  void place(const sigblk& signal);
  Row* row_of(std::uint32_t byte);

  std::uint32_t dlc_;
  std::map<std::uint32_t, Row> rows_;
  bool is_cut_ = false;
};

}  // namespace zelk::check

#endif

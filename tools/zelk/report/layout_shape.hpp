/// \file
/// The outline of a signal among the bits of a frame.

#ifndef ZELK_TOOL_REPORT_LAYOUT_SHAPE_HPP
#define ZELK_TOOL_REPORT_LAYOUT_SHAPE_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "check/picture/frame_bits.hpp"

namespace zelk::tool {

/// Where bits are drawn, in units of four pixels so that coordinates are short: bytes as rows, bits
/// 7 to 0 as columns. Frames of many bytes go on in up to three blocks of rows side by side:
///
///        7 6 5 4 3 2 1 0        7 6 5 4 3 2 1 0
///      0| | | | | | | | |     8| | | | | | | | |
///      1| | | | | | | | |     9| | | | | | | | |
class LayoutGrid {
 public:
  static constexpr int kCellWidth = 10;
  static constexpr int kRowHeight = 7;
  static constexpr int kLabelWidth = 8;  ///< in front of each row, for the number of its byte
  static constexpr int kHeadHeight = 4;  ///< above each block, for the numbers of bits
  static constexpr int kBlockWidth = kLabelWidth + 8 * kCellWidth;
  static constexpr int kBlockGap = 4;
  static constexpr int kPixels = 4;  ///< in a unit

  explicit LayoutGrid(std::vector<std::uint32_t> bytes);

  const std::vector<std::uint32_t>& bytes() const { return bytes_; }  ///< of the rows
  /// The row of a byte; the number of rows when it has none.
  std::size_t row_of(std::uint32_t byte) const;
  std::size_t block_of(std::size_t row) const { return row / rows_in_block_; }
  std::size_t block_count() const { return (bytes_.size() + rows_in_block_ - 1) / rows_in_block_; }

  int block_x(std::size_t block) const {
    return static_cast<int>(block) * (kBlockWidth + kBlockGap);
  }
  /// The left edge of a column: 0 for that of bit 7, 8 for the right edge of bit 0.
  int x(std::size_t row, int column) const {
    return block_x(block_of(row)) + kLabelWidth + column * kCellWidth;
  }
  int y(std::size_t row) const {
    return kHeadHeight + static_cast<int>(row % rows_in_block_) * kRowHeight;
  }
  int width() const;
  int height() const;

 private:
  std::vector<std::uint32_t> bytes_;
  std::unordered_map<std::uint32_t, std::size_t> rows_;
  std::size_t rows_in_block_;
};

/// Neighbouring bits in one row, from the column `left` to in front of `right`.
struct LayoutSegment {
  std::size_t row;
  int left;
  int right;
};

/// The bits of a signal, downwards; of one that leaves the rows what is in them.
std::vector<LayoutSegment> segments_of(const sigblk& signal, const LayoutGrid& grid);

/// The outline as data of an SVG path.
std::string outline(const std::vector<LayoutSegment>& segments, const LayoutGrid& grid);

/// Likewise of the bits of one row.
std::string box_outline(const LayoutSegment& segment, const LayoutGrid& grid);

/// A line through the bits of several rows, from the most to the least significant one, as data of
/// an SVG path; empty for those of one row.
std::string order_line(const sigblk& signal, const std::vector<LayoutSegment>& segments,
                       const LayoutGrid& grid);

}  // namespace zelk::tool

#endif

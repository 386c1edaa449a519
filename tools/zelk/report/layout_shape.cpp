#include "report/layout_shape.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <utility>

#include "base/signal_bits.hpp"

namespace zelk::tool {

namespace {

/// 8 rows in a block as long as three blocks hold them all; then 16; then what is needed.
std::size_t rows_in_block(std::size_t count) {
  constexpr std::size_t kMostBlocks = 3;
  for (const std::size_t rows : {8u, 16u, 24u})
    if (count <= kMostBlocks * rows) return rows;
  return (count + kMostBlocks - 1) / kMostBlocks;
}

/// Whether two segments, one below the other, touch.
bool touches(const LayoutSegment& above, const LayoutSegment& below, const LayoutGrid& grid) {
  return grid.block_of(above.row) == grid.block_of(below.row) &&
         std::max(above.left, below.left) < std::min(above.right, below.right);
}

/// Down along the right ends, and up along the left ones.
std::string polygon(std::span<const LayoutSegment> rows, const LayoutGrid& grid) {
  const auto left = [&](std::size_t i) { return grid.x(rows[i].row, rows[i].left); };
  const auto right = [&](std::size_t i) { return grid.x(rows[i].row, rows[i].right); };
  const auto top = [&](std::size_t i) { return grid.y(rows[i].row); };
  const std::size_t last = rows.size() - 1;
  std::string path = fmt::format("M{} {}H{}", left(0), top(0), right(0));
  for (std::size_t i = 1; i <= last; ++i)
    if (right(i) != right(i - 1)) path += fmt::format("V{}H{}", top(i), right(i));
  path += fmt::format("V{}H{}", top(last) + LayoutGrid::kRowHeight, left(last));
  for (std::size_t i = last; i > 0; --i)
    if (left(i) != left(i - 1)) path += fmt::format("V{}H{}", top(i), left(i - 1));
  return path + "z";
}

}  // namespace

LayoutGrid::LayoutGrid(std::vector<std::uint32_t> bytes)
    : bytes_(std::move(bytes)), rows_in_block_(rows_in_block(bytes_.size())) {
  for (std::size_t row = 0; row < bytes_.size(); ++row) rows_[bytes_[row]] = row;
}

std::size_t LayoutGrid::row_of(std::uint32_t byte) const {
  const auto found = rows_.find(byte);
  return found == rows_.end() ? bytes_.size() : found->second;
}

int LayoutGrid::width() const {
  const std::size_t blocks = std::max<std::size_t>(block_count(), 1);
  return block_x(blocks - 1) + kBlockWidth;
}

int LayoutGrid::height() const {
  const std::size_t rows = std::min(bytes_.size(), rows_in_block_);
  return kHeadHeight + static_cast<int>(rows) * kRowHeight;
}

// In both byte orders the byte with the most significant bit is filled down to its bit 0, and the
// one with the least significant bit from its bit 7 on; bytes between them are whole.
std::vector<LayoutSegment> segments_of(const sigblk& signal, const LayoutGrid& grid) {
  std::vector<LayoutSegment> segments;
  if (signal.length == 0) return segments;
  const check::BitPlace msb = check::bit_place(signal, signal.length - 1u);
  const check::BitPlace lsb = check::bit_place(signal, 0);
  for (std::uint32_t byte = std::min(msb.byte, lsb.byte); byte <= std::max(msb.byte, lsb.byte);
       ++byte) {
    const std::size_t row = grid.row_of(byte);
    if (row == grid.bytes().size()) break;
    segments.push_back({row, byte == msb.byte ? 7 - static_cast<int>(msb.bit) : 0,
                        byte == lsb.byte ? 8 - static_cast<int>(lsb.bit) : 8});
  }
  return segments;
}

std::string box_outline(const LayoutSegment& segment, const LayoutGrid& grid) {
  return polygon(std::span(&segment, 1), grid);
}

std::string outline(const std::vector<LayoutSegment>& segments, const LayoutGrid& grid) {
  std::string path;
  for (std::size_t begin = 0, end = 0; begin < segments.size(); begin = end) {
    for (end = begin + 1; end < segments.size(); ++end)
      if (!touches(segments[end - 1], segments[end], grid)) break;
    path += polygon(std::span(segments).subspan(begin, end - begin), grid);
  }
  return path;
}

std::string order_line(const sigblk& signal, const std::vector<LayoutSegment>& segments,
                       const LayoutGrid& grid) {
  constexpr int kInset = 2;
  constexpr int kBelowTop = LayoutGrid::kRowHeight - 1;
  if (segments.size() < 2) return {};
  std::vector<LayoutSegment> path = segments;
  if (!is_motorola(signal)) std::ranges::reverse(path);
  std::string line;
  const LayoutSegment* before = nullptr;
  for (const LayoutSegment& segment : path) {
    const bool joins = before && grid.block_of(before->row) == grid.block_of(segment.row);
    line +=
        fmt::format("{}{} {}H{}", joins ? 'L' : 'M', grid.x(segment.row, segment.left) + kInset,
                    grid.y(segment.row) + kBelowTop, grid.x(segment.row, segment.right) - kInset);
    before = &segment;
  }
  return line;
}

}  // namespace zelk::tool

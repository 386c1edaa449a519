#include "logs/columns/column_rows.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace zelk::logs {

namespace {

constexpr std::size_t kFirstRows = 64;

/// Bitmaps are read and written a word beyond their last bit.
std::size_t bitmap_size(std::size_t rows) { return (words_for(rows) + 1) * sizeof(std::uint64_t); }

}  // namespace

void ColumnRows::reserve(std::size_t more, std::size_t usual_rows) {
  if (has_room(more)) return;
  // Rows are moved to the front when more were taken out than are left: each is moved once, at
  // most.
  if (first_ > 0 && first_ >= size_) {
    *this = copy(0, size_, room_);
    if (has_room(more)) return;
  }
  const std::size_t needed = first_ + size_ + more;
  const std::size_t doubled = std::max(2 * room_, kFirstRows);
  const std::size_t usual = usual_rows + usual_rows / 8;
  resize(std::max(needed, needed <= usual ? std::min(doubled, usual) : doubled / 4 * 3));
}

void ColumnRows::resize(std::size_t rows) {
  if (rows > SIZE_MAX / 2 / width_) throw std::bad_alloc();
  const std::size_t bitmap_at = Buffer::rounded(rows * width_);
  Buffer memory(bitmap_at + bitmap_size(rows));
  if (first_ + size_ > 0) std::memcpy(memory.data(), memory_.data(), (first_ + size_) * width_);
  if (null_count_ > 0) {
    std::memcpy(memory.data() + bitmap_at, bitmap(),
                words_for(first_ + size_) * sizeof(std::uint64_t));
  }
  memory_ = std::move(memory);
  bitmap_at_ = bitmap_at;
  room_ = rows;
}

void ColumnRows::append(const ColumnRows& other) {
  if (other.size_ == 0) return;
  std::memcpy(end(), other.memory_.data() + other.first_ * width_, other.size_ * width_);
  if (other.null_count_ == 0) return add(other.size_);
  add_with_nulls(other.size_, bits_from(other.bitmap(), other.first_), other.null_count_);
}

ColumnRows ColumnRows::take(std::size_t count, ColumnRows copied) noexcept {
  if (takes_copy(count)) {
    first_ += count;
    size_ -= count;
    null_count_ -= copied.null_count_;
    return copied;
  }
  std::swap(*this, copied);
  copied.size_ = count;
  copied.null_count_ -= null_count_;
  return copied;
}

Buffer ColumnRows::give_memory(const unsigned char*& bits) {
  bits = nullptr;
  memory_.pad(size_ * width_);
  if (null_count_ > 0) {
    std::uint64_t& last = bitmap()[size_ / kWordBits];
    last &= little_endian(low_bits(static_cast<unsigned>(size_ % kWordBits)));
    memory_.pad(bitmap_at_ + (size_ / kWordBits + 1) * sizeof(std::uint64_t));
    bits = memory_.data() + bitmap_at_;
  }
  return std::move(memory_);
}

/// @param room  for so many rows, when that is more than `count`
ColumnRows ColumnRows::copy(std::size_t first, std::size_t count, std::size_t room) const {
  ColumnRows rows(width_);
  rows.resize(std::max(room, count));
  if (count == 0) return rows;
  std::memcpy(rows.end(), memory_.data() + (first_ + first) * width_, count * width_);
  const auto bits = bits_from(bitmap(), first_ + first);
  const std::size_t nulls = null_count_ > 0 ? clear_bits(count, bits) : 0;
  nulls > 0 ? rows.add_with_nulls(count, bits, nulls) : rows.add(count);
  return rows;
}

}  // namespace zelk::logs

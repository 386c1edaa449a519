/// \file
/// The values of one column, growing at the end and cut off in front.

#ifndef ZELK_LOGS_COLUMNS_COLUMN_ROWS_HPP
#define ZELK_LOGS_COLUMNS_COLUMN_ROWS_HPP

#include <cstddef>
#include <cstdint>
#include <span>

#include "logs/columns/bits.hpp"
#include "logs/columns/buffer.hpp"

namespace zelk::logs {

/// Values of one width, and a bitmap of those that are not null, which is filled from the first
/// null on only.
///
///     | taken out | rows ............ | room | bitmap of all these
///     0           first_              first_ + size_
///
/// After `reserve` as many rows can be added without an exception.
class ColumnRows {
 public:
  /// @param width  of a value, in bytes
  explicit ColumnRows(std::size_t width) : width_(width) {}

  std::size_t size() const { return size_; }
  std::size_t width() const { return width_; }
  std::size_t null_count() const { return null_count_; }
  bool is_null(std::size_t row) const { return null_count_ > 0 && !is_set(bitmap(), first_ + row); }

  /// @param more        rows
  /// @param usual_rows  how many there are mostly in the end: up to that memory is doubled, and
  /// then not more than needed is taken
  /// @throws std::bad_alloc
  void reserve(std::size_t more, std::size_t usual_rows);
  bool has_room(std::size_t more) const { return more <= room_ - first_ - size_; }
  void clear() { first_ = size_ = null_count_ = 0; }

  /// All values, also of rows that are null.
  template <typename Value>
  std::span<Value> values() {
    return {reinterpret_cast<Value*>(memory_.data()) + first_, size_};
  }
  /// Where the values of new rows are written, after `reserve` and before `add_*`.
  unsigned char* end() const { return memory_.data() + (first_ + size_) * width_; }
  void add(std::size_t count) {
    if (null_count_ > 0) add_bits(count, [](std::size_t) { return ~std::uint64_t{0}; });
    size_ += count;
  }
  /// @param nulls  how many bits of `valid` are clear, at least 1
  void add(std::size_t count, const std::uint64_t* valid, std::size_t nulls) {
    add_with_nulls(count, bits_from(valid, 0), nulls);
  }
  void add_nulls(std::size_t count) {
    add_with_nulls(
        count, [](std::size_t) { return std::uint64_t{0}; }, count);
  }
  /// Copies rows of a column of the same width, after `reserve`.
  void append(const ColumnRows& other);

  /// The rows that `take(count)` has to copy: those to take, or those to stay when they are fewer,
  /// with room for as many as there were: what has filled a batch is likely to fill the next one.
  ///
  /// @throws std::bad_alloc
  ColumnRows copied_to_take(std::size_t count) const {
    return takes_copy(count) ? copy(0, count, count) : copy(count, size_ - count, room_);
  }
  /// Takes the first rows out. The result is not to be added to.
  ///
  /// @param count   at most `size()`
  /// @param copied  `copied_to_take(count)`
  ColumnRows take(std::size_t count, ColumnRows copied) noexcept;

  /// The memory of the values, at its beginning, and of the bitmap; padded with zeros. Only of what
  /// `take` gave.
  ///
  /// @param bits  receives the bitmap; null when there are no nulls
  Buffer give_memory(const unsigned char*& bits);

 private:
  std::uint64_t* bitmap() const {
    return reinterpret_cast<std::uint64_t*>(memory_.data() + bitmap_at_);
  }
  bool takes_copy(std::size_t count) const { return first_ > 0 || count < size_ - count; }
  ColumnRows copy(std::size_t first, std::size_t count, std::size_t room) const;
  void resize(std::size_t rows);

  template <typename WordAt>
  void add_bits(std::size_t count, const WordAt& word_at) {
    append_bits(bitmap(), first_ + size_, count, word_at);
  }
  template <typename WordAt>
  void add_with_nulls(std::size_t count, const WordAt& word_at, std::size_t nulls) {
    if (null_count_ == 0)
      append_bits(bitmap(), 0, first_ + size_, [](std::size_t) { return ~std::uint64_t{0}; });
    add_bits(count, word_at);
    null_count_ += nulls;
    size_ += count;
  }

  Buffer memory_;              ///< of the values, and behind them of the bitmap
  std::size_t bitmap_at_ = 0;  ///< aligned as all memory
  std::size_t width_;
  std::size_t room_ = 0;  ///< rows, those in front of `first_` included
  std::size_t first_ = 0;
  std::size_t size_ = 0;
  std::size_t null_count_ = 0;  ///< 0: the bitmap has no content
};

}  // namespace zelk::logs

#endif

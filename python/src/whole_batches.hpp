/// \file
/// Rows of one table in batches that are as large as can be.

#ifndef ZELK_PYTHON_WHOLE_BATCHES_HPP
#define ZELK_PYTHON_WHOLE_BATCHES_HPP

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "table.hpp"

namespace zelk::python {

/// Copies small batches, which are still in the processor's caches, behind each other into memory
/// that has room for all rows which are expected: an array of a column needs no further copy.
///
/// Places are given in order; the values may be copied there by several threads at once.
class WholeBatches {
 public:
  /// Copies the values of a batch to their places. Empty: they stay where they are.
  using Copying = std::function<void()>;

  explicit WholeBatches(std::shared_ptr<const TableHead> head) : head_(std::move(head)) {}

  /// Takes a batch over. One that is small, and all that is expected, stays as it is.
  ///
  /// @param expected  rows of the table from this batch on; when there are more, the result is
  /// several batches
  /// @return is to be called, in whichever thread, before the rows that `finish` gives are used
  /// @throws std::bad_alloc
  Copying append(ArrowArray batch, std::size_t expected);
  /// Rows that were appended.
  std::size_t row_count() const { return row_count_; }
  std::vector<SharedArray> finish();

 private:
  struct Column {
    unsigned char* values;
    std::uint64_t* bitmap;  ///< of no content while there are no nulls
    std::size_t width;      ///< of a value, in bytes
    std::size_t null_count = 0;
  };

  std::size_t size_for(std::size_t rows) const;
  void open(std::size_t least, std::size_t wanted);
  void append_nulls(Column& column, const ArrowArray& from) const;
  void close();
  void give_column(const Column& column, const ArrowArray& last, ArrowArray& out) const;

  std::shared_ptr<const TableHead> head_;
  std::vector<SharedArray> done_;
  std::size_t row_count_ = 0;

  // The batch that grows.
  std::shared_ptr<unsigned char> memory_;
  std::size_t room_ = 0;  ///< rows
  std::size_t size_ = 0;  ///< likewise
  std::vector<Column> columns_;
  SharedArray last_;  ///< was appended last: its dictionaries have all texts so far
};

/// A batch to be kept: a large one is moved into memory with large pages, and what it had is free
/// for the next one.
SharedArray kept(ArrowArray batch, const std::shared_ptr<const TableHead>& head);

}  // namespace zelk::python

#endif

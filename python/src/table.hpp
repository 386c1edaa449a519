/// \file
/// Decoded rows on the side of C++: a table of columns in batches, and these for other libraries.

#ifndef ZELK_PYTHON_TABLE_HPP
#define ZELK_PYTHON_TABLE_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "python.hpp"
#include "zelk/logs/arrow.h"
#include "zelk/logs/columns.hpp"

namespace zelk::python {

/// An Arrow structure whose last owner releases it, in whichever thread that is.
using SharedArray = std::shared_ptr<const ArrowArray>;
using SharedSchema = std::shared_ptr<const ArrowSchema>;

/// Takes a structure over.
SharedArray shared(ArrowArray array);
SharedSchema shared(ArrowSchema schema);

struct ColumnHead {
  std::string name;
  std::string unit;
  ZelkColumnType type;
};

/// What all batches of a table have in common.
struct TableHead {
  std::string name;
  std::string database;
  std::vector<ColumnHead> columns;
  SharedSchema schema;
};

/// Size of a value, in bytes.
std::size_t width_of(ZelkColumnType type);

/// Rows of one message, in batches that are shared with all that show them. Does not change.
class TableRows {
 public:
  explicit TableRows(std::shared_ptr<const TableHead> head, std::vector<SharedArray> batches = {});

  /// The rows of all parts behind each other; they must be of one table and have the same columns.
  static TableRows joined(const std::vector<const TableRows*>& parts);
  /// The same rows with some of the columns, in another order or repeatedly.
  TableRows with_columns(const std::vector<std::size_t>& columns) const;

  const TableHead& head() const { return *head_; }
  const std::vector<SharedArray>& batches() const { return batches_; }
  std::size_t row_count() const { return row_count_; }
  std::size_t column_count() const { return columns_.size(); }
  const ColumnHead& column(std::size_t index) const { return head_->columns[columns_.at(index)]; }
  /// A column of a batch.
  const ArrowArray& values(const ArrowArray& batch, std::size_t index) const {
    return *batch.children[columns_.at(index)];
  }

  void export_schema(ArrowSchema& out) const;
  /// Their memory is that of the batch, without a copy.
  void export_batch(std::size_t batch, ArrowArray& out) const;
  void export_stream(ArrowArrayStream& out) const;

 private:
  std::shared_ptr<const TableHead> head_;
  std::vector<SharedArray> batches_;
  std::vector<std::size_t> columns_;  ///< of `head_`
  std::size_t row_count_ = 0;
};

/// Whether a value is null.
inline bool is_null(const ArrowArray& values, std::size_t row) {
  const auto* const valid = static_cast<const unsigned char*>(values.buffers[0]);
  return values.null_count != 0 && valid && (valid[row / 8] >> (row % 8) & 1) == 0;
}

// Columns as arrays of NumPy. Those of one batch are its memory, which the array keeps, and are not
// to be written to; others are copies.

/// @param fills  NaN stands for null in columns of floating-point numbers
nb::object column_values(const TableRows& rows, std::size_t column, bool fills);
/// A bool for each row, true for null; None when there is none.
nb::object column_nulls(const TableRows& rows, std::size_t column);
/// Of a column of texts: a tuple of the index of each row's text, -1 for null, and a list of the
/// texts.
nb::object column_codes(const TableRows& rows, std::size_t column);

}  // namespace zelk::python

#endif

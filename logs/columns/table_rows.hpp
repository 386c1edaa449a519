/// \file
/// The rows of one table.

#ifndef ZELK_LOGS_COLUMNS_TABLE_ROWS_HPP
#define ZELK_LOGS_COLUMNS_TABLE_ROWS_HPP

#include <cstddef>
#include <cstdint>
#include <vector>

#include "logs/columns/column_rows.hpp"
#include "logs/columns/table_plan.hpp"

namespace zelk::logs {

/// All columns have the same number of rows.
class TableRows {
 public:
  TableRows() = default;
  explicit TableRows(const TablePlan& plan) {
    columns_.reserve(plan.columns().size());
    for (const ZelkColumn& column : plan.columns())
      row_bytes_ += columns_.emplace_back(width_of(column.type)).width();
  }

  std::size_t size() const { return columns_.empty() ? 0 : columns_.front().size(); }
  /// Of the values of all rows.
  std::size_t bytes() const { return size() * row_bytes_; }
  ColumnRows& column(std::size_t index) { return columns_[index]; }
  std::vector<ColumnRows>& columns() { return columns_; }

  void reserve(std::size_t more, std::size_t usual_rows) {
    for (ColumnRows& column : columns_) column.reserve(more, usual_rows);
  }
  void clear() {
    for (ColumnRows& column : columns_) column.clear();
  }
  /// Takes over the rows of `other`, which is empty afterwards, but may have other memory.
  void append(TableRows& other, std::size_t usual_rows);
  /// Takes the first rows out.
  ///
  /// @throws std::bad_alloc, with nothing taken
  TableRows take(std::size_t count);

 private:
  std::vector<ColumnRows> columns_;
  std::size_t row_bytes_ = 0;
};

}  // namespace zelk::logs

#endif

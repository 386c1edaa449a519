#include "logs/columns/table_rows.hpp"

#include <utility>

namespace zelk::logs {

void TableRows::append(TableRows& other, std::size_t usual_rows) {
  const bool has_room = !columns_.empty() && columns_.front().has_room(other.size());
  if (size() == 0 && !has_room) {
    std::swap(columns_, other.columns_);
  } else {
    reserve(other.size(), usual_rows);
    for (std::size_t i = 0; i < columns_.size(); ++i) columns_[i].append(other.columns_[i]);
  }
  other.clear();
}

TableRows TableRows::take(std::size_t count) {
  TableRows copied;
  copied.columns_.reserve(columns_.size());
  for (const ColumnRows& column : columns_) copied.columns_.push_back(column.copied_to_take(count));
  for (std::size_t i = 0; i < columns_.size(); ++i)
    copied.columns_[i] = columns_[i].take(count, std::move(copied.columns_[i]));
  return copied;
}

}  // namespace zelk::logs

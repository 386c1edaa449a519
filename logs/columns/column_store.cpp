#include "logs/columns/column_store.hpp"

#include <algorithm>
#include <utility>

#include "logs/columns/arrow_array.hpp"

namespace zelk::logs {

namespace {

/// @param of  for each index that the column has the one that it is to have
void replace_indices(ColumnRows& column, const std::vector<std::int32_t>& of) {
  const std::span<std::int32_t> indices = column.values<std::int32_t>();
  for (std::size_t row = 0; row < indices.size(); ++row)
    if (!column.is_null(row)) indices[row] = of[static_cast<std::size_t>(indices[row])];
}

}  // namespace

void ColumnStore::append(std::vector<TableRows>& tables, std::span<const std::uint32_t> filled,
                         std::span<const std::string> channel_texts) {
  const std::vector<std::int32_t> channels = channels_.enter(channel_texts);
  const std::size_t usual_rows = plan_->options().batch_rows;
  for (const std::uint32_t table : filled)
    if (tables_[table].size() > 0) tables_[table].reserve(tables[table].size(), usual_rows);
  for (const std::uint32_t table : filled) {
    replace_indices(tables[table].column(kChannelColumn), channels);
    tables_[table].append(tables[table], usual_rows);
  }
  bound_memory();
}

/// When all tables together have too many bytes, those are due that have at least half as many as
/// the mean one: together they have more than half.
void ColumnStore::bound_memory() {
  std::size_t bytes = 0;
  std::size_t filled = 0;
  for (const TableRows& rows : tables_) {
    bytes += rows.bytes();
    filled += rows.bytes() > 0 ? 1 : 0;
  }
  due_bytes_ =
      bytes > plan_->options().kept_bytes ? bytes / std::max<std::size_t>(2 * filled, 1) : SIZE_MAX;
}

bool ColumnStore::take_batch(std::size_t table, bool is_end, ArrowArray& out) {
  TableRows& rows = tables_.at(table);
  const std::size_t batch_rows = plan_->options().batch_rows;
  const bool is_due = is_end || rows.size() >= batch_rows || rows.bytes() >= due_bytes_;
  if (rows.size() == 0 || !is_due) return false;
  const std::shared_ptr<const TextArray> channels = channels_.array();
  TableRows batch = rows.take(std::min(rows.size(), batch_rows));
  export_array(plan_->table_plans()[table], batch, channels, out);
  return true;
}

}  // namespace zelk::logs

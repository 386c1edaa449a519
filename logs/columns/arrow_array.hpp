/// \file
/// Rows of tables for the Arrow C data interface.

#ifndef ZELK_LOGS_COLUMNS_ARROW_ARRAY_HPP
#define ZELK_LOGS_COLUMNS_ARROW_ARRAY_HPP

#include <memory>

#include "logs/columns/table_rows.hpp"
#include "zelk/logs/arrow.h"

namespace zelk::logs {

/// A struct with a child for each column.
///
/// @param rows      from `TableRows::take`; their memory goes over to the array
/// @param channels  the dictionary of the column of channels
/// @param out       receives the array, unless memory runs out
void export_array(const TablePlan& plan, TableRows& rows,
                  const std::shared_ptr<const TextArray>& channels, ArrowArray& out);

}  // namespace zelk::logs

#endif

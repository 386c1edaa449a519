/// \file
/// Types of tables for the Arrow C data interface.

#ifndef ZELK_LOGS_COLUMNS_ARROW_SCHEMA_HPP
#define ZELK_LOGS_COLUMNS_ARROW_SCHEMA_HPP

#include <vector>

#include "zelk/logs/arrow.h"
#include "zelk/logs/columns.hpp"

namespace zelk::logs {

/// A struct with a child for each column.
///
/// @param out  receives the type, unless memory runs out
void export_schema(const std::vector<ZelkColumn>& columns, ArrowSchema& out);

}  // namespace zelk::logs

#endif

/// \file
/// Values of objects as tables show them.

#ifndef ZELK_TOOL_TABLE_CELL_HPP
#define ZELK_TOOL_TABLE_CELL_HPP

#include <string>

#include "check/objects/cell.hpp"

namespace zelk::tool {

using check::Cell;
using check::CellElement;
using check::CellList;
using check::effective_value;
using check::in_utf8;
using check::text;

/// Whether a number is shown, and stands in JSON, without a decimal point.
bool is_whole(double number);

/// As in a table: texts `escaped`, the elements of a list parted by ", ", empty ones as "", value
/// descriptions as 0="Off"; empty for none.
std::string shown(const Cell& cell);

}  // namespace zelk::tool

#endif

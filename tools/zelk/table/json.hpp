/// \file
/// Tables and other results as JSON.

#ifndef ZELK_TOOL_TABLE_JSON_HPP
#define ZELK_TOOL_TABLE_JSON_HPP

#include <string>
#include <vector>

#include "table/cell.hpp"
#include "term/json_array.hpp"

namespace zelk::tool {

/// A value whose texts are in UTF-8: null for none, a list as an array, a value description as
/// {"value":0,"text":"Off"}.
Json json_of(const Cell& cell);

/// An object.
///
/// @param cells  a value for each key
Json object_of(const std::vector<std::string>& keys, const std::vector<Cell>& cells);

}  // namespace zelk::tool

#endif

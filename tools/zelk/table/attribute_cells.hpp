/// \file
/// Attribute values as cells of tables.

#ifndef ZELK_TOOL_TABLE_ATTRIBUTE_CELLS_HPP
#define ZELK_TOOL_TABLE_ATTRIBUTE_CELLS_HPP

#include <string_view>

#include "input/database.hpp"
#include "input/lookup.hpp"
#include "table/cell.hpp"

namespace zelk::tool {

/// The value: a number, or a text of a STRING and of the item of an ENUM.
Cell value_cell(const attr& value);

/// The default, likewise.
Cell default_cell(const attr_def& definition);

/// The definition of the attribute `name`, in UTF-8, for one kind of objects; null when there is
/// none.
///
/// @param others  gathers the names of the kind's definitions; null for nothing
const attr_def* find_definition(EncodedDatabase database, zelk_obj_t type, std::string_view name,
                                NameSuggestion* others = nullptr);

/// The value that an object with the attribute values `values` has: its own, else the default.
///
/// @param definition  of the attribute; null gives none
Cell effective_value(const attr* values, const attr_def* definition);

}  // namespace zelk::tool

#endif

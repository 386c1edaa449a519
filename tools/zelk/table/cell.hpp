/// \file
/// Values of objects, and their forms in tables and in data formats.

#ifndef ZELK_TOOL_TABLE_CELL_HPP
#define ZELK_TOOL_TABLE_CELL_HPP

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "input/text_encoding.hpp"
#include "zelk/records.h"

namespace zelk::tool {

using Json = nlohmann::ordered_json;

/// One value: null for none, a number, true or false, a text, or a list of texts or value
/// descriptions (`value_descriptions`). Texts are those of records until they go through `in_utf8`.
struct Cell {
  Json value;
  int hex_digits = 0;  ///< other than 0: shown behind "0x" with at least so many digits

  bool is_number() const { return value.is_number(); }
};

Cell none();
Cell text(const char* text);  ///< of a record; null reads as empty
Cell text(std::string_view text);
Cell number(double number);  ///< whole ones come out without a decimal point
Cell hexadecimal(std::uint64_t number, int digits);
Cell yes_or_no(bool yes);
Cell value_descriptions(const val* values);  ///< [{"value":0,"text":"Off"}, ...]

/// The names of linked nodes; a null link has none and is left out.
Cell node_names(const rxblk* links);

/// The value with its texts in UTF-8, as everything that shows or compares it wants it.
Cell in_utf8(Cell cell, Encoding encoding);

/// As in a table: texts `escaped`, the elements of a list parted by ", ", empty ones as "", value
/// descriptions as 0="Off"; empty for none.
std::string shown(const Cell& cell);

/// As in CSV: as in a table, but a text with all its characters as they are.
std::string plain(const Cell& cell);

}  // namespace zelk::tool

#endif

/// \file
/// Values of objects as tables hold them, whatever the format of the output.

#ifndef ZELK_CHECK_OBJECTS_CELL_HPP
#define ZELK_CHECK_OBJECTS_CELL_HPP

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/encoding.hpp"
#include "zelk/records.h"

namespace zelk::check {

/// An element of a list: a text, or a value description, which has a number as well.
struct CellElement {
  std::string text;
  std::optional<std::int32_t> number = {};

  auto operator<=>(const CellElement&) const = default;  // NOLINT(modernize-use-nullptr)
};

using CellList = std::vector<CellElement>;

/// One value: nothing, a number, yes or no, a text, or a list. Texts are those of records until
/// they go through `in_utf8`.
struct Cell {
  std::variant<std::monostate, double, bool, std::string, CellList> value = {};
  int hex_digits = 0;  ///< other than 0: a whole number, shown behind "0x" with so many digits

  const double* number() const { return std::get_if<double>(&value); }
  const std::string* text() const { return std::get_if<std::string>(&value); }
  const CellList* list() const { return std::get_if<CellList>(&value); }
  bool is_none() const { return std::holds_alternative<std::monostate>(value); }
};

Cell none();
Cell text(std::string_view text);
Cell number(double number);
Cell hexadecimal(double number, int digits);
Cell yes_or_no(bool yes);
Cell value_descriptions(const val* values);

/// The names of linked nodes; a null link has none and is left out.
Cell node_names(const rxblk* links);

/// The value of an attribute: a number, or a text of a STRING and of the item of an ENUM.
Cell value_cell(const attr& value);

/// The default of an attribute, likewise.
Cell default_cell(const attr_def& definition);

/// The value that an object with the attribute values `values` has: its own, else the default.
///
/// @param definition  of the attribute; null gives none
Cell effective_value(const attr* values, const attr_def* definition);

/// The value with its texts in UTF-8, as outputs and comparisons take it.
Cell in_utf8(Cell cell, Encoding encoding);

}  // namespace zelk::check

#endif

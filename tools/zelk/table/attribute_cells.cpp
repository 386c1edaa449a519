#include "table/attribute_cells.hpp"

#include <algorithm>
#include <cmath>
#include <string>

#include "input/attributes.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

Cell number_cell(const attr_def& definition, double value) {
  constexpr double kEndOfHex = 18446744073709551616.0;  // 2^64
  const bool fits = value >= 0 && value < kEndOfHex && value == std::floor(value);
  if (definition.value_type == ZELK_ATTR_HEX && fits)
    return hexadecimal(static_cast<std::uint64_t>(value), 1);
  return number(value);
}

bool has_item(const attr_def& definition, double index) {
  const std::string_view items = view(definition.enum_values);
  return index >= 0 && index <= static_cast<double>(std::ranges::count(items, '\n'));
}

}  // namespace

Cell value_cell(const attr& value) {
  const attr_def& definition = *value.def;
  const bool is_text =
      definition.value_type == ZELK_ATTR_STRING ||
      (definition.value_type == ZELK_ATTR_ENUM && has_item(definition, value.value.number));
  return is_text ? text(attribute_text(value)) : number_cell(definition, value.value.number);
}

Cell default_cell(const attr_def& definition) {
  const bool is_text =
      definition.value_type == ZELK_ATTR_STRING || definition.value_type == ZELK_ATTR_ENUM;
  return is_text ? text(default_text(definition))
                 : number_cell(definition, definition.default_value.number);
}

const attr_def* find_definition(EncodedDatabase database, zelk_obj_t type, std::string_view name,
                                NameSuggestion* others) {
  for (const attr_def& definition : each(database.records.attr_defs)) {
    if (definition.object_type != type) continue;
    const std::string own = to_utf8(view(definition.name), database.encoding);
    if (own == name) return &definition;
    if (others) others->add(own);
  }
  return nullptr;
}

Cell effective_value(const attr* values, const attr_def* definition) {
  if (!definition) return none();
  for (const attr& value : each(values))
    if (view(value.def->name) == view(definition->name)) return value_cell(value);
  return default_cell(*definition);
}

}  // namespace zelk::tool

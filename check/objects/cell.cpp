#include "check/objects/cell.hpp"

#include <utility>

#include "base/list.hpp"
#include "check/objects/attribute_words.hpp"

namespace zelk::check {

namespace {

Cell number_cell(const attr_def& definition, double value) {
  return is_hexadecimal(definition, value) ? hexadecimal(value, 1) : number(value);
}

}  // namespace

Cell none() { return {}; }

Cell text(std::string_view text) { return {std::string(text)}; }

Cell number(double number) { return {number + 0.0}; }  // turns a negative zero into 0

Cell hexadecimal(double number, int digits) { return {number, digits}; }

Cell yes_or_no(bool yes) { return {yes}; }

Cell value_descriptions(const val* values) {
  CellList list;
  for (const val& value : each(values))
    list.push_back({std::string(view(value.text)), value.value});
  return {std::move(list)};
}

Cell node_names(const rxblk* links) {
  CellList list;
  for (const rxblk& link : each(links))
    if (link.node) list.push_back({std::string(view(link.node->name))});
  return {std::move(list)};
}

Cell value_cell(const attr& value) {
  const attr_def& definition = *value.def;
  const double number = value.value.number;
  if (definition.value_type == ZELK_ATTR_STRING) return text(attribute_text(value).value_or(""));
  const auto item = definition.value_type == ZELK_ATTR_ENUM
                        ? enum_item(definition.enum_values ? definition.enum_values : "", number)
                        : std::nullopt;
  return item ? text(*item) : number_cell(definition, number);
}

Cell default_cell(const attr_def& definition) {
  return has_range(definition) ? number_cell(definition, definition.default_value.number)
                               : text(default_text(definition).value_or(""));
}

Cell effective_value(const attr* values, const attr_def* definition) {
  if (!definition) return none();
  for (const attr& value : each(values))
    if (view(value.def->name) == view(definition->name)) return value_cell(value);
  return default_cell(*definition);
}

Cell in_utf8(Cell cell, Encoding encoding) {
  if (auto* const text = std::get_if<std::string>(&cell.value)) *text = to_utf8(*text, encoding);
  if (auto* const list = std::get_if<CellList>(&cell.value))
    for (CellElement& element : *list) element.text = to_utf8(element.text, encoding);
  return cell;
}

}  // namespace zelk::check

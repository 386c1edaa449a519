// Attributes of objects as dictionaries.

#include <algorithm>

#include "base/attribute_text.hpp"
#include "base/list.hpp"
#include "check/objects/cell.hpp"
#include "values.hpp"

namespace zelk::python {
namespace {

nb::object cell_to_python(const check::Cell& cell, Encoding encoding) {
  if (const std::string* const text = cell.text()) return text_to_python(*text, encoding);
  if (const double* const number = cell.number()) return number_to_python(*number);
  return nb::none();
}

}  // namespace

nb::object attributes_to_python(const AttributeHolder& holder) {
  const Encoding encoding = holder.model->encoding;
  nb::dict attributes;
  for (const attr_def& definition : each(holder.model->attr_defs)) {
    if (definition.object_type != holder.type) continue;
    const nb::str name = text_to_python(view(definition.name), encoding);
    if (!attributes.contains(name))
      attributes[name] = cell_to_python(check::default_cell(definition), encoding);
  }
  // Of several values of one name the first counts: it is entered last.
  std::vector<const attr*> values;
  for (const attr& value : each(holder.values))
    if (value.def) values.push_back(&value);
  for (; !values.empty(); values.pop_back()) {
    const attr& value = *values.back();
    attributes[text_to_python(view(value.def->name), encoding)] =
        cell_to_python(check::value_cell(value), encoding);
  }
  return attributes;
}

std::optional<double> attribute_number(const AttributeHolder& holder, std::string_view name) {
  const attr_def* const definition =
      find_first(holder.model->attr_defs, [&](const attr_def& candidate) {
        return candidate.object_type == holder.type && view(candidate.name) == name;
      });
  const check::Cell cell = check::effective_value(holder.values, definition);
  return cell.number() ? std::optional(*cell.number()) : std::nullopt;
}

const attr_def& attribute_definition(const Model& model, zelk_obj_t type, nb::handle name) {
  if (!PyUnicode_Check(name.ptr()))
    throw Failure(FailureKind::kArgument, "an attribute is named by a text, not " + shown(name));
  const std::string_view wanted = text_from_python(name);
  for (const attr_def& definition : each(model.attr_defs)) {
    if (definition.object_type == type && to_utf8(view(definition.name), model.encoding) == wanted)
      return definition;
  }
  throw Failure(FailureKind::kUnknownName,
                "no attribute " + shown(name) + " is defined for this kind of objects");
}

zelk_attr_value_t attribute_from_python(const Model& model, const attr_def& definition,
                                        nb::handle value, std::string& text) {
  const std::string name = to_utf8(view(definition.name), model.encoding);
  zelk_attr_value_t result{};
  if (definition.value_type == ZELK_ATTR_STRING) {
    text = text_to_record(value, name.c_str(), model.encoding);
    result.text = text.data();
    return result;
  }
  if (definition.value_type == ZELK_ATTR_ENUM) {
    const std::string item = text_to_record(value, name.c_str(), model.encoding);
    const auto index =
        definition.enum_values ? EnumItems(definition.enum_values).index_of(item) : std::nullopt;
    if (!index)
      throw Failure(FailureKind::kEdit, name + " = " + shown(value) + ": none of its items");
    result.number = static_cast<double>(*index);
    return result;
  }
  result.number = definition.value_type == ZELK_ATTR_FLOAT
                      ? real_from_python(value, name.c_str())
                      : static_cast<double>(whole_from_python(value, name.c_str(), INT32_MIN,
                                                              std::int64_t{UINT32_MAX}));
  const bool has_limits = definition.minimum != 0 || definition.maximum != 0;
  if (has_limits && (result.number < definition.minimum || result.number > definition.maximum)) {
    throw Failure(FailureKind::kEdit, name + " = " + shown(value) + ": not from " +
                                          shown(number_to_python(definition.minimum)) + " to " +
                                          shown(number_to_python(definition.maximum)));
  }
  return result;
}

}  // namespace zelk::python

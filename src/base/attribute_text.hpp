/// \file
/// Attribute values and defaults as texts, whatever the attribute's type.

#ifndef ZELK_BASE_ATTRIBUTE_TEXT_HPP
#define ZELK_BASE_ATTRIBUTE_TEXT_HPP

#include <optional>
#include <string_view>

#include "base/enum_items.hpp"
#include "zelk/records.h"

namespace zelk {

/// Whether the default of the definition is a text. So are values of type STRING, while those of
/// type ENUM are indexes.
constexpr bool has_text_default(const attr_def& definition) {
  return definition.value_type == ZELK_ATTR_STRING || definition.value_type == ZELK_ATTR_ENUM;
}

/// Text of a stored value: a STRING itself, for an ENUM the item that the stored index names.
///
/// @return the text, a view into the record or its definition; none for a number type, a null text,
/// and an index that is not a whole number within the items
inline std::optional<std::string_view> attribute_text(const attr& value) {
  if (!value.def) return std::nullopt;
  const bool is_text = value.def->value_type == ZELK_ATTR_STRING;
  if (is_text && value.value.text) return value.value.text;
  const bool is_item = value.def->value_type == ZELK_ATTR_ENUM && value.def->enum_values;
  return is_item ? enum_item(value.def->enum_values, value.value.number) : std::nullopt;
}

/// Text of a default: of a STRING or an ENUM definition; none for number types and a null text.
inline std::optional<std::string_view> default_text(const attr_def& definition) {
  if (!has_text_default(definition) || !definition.default_value.text) return std::nullopt;
  return definition.default_value.text;
}

}  // namespace zelk

#endif

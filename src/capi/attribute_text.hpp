/// \file
/// Attribute values and defaults as texts, for the callers that ask what an attribute says whatever
/// its type.

#ifndef ZELK_CAPI_ATTRIBUTE_TEXT_HPP
#define ZELK_CAPI_ATTRIBUTE_TEXT_HPP

#include <optional>
#include <string_view>

#include "zelk/records.h"

namespace zelk {

/// First value of the attribute `name` (compared on 32 characters); null when there is none, and
/// for a null `name`. Values without a definition are passed over.
attr* find_attribute_value(attr* values, const char* name);

/// Text of a stored value: a STRING itself, for an ENUM the item that the stored index names (items
/// are separated by line feeds, empty ones count).
///
/// @return the text, a view into the record or its definition; none for a number type, a null text,
/// and an index that is not a whole number within the items
std::optional<std::string_view> attribute_text(const attr& value);

/// Text of a default: of a STRING or an ENUM definition; none for number types and a null text.
std::optional<std::string_view> default_text(const attr_def& definition);

}  // namespace zelk

#endif

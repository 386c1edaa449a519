/// \file
/// Attributes in words: types, and kinds of objects.

#ifndef ZELK_CHECK_OBJECTS_ATTRIBUTE_WORDS_HPP
#define ZELK_CHECK_OBJECTS_ATTRIBUTE_WORDS_HPP

#include <string_view>

#include "base/attribute_text.hpp"

namespace zelk::check {

/// The text that an object with the attribute values `values` has for `definition`: its own, else
/// the default. Empty for no text and without a definition.
std::string_view effective_text(const attr* values, const attr_def* definition);

/// Whether a number of the attribute is written in hexadecimal: a whole one of type HEX.
bool is_hexadecimal(const attr_def& definition, double number);

/// Whether values are numbers that a range limits: of all types but STRING and ENUM.
inline bool has_range(const attr_def& definition) { return !has_text_default(definition); }

/// "INT", "HEX", "FLOAT", "STRING" or "ENUM".
std::string_view type_name(const attr_def& definition);

/// What a definition applies to: "message", "node and received signal", ...
std::string_view object_kind(const attr_def& definition);

}  // namespace zelk::check

#endif

/// \file
/// Attributes in the words that all outputs share: values, types, and kinds of objects.

#ifndef ZELK_TOOL_WORDS_ATTRIBUTE_WORDS_HPP
#define ZELK_TOOL_WORDS_ATTRIBUTE_WORDS_HPP

#include <string>
#include <string_view>

#include "base/attribute_text.hpp"
#include "base/encoding.hpp"

namespace zelk::tool {

/// The text that an object with the attribute values `values` has for `definition`: its own, else
/// the default. Empty for no text and without a definition.
std::string_view effective_text(const attr* values, const attr_def* definition);

/// Whether a number of the attribute is written in hexadecimal: a whole one of type HEX.
bool is_hexadecimal(const attr_def& definition, double number);

/// Whether values are numbers that a range limits: of all types but STRING and ENUM.
inline bool has_range(const attr_def& definition) { return !has_text_default(definition); }

/// A value as it is shown: 5, 0x1F (31), "text", "item" (0).
std::string shown_value(const attr& value, Encoding encoding);

/// A default as it is shown.
std::string shown_default(const attr_def& definition, Encoding encoding);

/// "INT", "HEX", "FLOAT", "STRING" or "ENUM".
std::string_view type_name(const attr_def& definition);

/// The type of a definition with its range or items: "INT 0 to 100", "ENUM "a", "b"", "STRING".
std::string shown_type(const attr_def& definition, Encoding encoding);

/// What a definition applies to: "message", "node and received signal", ...
std::string_view object_kind(const attr_def& definition);

}  // namespace zelk::tool

#endif

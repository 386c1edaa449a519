/// \file
/// Attribute values and definitions as texts.

#ifndef ZELK_TOOL_INPUT_ATTRIBUTES_HPP
#define ZELK_TOOL_INPUT_ATTRIBUTES_HPP

#include <string>
#include <string_view>

#include "input/text_encoding.hpp"
#include "zelk/records.h"

namespace zelk::tool {

/// The text of a value: the text itself of a STRING, the item of an ENUM. Empty for numbers, for no
/// text and for an index that no item has. Points into the records.
std::string_view attribute_text(const attr& value);

/// The text of a default: that of a STRING or ENUM; empty for numbers and for no text.
std::string_view default_text(const attr_def& definition);

/// The text that an object with the attribute values `values` has for `definition`: its own, else
/// the default. Empty without a definition.
std::string_view attribute_text(const attr* values, const attr_def* definition);

/// A value as it is shown: 5, 0x1F (31), "text", "item" (0).
std::string shown_value(const attr& value, Encoding encoding);

/// A default as it is shown.
std::string shown_default(const attr_def& definition, Encoding encoding);

/// The type of a definition with its range or items: "INT 0 to 100", "ENUM "a", "b"", "STRING".
std::string shown_type(const attr_def& definition, Encoding encoding);

/// What a definition applies to: "message", "node and received signal", ...
std::string_view object_kind(const attr_def& definition);

}  // namespace zelk::tool

#endif

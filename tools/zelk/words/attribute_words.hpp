/// \file
/// Attributes as the program shows them.

#ifndef ZELK_TOOL_WORDS_ATTRIBUTE_WORDS_HPP
#define ZELK_TOOL_WORDS_ATTRIBUTE_WORDS_HPP

#include <string>

#include "base/encoding.hpp"
#include "check/objects/attribute_words.hpp"

namespace zelk::tool {

using check::effective_text;
using check::has_range;
using check::is_hexadecimal;
using check::object_kind;
using check::type_name;

/// A value as it is shown: 5, 0x1F (31), "text", "item" (0).
std::string shown_value(const attr& value, Encoding encoding);

/// A default as it is shown.
std::string shown_default(const attr_def& definition, Encoding encoding);

/// The type of a definition with its range or items: "INT 0 to 100", "ENUM "a", "b"", "STRING".
std::string shown_type(const attr_def& definition, Encoding encoding);

}  // namespace zelk::tool

#endif

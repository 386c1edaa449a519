/// \file
/// Attribute values as a user writes them.

#ifndef ZELK_TOOL_EDIT_PARSE_ATTRIBUTE_HPP
#define ZELK_TOOL_EDIT_PARSE_ATTRIBUTE_HPP

#include <string>

#include "input/encoded_database.hpp"
#include "zelk/records.h"

namespace zelk::tool {

/// The value that `text` means for an attribute.
///
/// @param text  for a STRING the text itself; for an ENUM one of its items, or else the index of
/// one; for others a number within the definition's range, which does not count when both ends are
/// 0: a whole one, decimal or hexadecimal behind "0x", for INT and HEX
/// @param encoding  of the database; a STRING makes `text` be in it
/// @return whose text, of a STRING, is that of `text`
/// @throws RequestError when it is none of these
zelk_attr_value_t parse_attribute_value(const attr_def& definition, std::string& text,
                                        Encoding encoding);

}  // namespace zelk::tool

#endif

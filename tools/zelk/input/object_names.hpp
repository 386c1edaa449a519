/// \file
/// Names that a file can hold.

#ifndef ZELK_TOOL_INPUT_OBJECT_NAMES_HPP
#define ZELK_TOOL_INPUT_OBJECT_NAMES_HPP

#include <string_view>

namespace zelk::tool {

/// @throws RequestError when no node, message, signal or environment variable can have the name in
/// a file: it is not made of letters, digits and "_", begins with a digit, is longer than 128
/// characters, a keyword of the format, or the name that stands for no node
void check_name(std::string_view name);

}  // namespace zelk::tool

#endif

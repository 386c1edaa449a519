/// \file
/// Showing the objects with a name or an identifier.

#ifndef ZELK_TOOL_SHOW_SHOW_OBJECT_HPP
#define ZELK_TOOL_SHOW_SHOW_OBJECT_HPP

#include <string>

#include "input/encoded_database.hpp"
#include "term/output.hpp"

namespace zelk::tool {

/// Shows the messages with the identifier `object`, or else all objects whose names match it.
/// Prints an error about `path` when there is none.
///
/// @return whether there is one
bool show_object(const std::string& path, EncodedDatabase database, const std::string& object,
                 Output& out);

/// Writes the picture of the bits of the message with the name or identifier `wanted`, as SVG.
/// Prints an error about `path` when there is none, or more than one.
///
/// @return whether there is one
bool show_picture(const std::string& path, EncodedDatabase database, const std::string& wanted,
                  Output& out);

}  // namespace zelk::tool

#endif

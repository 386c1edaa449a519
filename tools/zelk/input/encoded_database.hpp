/// \file
/// The characters of a database's texts and of the command line.

#ifndef ZELK_TOOL_INPUT_ENCODED_DATABASE_HPP
#define ZELK_TOOL_INPUT_ENCODED_DATABASE_HPP

#include <string>

#include "base/encoded_database.hpp"

namespace zelk::tool {

/// A text of the command line, which is in UTF-8, as the records of a database hold it. What is no
/// UTF-8 is taken for the database's own bytes.
///
/// @throws RequestError for a character that the encoding does not have
std::string stored(const std::string& text, Encoding encoding);

}  // namespace zelk::tool

#endif

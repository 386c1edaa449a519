/// \file
/// What a database would be once it stands in a file.

#ifndef ZELK_TOOL_EDIT_READ_BACK_HPP
#define ZELK_TOOL_EDIT_READ_BACK_HPP

#include <string>

#include "input/text_encoding.hpp"

namespace zelk::tool {

/// Writes the database to a temporary file and reads that. What comes back otherwise, such as
/// numbers of more than 14 digits, is told on standard error as warnings about `path`.
///
/// @throws RequestError when it cannot be read back, which tells why
void check_read_back(EncodedDatabase database, const std::string& path);

}  // namespace zelk::tool

#endif

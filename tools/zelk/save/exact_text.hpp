/// \file
/// A database as text, with all digits.

#ifndef ZELK_TOOL_SAVE_EXACT_TEXT_HPP
#define ZELK_TOOL_SAVE_EXACT_TEXT_HPP

#include <string>

#include "input/encoded_database.hpp"

namespace zelk::tool {

/// What the library writes of a database, but with as many digits of each number as it takes to
/// read the same number again. Databases with equal records give equal texts.
///
/// @param database  its records are changed meanwhile, and are as they were at the end
/// @throws RequestError when the system has no room for a temporary file
std::string exact_text(EncodedDatabase database);

}  // namespace zelk::tool

#endif

/// \file
/// The characters of a database's texts.

#ifndef ZELK_TOOL_INPUT_ENCODED_DATABASE_HPP
#define ZELK_TOOL_INPUT_ENCODED_DATABASE_HPP

#include <string>
#include <string_view>

#include "base/encoding.hpp"
#include "zelk/database.hpp"

namespace zelk::tool {

/// A database, with the encoding of the texts in its records. The program itself speaks UTF-8: a
/// text of a record goes through `to_utf8` before it is shown or compared with the command line.
struct EncodedDatabase {
  const ZelkDatabase& records;
  Encoding encoding;
};

/// UTF-8 when all texts of the database are, else Windows-1252.
Encoding encoding_of(const ZelkDatabase& database);

/// A text of the command line, which is in UTF-8, as the records of a database hold it. What is no
/// UTF-8 is taken for the database's own bytes.
///
/// @throws RequestError for a character that the encoding does not have
std::string stored(const std::string& text, Encoding encoding);

}  // namespace zelk::tool

#endif

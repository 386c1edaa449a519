/// \file
/// The characters of a database's texts.

#ifndef ZELK_BASE_ENCODED_DATABASE_HPP
#define ZELK_BASE_ENCODED_DATABASE_HPP

#include "base/encoding.hpp"
#include "zelk/database.hpp"

namespace zelk {

/// A database, with the encoding of the texts in its records. Outputs are in UTF-8: a
/// text of a record goes through `to_utf8` before it is shown or compared.
struct EncodedDatabase {
  const ZelkDatabase& records;
  Encoding encoding;
};

/// UTF-8 when all texts of the database are, else Windows-1252.
Encoding encoding_of(const ZelkDatabase& database);

}  // namespace zelk

#endif

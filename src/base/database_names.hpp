/// \file
/// Names of databases that several files are to have at once.

#ifndef ZELK_BASE_DATABASE_NAMES_HPP
#define ZELK_BASE_DATABASE_NAMES_HPP

#include <string>
#include <string_view>

namespace zelk {

/// The name of a database by its file, as the library makes it, except for the first character,
/// which must be a letter.
std::string database_name(std::string_view path);

/// `name` with "_" and a number behind it, in no more characters than the name of a database may
/// have.
std::string numbered_name(std::string_view name, unsigned number);

}  // namespace zelk

#endif

/// \file
/// What a database can be called.

#ifndef ZELK_MANAGER_NAMES_HPP
#define ZELK_MANAGER_NAMES_HPP

#include <cstddef>
#include <string_view>

#include "base/characters.hpp"

namespace zelk {

/// Longest name of a database, in characters.
inline constexpr std::size_t kDatabaseNameMax = 32;

/// Makes a name of a database out of any text. What stands in front of the first letter or "_"
/// becomes "_", character by character; behind it, what is no letter, digit or "_" is dropped.
///
/// @param destination  takes at most `kDatabaseNameMax` characters and the end; may be where
/// `source` begins
void clean_name(char* destination, std::string_view source);

}  // namespace zelk

#endif

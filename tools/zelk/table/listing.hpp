/// \file
/// A table of all objects of a kind.

#ifndef ZELK_TOOL_TABLE_LISTING_HPP
#define ZELK_TOOL_TABLE_LISTING_HPP

#include <string>
#include <vector>

#include "input/database_set.hpp"
#include "table/objects.hpp"
#include "table/rows.hpp"

namespace zelk::tool {

/// What to list, and in which columns.
struct Listing {
  const ObjectKind* kind = nullptr;
  std::vector<std::string> patterns;    ///< of names, any of which an object has; empty for all
  std::vector<std::string> attributes;  ///< a column for each
  bool ignore_case = false;             ///< of names and patterns
  bool comments = false;                ///< a column with the comments
  bool database_names = false;          ///< a column with the names of the databases
};

/// Prints an error for each attribute that no database defines for the kind.
///
/// @return whether there is none
bool check_attributes(const Listing& listing, const DatabaseSet& databases);

std::size_t count_objects(const Listing& listing, const DatabaseSet& databases);

void list_objects(const Listing& listing, const DatabaseSet& databases, MakeRows* make_rows,
                  Output& out);

}  // namespace zelk::tool

#endif

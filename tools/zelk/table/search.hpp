/// \file
/// Looking for objects of any kind in several databases.

#ifndef ZELK_TOOL_TABLE_SEARCH_HPP
#define ZELK_TOOL_TABLE_SEARCH_HPP

#include <optional>
#include <string>
#include <vector>

#include "input/database_set.hpp"
#include "table/objects.hpp"
#include "term/output.hpp"

namespace zelk::tool {

/// What to look for: one of the three. Numbers are such as `parse_id` takes.
struct Query {
  std::optional<std::string> object;  ///< name, or identifier of a message
  std::optional<std::string> group;   ///< parameter group number
  std::optional<std::string> frame;   ///< identifier of a J1939 frame

  bool is_by_group() const { return group || frame; }
};

/// An object that was found.
struct Hit {
  const DatabaseSet::Entry* database;
  const ObjectKind* kind;
  Object object;
};

std::vector<Hit> find_all(const DatabaseSet& databases, const Query& query);

/// Prints an error for a query without hits.
void print_nothing_found(const DatabaseSet& databases, const Query& query);

/// "powertrain: message VehicleMotion: id 0x141, format 11-bit, ...", a line for each; without
/// empty values.
void print_hits(const std::vector<Hit>& hits, Output& out);

/// An array of objects with the headings as keys.
void print_hits_as_json(const std::vector<Hit>& hits, Output& out);

}  // namespace zelk::tool

#endif

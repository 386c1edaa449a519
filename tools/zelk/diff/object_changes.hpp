/// \file
/// What differs between two states of one object.

#ifndef ZELK_TOOL_DIFF_OBJECT_CHANGES_HPP
#define ZELK_TOOL_DIFF_OBJECT_CHANGES_HPP

#include <string>
#include <vector>

#include "table/cell.hpp"
#include "table/objects.hpp"

namespace zelk::tool {

/// A value on one side of a change.
struct ChangeSide {
  std::string shown = "none";  ///< as in text; texts other than words are in quotes
  Json value;                  ///< as in JSON, in UTF-8; null for none
};

/// A field of an object that has another value in the other database.
struct Change {
  std::string field;  ///< as in text: "length", "attribute "CycleTime"", "value 3"
  Json labels;        ///< as in JSON: {"field":"attribute","attribute":"CycleTime"}
  ChangeSide before;
  ChangeSide after;
};

/// Compares two objects of a kind: columns, comment, attribute values and value descriptions, but
/// not to what they belong. Lists are compared as sets, except for the items of an ENUM.
std::vector<Change> changes_between(const ObjectKind& kind, const Object& before,
                                    const Object& after);

/// Compares what two databases have beside their objects: version, bit timings, filter, comment,
/// and the network's attribute values.
std::vector<Change> network_changes(EncodedDatabase before, EncodedDatabase after);

}  // namespace zelk::tool

#endif

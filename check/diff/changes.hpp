/// \file
/// What differs between two states of one object.

#ifndef ZELK_CHECK_DIFF_CHANGES_HPP
#define ZELK_CHECK_DIFF_CHANGES_HPP

#include <cstdint>
#include <string>
#include <vector>

#include "check/objects/objects.hpp"

namespace zelk::check {

/// A value on one side of a change.
struct ChangeSide {
  Cell cell;                            ///< in UTF-8; of nothing where this side has no value
  const attr* attribute = nullptr;      ///< the value of an attribute; null for none
  Encoding encoding = Encoding::kUtf8;  ///< of the texts of `attribute`
};

enum class Changed { kField, kAttribute, kDescription };

/// Something of an object that has another value in the other database.
struct Change {
  Changed what;
  std::string name;         ///< of the field or attribute
  std::string node;         ///< the other end of a relation; empty for none
  std::int32_t number = 0;  ///< the raw value that is described
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

}  // namespace zelk::check

#endif

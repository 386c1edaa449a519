/// \file
/// What differs between two databases, object by object.

#ifndef ZELK_TOOL_DIFF_DIFFERENCES_HPP
#define ZELK_TOOL_DIFF_DIFFERENCES_HPP

#include <functional>
#include <string>
#include <vector>

#include "diff/object_changes.hpp"
#include "input/database.hpp"

namespace zelk::tool {

enum class Presence {
  kRemoved,  ///< only the first database has it
  kAdded,    ///< only the second one has it
  kChanged
};

/// An object that is not the same in both databases.
struct Difference {
  Presence presence;
  std::string object;           ///< as in text: "message 0x123 Speed", "signal Speed.Gear"
  Json identity;                ///< as in JSON: {"kind":"message","id":291,...}
  std::vector<Change> changes;  ///< of a changed object, at least one
};

/// What stands in front of it: + for an added object, - for a removed one, ~ for a changed one.
char sign_of(const Difference& difference);

/// Visits the differences, kind by kind.
///
/// Messages are matched by identifier; those left, of which only one database has the identifier,
/// by name where that is the only such name in both. Signals and groups are matched by name within
/// their message, attribute definitions by name and kind of object, everything else by name; where
/// several are called the same, the n-th with the n-th. What a message has is not visited when the
/// message is in one database only. Order is no difference, nor
/// is the encoding: texts are compared in UTF-8. Takes linear time.
void for_each_difference(EncodedDatabase before, EncodedDatabase after,
                         const std::function<void(const Difference&)>& visit);

}  // namespace zelk::tool

#endif

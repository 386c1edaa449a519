/// \file
/// What differs between two databases, object by object.

#ifndef ZELK_CHECK_DIFF_DIFFERENCES_HPP
#define ZELK_CHECK_DIFF_DIFFERENCES_HPP

#include <functional>
#include <vector>

#include "check/diff/changes.hpp"

namespace zelk::check {

enum class Presence {
  kRemoved,  ///< only the first database has it
  kAdded,    ///< only the second one has it
  kChanged
};

/// An object that is not the same in both databases.
struct Difference {
  Presence presence;
  const ObjectKind* kind;       ///< null for the network itself
  Object object;                ///< of the first database that has it
  std::vector<Change> changes;  ///< of a changed object, at least one
  Object after = {};            ///< a changed object as the second database has it
  /// The message of the other database that is the same as `object.owner`; null for none.
  const msgblk* other_owner = nullptr;
};

/// Visits the differences, kind by kind.
///
/// Messages are matched by identifier; those left, of which only one database has the identifier,
/// by name where that is the only such name in both. Signals and groups are matched by name within
/// their message, attribute definitions by name and kind of object, everything else by name; where
/// several have the same name, the n-th with the n-th. What a message has is not visited when only
/// one database has the message. Order is no difference, nor is the encoding: texts are compared in
/// UTF-8. Takes linear time.
void for_each_difference(EncodedDatabase before, EncodedDatabase after,
                         const std::function<void(const Difference&)>& visit);

}  // namespace zelk::check

#endif

/// A database in one line per record: for tests and fuzzers alike.
#ifndef ZELK_TESTS_SUPPORT_DESCRIPTION_HPP
#define ZELK_TESTS_SUPPORT_DESCRIPTION_HPP

#include <string>

#include "model/heads.hpp"
#include "support/lists.hpp"

inline zelk::ModelView view_of(const Lists& d) {
  return {d.nodes,      d.messages, d.variables, d.timings, d.definitions, d.values,
          d.categories, d.filter,   d.comment,   d.version, d.types,       d.tables};
}

/// Every record in list order, one per line; parts that are absent are left out.
///
/// @param digits  of numbers; a written file has 14
std::string describe(const zelk::ModelView& model, int digits = 15);
inline std::string describe(const Lists& lists) { return describe(view_of(lists)); }

#endif

/// \file
/// Differences as JSON.

#ifndef ZELK_TOOL_DIFF_DIFF_JSON_HPP
#define ZELK_TOOL_DIFF_DIFF_JSON_HPP

#include "check/diff/differences.hpp"
#include "table/json.hpp"

namespace zelk::tool {

/// Adds an object:
/// {"difference":"changed","kind":"message","id":291,"format":"11-bit","name":"Speed",
/// "changes":[{"field":"length","before":8,"after":16}, ...]}
void add_difference(JsonArray& array, const check::Difference& difference);

}  // namespace zelk::tool

#endif

/// \file
/// Tables and other results as JSON.

#ifndef ZELK_TOOL_TABLE_JSON_HPP
#define ZELK_TOOL_TABLE_JSON_HPP

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "table/cell.hpp"
#include "term/output.hpp"

namespace zelk::tool {

using Json = nlohmann::ordered_json;

/// A value whose texts are in UTF-8: null for none, a list as an array, a value description as
/// {"value":0,"text":"Off"}.
Json json_of(const Cell& cell);

/// Writes the elements of a JSON array, one in a line.
class JsonArray {
 public:
  explicit JsonArray(Output& out) : out_(out) {}

  void element(const Json& element);
  /// An object.
  ///
  /// @param cells  a value for each key
  void element(const std::vector<std::string>& keys, const std::vector<Cell>& cells);
  void finish();

 private:
  Output& out_;
  std::string pending_;  // the last element, which gets a comma or not
};

}  // namespace zelk::tool

#endif

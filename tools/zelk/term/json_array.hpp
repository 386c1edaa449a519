/// \file
/// JSON that is written bit by bit.

#ifndef ZELK_TOOL_TERM_JSON_ARRAY_HPP
#define ZELK_TOOL_TERM_JSON_ARRAY_HPP

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "term/output.hpp"

namespace zelk::tool {

using Json = nlohmann::ordered_json;

/// Writes the elements of a JSON array, one in a line.
class JsonArray {
 public:
  explicit JsonArray(Output& out) : out_(out) {}

  void element(const Json& element);
  void finish();

 private:
  Output& out_;
  std::string pending_;  // the last element, which gets a comma or not
};

}  // namespace zelk::tool

#endif

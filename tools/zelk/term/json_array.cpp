#include "term/json_array.hpp"

#include <nlohmann/json.hpp>

namespace zelk::tool {

void JsonArray::element(const Json& element) {
  out_.line("{}{}", pending_.empty() ? "[" : pending_, pending_.empty() ? "" : ",");
  pending_ = element.dump();
}

void JsonArray::finish() {
  if (!pending_.empty()) out_.line("{}", pending_);
  out_.line("{}", pending_.empty() ? "[]" : "]");
}

}  // namespace zelk::tool

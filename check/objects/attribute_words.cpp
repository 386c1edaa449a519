#include "check/objects/attribute_words.hpp"

#include <cmath>

#include "base/list.hpp"

namespace zelk::check {

std::string_view effective_text(const attr* values, const attr_def* definition) {
  if (!definition) return {};
  const attr* const own =
      find_first(values, [&](const attr& value) { return value.def == definition; });
  return (own ? attribute_text(*own) : default_text(*definition)).value_or("");
}

bool is_hexadecimal(const attr_def& definition, double number) {
  constexpr double kEndOfHex = 18446744073709551616.0;  // 2^64
  return definition.value_type == ZELK_ATTR_HEX && number >= 0 && number < kEndOfHex &&
         number == std::floor(number);
}

std::string_view type_name(const attr_def& definition) {
  switch (definition.value_type) {
    case ZELK_ATTR_INT:
      return "INT";
    case ZELK_ATTR_HEX:
      return "HEX";
    case ZELK_ATTR_STRING:
      return "STRING";
    case ZELK_ATTR_ENUM:
      return "ENUM";
    default:
      return "FLOAT";
  }
}

std::string_view object_kind(const attr_def& definition) {
  switch (definition.object_type) {
    case ZELK_OBJ_NETWORK:
      return "database";
    case ZELK_OBJ_NODE:
      return "node";
    case ZELK_OBJ_MESSAGE:
      return "message";
    case ZELK_OBJ_SIGNAL:
      return "signal";
    case ZELK_OBJ_ENVVAR:
      return "environment variable";
    case ZELK_OBJ_SIGTYPE:
      return "signal type";
    case ZELK_OBJ_REL_SIGNAL:
      return "node and received signal";
    case ZELK_OBJ_REL_MESSAGE:
      return "node and sent message";
    case ZELK_OBJ_REL_ENVVAR:
      return "node and accessed environment variable";
    default:
      return "unknown kind";
  }
}

}  // namespace zelk::check

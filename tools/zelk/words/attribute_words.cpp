#include "words/attribute_words.hpp"

#include <fmt/format.h>

#include <cmath>
#include <optional>

#include "base/list.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

std::string shown_number(const attr_def& definition, double number) {
  if (!is_hexadecimal(definition, number)) return fmt::format("{}", number);
  return fmt::format("0x{:X} ({})", static_cast<unsigned long long>(number), number);
}

std::string shown_items(const attr_def& definition, Encoding encoding) {
  std::string text;
  if (!definition.enum_values) return text;
  for (const std::string_view item : EnumItems(definition.enum_values))
    text += (text.empty() ? " " : ", ") + in_quotes(to_utf8(item, encoding));
  return text;
}

}  // namespace

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

std::string shown_value(const attr& value, Encoding encoding) {
  const std::optional<std::string_view> text = attribute_text(value);
  if (value.def->value_type == ZELK_ATTR_STRING)
    return in_quotes(to_utf8(text.value_or(""), encoding));
  const double number = value.value.number;
  if (value.def->value_type != ZELK_ATTR_ENUM) return shown_number(*value.def, number);
  return text ? fmt::format("{} ({})", in_quotes(to_utf8(*text, encoding)), number)
              : fmt::format("{} (no such item)", number);
}

std::string shown_default(const attr_def& definition, Encoding encoding) {
  if (has_range(definition)) return shown_number(definition, definition.default_value.number);
  return in_quotes(to_utf8(default_text(definition).value_or(""), encoding));
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

std::string shown_type(const attr_def& definition, Encoding encoding) {
  const std::string name(type_name(definition));
  if (!has_range(definition)) {
    return definition.value_type == ZELK_ATTR_ENUM ? name + shown_items(definition, encoding)
                                                   : name;
  }
  return fmt::format("{} {} to {}", name, shown_number(definition, definition.minimum),
                     shown_number(definition, definition.maximum));
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

}  // namespace zelk::tool

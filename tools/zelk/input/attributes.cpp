#include "input/attributes.hpp"

#include <fmt/format.h>

#include <cmath>
#include <optional>

#include "input/database.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// Takes the first item off `rest`; null when that was the last one.
std::string_view take_item(const char*& rest) {
  const std::string_view text = view(rest);
  const std::size_t length = text.find('\n');
  rest = length == std::string_view::npos ? nullptr : rest + length + 1;
  return text.substr(0, length);
}

std::optional<std::string_view> item_at(const attr_def& definition, double index) {
  const char* rest = definition.enum_values;
  for (double i = 0; rest; ++i) {
    const std::string_view item = take_item(rest);
    if (i == index) return item;
  }
  return std::nullopt;
}

std::string shown_number(const attr_def& definition, double number) {
  constexpr double kEndOfHex = 18446744073709551616.0;  // 2^64
  const bool fits = number >= 0 && number < kEndOfHex && number == std::floor(number);
  if (definition.value_type != ZELK_ATTR_HEX || !fits) return fmt::format("{}", number);
  return fmt::format("0x{:X} ({})", static_cast<unsigned long long>(number), number);
}

bool is_text(const attr_def& definition) {
  return definition.value_type == ZELK_ATTR_STRING || definition.value_type == ZELK_ATTR_ENUM;
}

}  // namespace

std::string_view attribute_text(const attr& value) {
  if (value.def->value_type == ZELK_ATTR_STRING) return view(value.value.text);
  if (value.def->value_type != ZELK_ATTR_ENUM) return {};
  return item_at(*value.def, value.value.number).value_or(std::string_view());
}

std::string_view default_text(const attr_def& definition) {
  return is_text(definition) ? view(definition.default_value.text) : std::string_view();
}

std::string_view attribute_text(const attr* values, const attr_def* definition) {
  if (!definition) return {};
  for (const attr& value : each(values))
    if (value.def == definition) return attribute_text(value);
  return default_text(*definition);
}

std::string shown_value(const attr& value, Encoding encoding) {
  if (value.def->value_type == ZELK_ATTR_STRING)
    return in_quotes(to_utf8(view(value.value.text), encoding));
  const double number = value.value.number;
  if (value.def->value_type != ZELK_ATTR_ENUM) return shown_number(*value.def, number);
  const std::optional<std::string_view> item = item_at(*value.def, number);
  return item ? fmt::format("{} ({})", in_quotes(to_utf8(*item, encoding)), number)
              : fmt::format("{} (no such item)", number);
}

std::string shown_default(const attr_def& definition, Encoding encoding) {
  return is_text(definition) ? in_quotes(to_utf8(default_text(definition), encoding))
                             : shown_number(definition, definition.default_value.number);
}

std::string shown_type(const attr_def& definition, Encoding encoding) {
  switch (definition.value_type) {
    case ZELK_ATTR_STRING:
      return "STRING";
    case ZELK_ATTR_ENUM: {
      std::string text = "ENUM";
      for (const char* rest = definition.enum_values; rest;)
        text += (text.size() == 4 ? " " : ", ") + in_quotes(to_utf8(take_item(rest), encoding));
      return text;
    }
    default:
      break;
  }
  const std::string_view name = definition.value_type == ZELK_ATTR_INT   ? "INT"
                                : definition.value_type == ZELK_ATTR_HEX ? "HEX"
                                                                         : "FLOAT";
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

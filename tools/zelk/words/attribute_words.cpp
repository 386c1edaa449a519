#include "words/attribute_words.hpp"

#include <fmt/format.h>

#include <optional>

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

std::string shown_type(const attr_def& definition, Encoding encoding) {
  const std::string name(type_name(definition));
  if (!has_range(definition)) {
    return definition.value_type == ZELK_ATTR_ENUM ? name + shown_items(definition, encoding)
                                                   : name;
  }
  return fmt::format("{} {} to {}", name, shown_number(definition, definition.minimum),
                     shown_number(definition, definition.maximum));
}

}  // namespace zelk::tool

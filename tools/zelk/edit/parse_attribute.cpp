#include "edit/parse_attribute.hpp"

#include <fmt/format.h>

#include <cmath>
#include <optional>
#include <string_view>

#include "base/enum_items.hpp"
#include "edit/parse_words.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"
#include "words/attribute_words.hpp"

namespace zelk::tool {

namespace {

/// The attribute whose value is parsed.
struct Attribute {
  const attr_def& definition;
  Encoding encoding;

  [[noreturn]] void fail(std::string_view text, std::string_view fault) const {
    throw RequestError(fmt::format("{} {} of the attribute {}, which is {}", in_quotes(text), fault,
                                   in_quotes(to_utf8(view(definition.name), encoding)),
                                   shown_type(definition, encoding)));
  }
};

double parse_item(const Attribute& attribute, const std::string& text) {
  const std::string joined = to_utf8(view(attribute.definition.enum_values), attribute.encoding);
  const EnumItems items(joined);
  if (const auto index = items.index_of(text)) return static_cast<double>(*index);
  const std::optional<std::uint32_t> index = parse_id(text);
  if (!index || *index >= items.size()) attribute.fail(text, "is no item");
  return *index;
}

double parse_in_range(const Attribute& attribute, const std::string& text) {
  const attr_def& definition = attribute.definition;
  const std::optional<double> number = parse_real(text);
  const bool is_whole = definition.value_type != ZELK_ATTR_FLOAT;
  if (!number || (is_whole && *number != std::floor(*number)))
    attribute.fail(text, is_whole ? "is no whole number, as are the values" : "is no number");
  const bool has_range = definition.minimum != 0 || definition.maximum != 0;
  if (has_range && (*number < definition.minimum || *number > definition.maximum))
    attribute.fail(text, "is out of the range");
  return *number;
}

}  // namespace

zelk_attr_value_t parse_attribute_value(const attr_def& definition, std::string& text,
                                        Encoding encoding) {
  zelk_attr_value_t value{};
  if (definition.value_type == ZELK_ATTR_STRING) {
    text = stored(text, encoding);
    value.text = text.data();
  } else if (definition.value_type == ZELK_ATTR_ENUM) {
    value.number = parse_item({definition, encoding}, text);
  } else {
    value.number = parse_in_range({definition, encoding}, text);
  }
  return value;
}

}  // namespace zelk::tool

#include "edit/attribute_input.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <system_error>

#include "input/attributes.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// An attribute whose value is wanted.
struct Attribute {
  const attr_def& definition;
  Encoding encoding;

  [[noreturn]] void fail(std::string_view text, std::string_view fault) const {
    throw RequestError(fmt::format("{} {} of the attribute {}, which is {}", in_quotes(text), fault,
                                   in_quotes(to_utf8(view(definition.name), encoding)),
                                   shown_type(definition, encoding)));
  }
};

/// All of `text` as a number; none also for infinities.
std::optional<double> parse_decimal(std::string_view text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || !std::isfinite(number)) return std::nullopt;
  return number;
}

std::optional<double> parse_hexadecimal(std::string_view digits) {
  std::uint64_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number, 16);
  if (error != std::errc() || stop != end) return std::nullopt;
  return static_cast<double>(number);
}

std::optional<double> parse_number(std::string_view text) {
  if (text.starts_with("0x") || text.starts_with("0X")) return parse_hexadecimal(text.substr(2));
  const bool has_plus = text.starts_with('+') && !text.starts_with("+-");
  return parse_decimal(text.substr(has_plus ? 1 : 0));
}

/// Position of an item in a list parted by line feeds.
std::optional<double> index_of(std::string_view items, std::string_view item) {
  for (double index = 0;; ++index) {
    const std::size_t length = items.find('\n');
    if (items.substr(0, length) == item) return index;
    if (length == std::string_view::npos) return std::nullopt;
    items.remove_prefix(length + 1);
  }
}

double parse_item(const Attribute& attribute, const std::string& text) {
  const std::string items = to_utf8(view(attribute.definition.enum_values), attribute.encoding);
  if (const std::optional<double> index = index_of(items, text)) return *index;
  const std::optional<std::uint32_t> index = parse_id(text);
  if (!index || *index > static_cast<std::uint64_t>(std::ranges::count(items, '\n')))
    attribute.fail(text, "is no item");
  return *index;
}

double parse_in_range(const Attribute& attribute, const std::string& text) {
  const attr_def& definition = attribute.definition;
  const std::optional<double> number = parse_number(text);
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

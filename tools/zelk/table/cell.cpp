#include "table/cell.hpp"

#include <fmt/format.h>

#include <cmath>
#include <utility>

#include "input/database.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

std::string shown_number(const Json& number, int hex_digits) {
  if (hex_digits > 0) return fmt::format("0x{:0{}X}", number.get<std::uint64_t>(), hex_digits);
  if (number.is_number_float()) return fmt::format("{}", number.get<double>());
  return fmt::format("{}", number.get<std::int64_t>());
}

/// Of an element of a list.
std::string shown_element(const Json& value) {
  if (value.is_string()) {
    const std::string& text = value.get_ref<const std::string&>();
    return text.empty() ? "\"\"" : escaped(text);
  }
  return fmt::format("{}={}", shown_number(value.at("value"), 0),
                     in_quotes(value.at("text").get_ref<const std::string&>()));
}

void make_utf8(Json& value, Encoding encoding) {
  if (value.is_string()) value = to_utf8(value.get_ref<const std::string&>(), encoding);
  if (!value.is_structured()) return;
  for (Json& element : value) make_utf8(element, encoding);
}

}  // namespace

Cell none() { return {}; }

Cell text(const char* text) { return {Json(view(text))}; }

Cell text(std::string_view text) { return {Json(text)}; }

Cell number(double number) {
  constexpr double kEndOfWhole = 9007199254740992.0;  // 2^53: from here on, doubles skip numbers
  if (std::abs(number) < kEndOfWhole && number == std::floor(number))
    return {Json(static_cast<std::int64_t>(number))};
  return {Json(number)};
}

Cell hexadecimal(std::uint64_t number, int digits) { return {Json(number), digits}; }

Cell yes_or_no(bool yes) { return {Json(yes)}; }

Cell value_descriptions(const val* values) {
  Cell list{Json::array()};
  for (const val& value : each(values))
    list.value.push_back(Json{{"value", value.value}, {"text", view(value.text)}});
  return list;
}

Cell node_names(const rxblk* links) {
  Cell list{Json::array()};
  for (const rxblk& link : each(links))
    if (link.node) list.value.push_back(view(link.node->name));
  return list;
}

Cell in_utf8(Cell cell, Encoding encoding) {
  make_utf8(cell.value, encoding);
  return cell;
}

std::string shown(const Cell& cell) {
  const Json& value = cell.value;
  if (value.is_null()) return {};
  if (value.is_number()) return shown_number(value, cell.hex_digits);
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (value.is_string()) return escaped(value.get_ref<const std::string&>());
  std::string list;
  for (const Json& element : value) list += ", " + shown_element(element);
  return list.empty() ? list : list.substr(2);
}

std::string plain(const Cell& cell) {
  return cell.value.is_string() ? cell.value.get<std::string>() : shown(cell);
}

}  // namespace zelk::tool

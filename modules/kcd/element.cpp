#include "kcd/element.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>

#include "common/records.hpp"
#include "zelk/dbc.h"

namespace zelk::modules::kcd {
namespace {

bool contains(std::initializer_list<std::string_view> names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// Declarations of namespaces, and what the standards of XML define for every element.
bool is_of_xml(std::string_view attribute) {
  return attribute == "xmlns" || attribute.starts_with("xmlns:") || attribute.starts_with("xml:") ||
         attribute.starts_with("xsi:");
}

std::string label(const pugi::xml_node& node) {
  const pugi::xml_attribute name = node.attribute("name");
  return node.name() + (name ? " \"" + std::string(name.value()) + "\"" : "");
}

/// The element, and what it is in up to the message.
std::string place(const pugi::xml_node& node) {
  std::string text = label(node);
  pugi::xml_node inner = node;
  for (pugi::xml_node outer = node.parent();
       outer.parent().parent() && std::string_view(inner.name()) != "Message";
       outer = outer.parent()) {
    if (std::string_view(outer.name()) == "Bus") break;
    text += " in " + label(outer);
    inner = outer;
  }
  return text;
}

/// Without the white space around it, and without the plus sign that no number here needs.
std::string_view trimmed(std::string_view number) {
  constexpr std::string_view kSpace = " \t\r\n";
  number.remove_prefix(std::min(number.find_first_not_of(kSpace), number.size()));
  number = number.substr(0, number.find_last_not_of(kSpace) + 1);
  const bool has_plus = number.size() > 1 && number[0] == '+' && number[1] != '-';
  return number.substr(has_plus ? 1 : 0);
}

template <typename Number, typename... Format>
bool parse(std::string_view text, Number& number, Format... format) {
  const char* const end = text.data() + text.size();
  const auto [behind, error] = std::from_chars(text.data(), end, number, format...);
  return error == std::errc() && behind == end;
}

bool parse_whole(std::string_view text, std::int64_t& number) {
  const bool is_hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (!is_hexadecimal) return parse(text, number, 10);
  text.remove_prefix(2);
  return !text.starts_with('-') && parse(text, number, 16);
}

}  // namespace

void Element::fail(const std::string& what) const {
  throw Fault(place(node_) + ": " + what, reading_->source.line(node_));
}

void Element::take(const Shape& shape) const {
  take_attributes(shape);
  take_children(shape);
}

void Element::take_attributes(const Shape& shape) const {
  std::set<std::string_view> seen;
  for (const pugi::xml_attribute& attribute : node_.attributes()) {
    const std::string_view name = attribute.name();
    if (!seen.insert(name).second) fail("attribute \"" + std::string(name) + "\" comes twice");
    if (contains(shape.attributes, name) || is_of_xml(name)) continue;
    const std::pair<std::string_view, std::string_view> given(name, attribute.value());
    if (std::find(shape.idle.begin(), shape.idle.end(), given) != shape.idle.end()) continue;
    reading_->left_out.add(std::string(name) + " attribute", " of " + std::string(tag()));
  }
}

void Element::take_children(const Shape& shape) const {
  const std::string where = " in " + std::string(tag());
  std::set<std::string_view> seen;
  for (const pugi::xml_node& inner : node_.children()) {
    if (inner.type() != pugi::node_element) {
      if (!shape.has_text) reading_->left_out.add("text", where);
      continue;
    }
    const std::string_view name = inner.name();
    if (contains(shape.many, name)) continue;
    if (!contains(shape.once, name)) {
      reading_->left_out.add(std::string(name) + " element", where);
    } else if (!seen.insert(name).second) {
      fail(std::string(name) + " comes twice");
    }
  }
}

std::optional<std::string_view> Element::find(const char* attribute) const {
  const pugi::xml_attribute found = node_.attribute(attribute);
  if (!found) return std::nullopt;
  return found.value();
}

std::string_view Element::text(const char* attribute) const {
  const std::optional<std::string_view> found = find(attribute);
  if (!found) fail("attribute \"" + std::string(attribute) + "\" is missing");
  return *found;
}

std::string Element::object_name(const char* attribute) const {
  std::string name(text(attribute));
  constexpr int kIsNode = 1;  // the placeholder of nodes is no name for anything
  if (!zelk_can_name_object(name.c_str(), kIsNode)) {
    fail(std::string(attribute) + "=\"" + name + "\" is no name that a database can hold");
  }
  return name;
}

std::int64_t Element::whole(const char* attribute, std::int64_t smallest, std::int64_t largest,
                            std::optional<std::int64_t> missing) const {
  if (missing && !find(attribute)) return *missing;
  const std::string given(text(attribute));
  std::int64_t number = 0;
  if (parse_whole(trimmed(given), number) && number >= smallest && number <= largest) return number;
  fail(std::string(attribute) + "=\"" + given + "\" is no whole number from " +
       std::to_string(smallest) + " to " + std::to_string(largest));
}

double Element::real(const char* attribute, double missing) const {
  const std::optional<std::string_view> given = find(attribute);
  if (!given) return missing;
  double number = 0;
  if (parse(trimmed(*given), number) && std::isfinite(number)) return number;
  fail(std::string(attribute) + "=\"" + std::string(*given) + "\" is no number, or out of range");
}

std::string Element::content() const {
  std::string text;
  for (const pugi::xml_node& inner : node_.children()) {
    if (inner.type() != pugi::node_element) text += inner.value();
  }
  return stored(text);
}

std::optional<Element> Element::child(const char* tag) const {
  const pugi::xml_node found = node_.child(tag);
  if (!found) return std::nullopt;
  return Element(*reading_, found);
}

}  // namespace zelk::modules::kcd

#include "input/object_names.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "input/lookup.hpp"
#include "term/text.hpp"
#include "zelk/dbc.h"

namespace zelk::tool {

namespace {

constexpr std::size_t kLongestName = 128;

bool is_letter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }

bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// What keeps a text from being a name; empty when nothing does.
std::string_view fault_of(std::string_view name) {
  const auto belongs = [](char c) { return is_letter(c) || is_digit(c); };
  if (name.empty() || !std::ranges::all_of(name, belongs))
    return "a name has letters, digits and _ only";
  if (is_digit(name.front())) return "a name does not begin with a digit";
  if (name.size() > kLongestName) return "a name has at most 128 characters";
  if (name == ZELK_NO_NODE) return "that stands for no node";
  constexpr int kIsNode = 1;
  const bool can_name = zelk_can_name_object(std::string(name).c_str(), kIsNode) != 0;
  return can_name ? std::string_view() : "that is a keyword of the format";
}

}  // namespace

void check_name(std::string_view name) {
  const std::string_view fault = fault_of(name);
  if (!fault.empty()) throw RequestError(fmt::format("no name is {}: {}", in_quotes(name), fault));
}

}  // namespace zelk::tool

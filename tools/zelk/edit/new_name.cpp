#include "edit/new_name.hpp"

#include <algorithm>
#include <string>

#include "base/characters.hpp"
#include "zelk/dbc.h"

namespace zelk::tool {

namespace {

/// Why nothing can have the name in a file; empty when something can.
std::string fault_of(std::string_view name, std::size_t longest) {
  if (name.empty() || !std::ranges::all_of(name, is_name_character))
    return "a name has letters, digits and _ only";
  if (is_digit(name.front())) return "a name does not begin with a digit";
  if (name.size() > longest) return fmt::format("a name has at most {} characters", longest);
  if (name == ZELK_NO_NODE) return "that stands for no node";
  constexpr int kIsNode = 1;
  const bool can_name = zelk_can_name_object(std::string(name).c_str(), kIsNode) != 0;
  return can_name ? "" : "that is a keyword of the format";
}

}  // namespace

void check_name(std::string_view name, std::size_t longest) {
  const std::string fault = fault_of(name, longest);
  if (!fault.empty()) throw RequestError(fmt::format("no name is {}: {}", in_quotes(name), fault));
}

}  // namespace zelk::tool

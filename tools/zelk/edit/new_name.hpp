/// \file
/// Names that edits give.

#ifndef ZELK_TOOL_EDIT_NEW_NAME_HPP
#define ZELK_TOOL_EDIT_NEW_NAME_HPP

#include <fmt/format.h>

#include <string_view>

#include "base/list.hpp"
#include "base/text_view.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"

namespace zelk::tool {

/// Longest name of a node, message, signal or environment variable.
inline constexpr std::size_t kLongestName = 128;

/// @throws RequestError when no object of a file can have the name
void check_name(std::string_view name, std::size_t longest = kLongestName);

/// @param record  that may have the name; null for none
/// @throws RequestError when another record of the list has it
template <typename Record>
void check_free(const Record* list, const Record* record, std::string_view name) {
  for (const Record& other : each(list)) {
    if (&other != record && view(other.name) == name)
      throw RequestError(fmt::format("{} is taken: there is one of that name", in_quotes(name)));
  }
}

}  // namespace zelk::tool

#endif

/// \file
/// Texts fit for the terminal.

#ifndef ZELK_TOOL_TERM_TEXT_HPP
#define ZELK_TOOL_TERM_TEXT_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/escaping.hpp"
#include "base/text_view.hpp"

namespace zelk::tool {

/// The lines of `text`, each `escaped`, without their line feeds and carriage returns. An empty
/// text has none, and a line feed at the very end adds none.
std::vector<std::string> escaped_lines(std::string_view text);

/// With small letters in place of ASCII capitals.
std::string lowered(std::string_view text);

/// "1 node", "3 nodes"; the plural is `noun` with an "s" unless it is given.
std::string counted(std::size_t count, std::string_view noun, std::string_view plural = {});

/// Columns that a text takes on a terminal: a character each, and a byte each when it is not UTF-8.
std::size_t width_of(std::string_view text);

/// `text`, `escaped` and in UTF-8, or its beginning with "..." behind it: `width` columns at most.
///
/// @param ascii  other characters become "?"
std::string cut_to(std::string_view text, std::size_t width, bool ascii = false);

}  // namespace zelk::tool

#endif

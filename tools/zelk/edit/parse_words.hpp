/// \file
/// Words of the command line that edits take as numbers and lists.

#ifndef ZELK_TOOL_EDIT_PARSE_WORDS_HPP
#define ZELK_TOOL_EDIT_PARSE_WORDS_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelk::tool {

/// A whole text as a finite number, or as a hexadecimal one behind "0x".
std::optional<double> parse_real(std::string_view text);

/// The same.
///
/// @throws RequestError for anything else
double real_of(std::string_view text);

/// A whole number, decimal or hexadecimal behind "0x".
///
/// @throws RequestError for anything else, and out of the range
std::uint32_t count_of(std::string_view text, std::uint32_t least, std::uint32_t most);

/// The parts between commas, without blanks around them; none of an empty text.
std::vector<std::string> list_of(std::string_view text);

/// The identifier of a message as records store it: above 0x7FF one of 29 bits, below one of 11,
/// unless bit 31 says that it has 29.
///
/// @throws RequestError when there is no such identifier
std::uint32_t message_id_of(std::string_view text);

}  // namespace zelk::tool

#endif

/// \file
/// Texts as JSON and CSV have them.

#ifndef ZELK_TOOL_QUOTING_HPP
#define ZELK_TOOL_QUOTING_HPP

#include <string>
#include <string_view>

namespace zelk::tool {

/// Whether `text` is UTF-8 from end to end.
bool is_utf8(std::string_view text);

/// `text` in UTF-8; one that is not is taken as Latin-1.
std::string utf8(std::string_view text);

/// `text` as a JSON string, quotes included. JSON is UTF-8: a text that is not is taken as
/// Latin-1.
std::string json_string(std::string_view text);

/// `text` as a field of CSV (RFC 4180): in quotes when it has commas, quotes or line ends.
std::string csv_field(std::string_view text);

}  // namespace zelk::tool

#endif

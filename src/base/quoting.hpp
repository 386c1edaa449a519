/// \file
/// Texts as JSON and CSV have them.

#ifndef ZELK_BASE_QUOTING_HPP
#define ZELK_BASE_QUOTING_HPP

#include <string>
#include <string_view>

namespace zelk {

/// `text` in UTF-8; one that is not comes from the command line or a log, and is taken as
/// Windows-1252.
std::string utf8(std::string_view text);

/// `text`, made UTF-8 by `utf8`, as a JSON string, quotes included.
std::string json_string(std::string_view text);

/// `text` as a field of CSV (RFC 4180): in quotes when it has commas, quotes or line ends.
std::string csv_quoted(std::string_view text);

/// `csv_quoted` of `text`, made UTF-8 by `utf8`, whose control characters other than line ends and
/// tabs become "\x1B", ...
std::string csv_field(std::string_view text);

}  // namespace zelk

#endif

/// \file
/// Finding what the command line names.

#ifndef ZELK_TOOL_LOOKUP_HPP
#define ZELK_TOOL_LOOKUP_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelk::tool {

/// A whole number of at most 32 bits, decimal or hexadecimal behind "0x".
std::optional<std::uint32_t> parse_id(std::string_view text);

/// Those of `names` that somebody who typed `name` may have meant, nearest first: "; did you mean
/// A, B?"; empty for none.
std::string suggestion(const std::vector<std::string_view>& names, std::string_view name);

}  // namespace zelk::tool

#endif

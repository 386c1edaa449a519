/// \file
/// Finding what the command line names.

#ifndef ZELK_TOOL_LOOKUP_HPP
#define ZELK_TOOL_LOOKUP_HPP

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "database.hpp"

namespace zelk::tool {

/// What the command line asks for cannot be done; `what()` tells why, fit for the terminal.
class RequestError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A whole number of at most 32 bits, decimal or hexadecimal behind "0x".
std::optional<std::uint32_t> parse_id(std::string_view text);

/// Those of `names` that somebody who typed `name` may have meant, nearest first: "; did you mean
/// A, B?"; empty for none.
std::string suggestion(const std::vector<std::string_view>& names, std::string_view name);

/// The messages of a name or an identifier, whose format bit matters only when it is given, in the
/// order of the database; never none.
///
/// @throws RequestError when there is none
std::vector<const msgblk*> find_messages(const ZelkDatabase& database, const std::string& wanted);

}  // namespace zelk::tool

#endif

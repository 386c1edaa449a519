/// \file
/// Finding what the command line names.

#ifndef ZELK_TOOL_INPUT_LOOKUP_HPP
#define ZELK_TOOL_INPUT_LOOKUP_HPP

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "input/database.hpp"

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

/// Gathers names, and suggests those that somebody who typed another one may have meant.
class NameSuggestion {
 public:
  /// @param typed  must outlive the object
  explicit NameSuggestion(std::string_view typed) : typed_(typed) {}

  /// @param owner  the message that has what bears the name: with it in front the name counts when
  /// there is a point in what was typed; empty for none
  void add(std::string_view name, std::string_view owner = {});

  /// As `suggestion`.
  std::string text() const;

 private:
  std::string_view typed_;
  std::vector<std::string> names_;
};

/// The messages of a name or an identifier, whose format bit matters only when it is given, in the
/// order of the database; never none.
///
/// @throws RequestError when there is none
std::vector<const msgblk*> find_messages(const ZelkDatabase& database, const std::string& wanted);

}  // namespace zelk::tool

#endif

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

#include "base/list.hpp"
#include "input/encoded_database.hpp"

namespace zelk::tool {

/// A request of the command line that cannot be met; `what()` says why, fit for the terminal.
class RequestError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A whole number of at most 32 bits, decimal or hexadecimal behind "0x".
std::optional<std::uint32_t> parse_id(std::string_view text);

/// Whether `id` names the message; its format bit counts only when it is set.
bool has_id(const msgblk& message, std::uint32_t id);

/// "no message has the identifier 0x65 (101)".
std::string unknown_id_text(std::uint32_t id);

/// Gathers names, and suggests those that a user who typed another one may have meant.
class NameSuggestion {
 public:
  /// @param typed  must outlive the object
  explicit NameSuggestion(std::string_view typed) : typed_(typed) {}

  /// @param owner  name of the message that has the object, empty for none: the name is taken as
  /// "owner.name" when there is a point in what was typed
  void add(std::string_view name, std::string_view owner = {});

  /// The nearest names, nearest first: "; did you mean A, B?"; empty for none.
  std::string text() const;

 private:
  std::string_view typed_;
  std::vector<std::string> names_;
};

/// The messages with the name or identifier `wanted`, in the order of the database; at least one.
///
/// @throws RequestError when there is none
std::vector<const msgblk*> find_messages(const ZelkDatabase& database, const std::string& wanted);

/// The definition of the attribute `name`, in UTF-8, for one kind of objects; null when there is
/// none.
///
/// @param others  gathers the names of the kind's definitions; null for nothing
const attr_def* find_definition(EncodedDatabase database, zelk_obj_t type, std::string_view name,
                                NameSuggestion* others = nullptr);

}  // namespace zelk::tool

#endif

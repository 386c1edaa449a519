/// \file
/// Names that the format takes, made from any text.

#ifndef ZELK_CHECK_REPAIR_PLAIN_NAMES_HPP
#define ZELK_CHECK_REPAIR_PLAIN_NAMES_HPP

#include <cstddef>
#include <string>
#include <string_view>

namespace zelk::check {

/// Characters of names that programs of the field keep whole.
inline constexpr std::size_t kKeptName = 32;

/// The text as a name: umlauts and other Latin letters in plain ones, "_" for what has no letter, a
/// "_" in front of a digit and behind a keyword. One of at most 32 characters gives such a name;
/// longer ones end at 128.
std::string plain_name(std::string_view text);

/// The name with "_2", "_3" and so on at its end, within the length that it has or may have.
std::string numbered_name(std::string_view name, std::size_t number);

}  // namespace zelk::check

#endif

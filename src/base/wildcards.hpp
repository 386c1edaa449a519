/// \file
/// Patterns of names, in which "*" stands for any characters and "?" for any one.

#ifndef ZELK_BASE_WILDCARDS_HPP
#define ZELK_BASE_WILDCARDS_HPP

#include <string_view>

namespace zelk {

/// Whether all of `text`, in UTF-8, matches `pattern`, in which "*" stands for any characters and
/// "?" for any one.
bool matches_wildcards(std::string_view pattern, std::string_view text);

/// Whether `pattern` is that of an object's name, or of "Message.Name" for what a message has.
///
/// @param owner  name of the message; empty for an object that no message has
bool matches_object(std::string_view pattern, std::string_view name, std::string_view owner);

}  // namespace zelk

#endif

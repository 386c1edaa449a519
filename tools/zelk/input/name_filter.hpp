/// \file
/// The choice of messages and signals by name.

#ifndef ZELK_TOOL_INPUT_NAME_FILTER_HPP
#define ZELK_TOOL_INPUT_NAME_FILTER_HPP

#include <string>
#include <string_view>
#include <vector>

#include "zelk/records.h"

namespace zelk::tool {

/// Whether all of `text`, in UTF-8, matches `pattern`, in which "*" stands for any characters and
/// "?" for any one.
bool matches_wildcards(std::string_view pattern, std::string_view text);

/// Whether `pattern` is that of an object's name, or of "Message.Name" for what a message has.
///
/// @param owner  name of the message; empty for an object that no message has
bool matches_object(std::string_view pattern, std::string_view name, std::string_view owner);

/// Patterns of names; an empty list leaves everything in.
struct NameFilter {
  std::vector<std::string> messages;
  std::vector<std::string> signals;  ///< of a signal, or of "Message.Signal"

  bool takes(const msgblk& message) const;
  bool takes(const msgblk& message, const sigblk& signal) const;
};

}  // namespace zelk::tool

#endif

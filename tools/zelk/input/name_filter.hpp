/// \file
/// The choice of messages and signals by name.

#ifndef ZELK_TOOL_INPUT_NAME_FILTER_HPP
#define ZELK_TOOL_INPUT_NAME_FILTER_HPP

#include <string>
#include <vector>

#include "base/wildcards.hpp"
#include "zelk/records.h"

namespace zelk::tool {

/// Patterns of names; an empty list leaves everything in.
struct NameFilter {
  std::vector<std::string> messages;
  std::vector<std::string> signals;  ///< of a signal, or of "Message.Signal"

  bool takes(const msgblk& message) const;
  bool takes(const msgblk& message, const sigblk& signal) const;
};

}  // namespace zelk::tool

#endif

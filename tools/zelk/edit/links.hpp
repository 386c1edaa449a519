/// \file
/// Changes of records that need memory of the library's own kind.

#ifndef ZELK_TOOL_EDIT_LINKS_HPP
#define ZELK_TOOL_EDIT_LINKS_HPP

#include <string_view>
#include <vector>

#include "zelk/records.h"

namespace zelk::tool {

/// A copy that a record owns.
///
/// @throws std::bad_alloc
char* owned_text(std::string_view text);

/// Makes a list of links lead to these nodes, in this order. Links that stay keep what hangs on
/// them.
///
/// @param nodes  each once
/// @throws std::bad_alloc
void set_links(rxblk*& links, const std::vector<symblk*>& nodes);

/// Gives a number of a list another text, or puts a new description where the order of its numbers
/// has it: in front of the first greater one of a list that ascends, behind the last smaller one of
/// a list that descends, else at the end.
///
/// @return whether the number had one
/// @throws std::bad_alloc
bool set_description(val*& list, std::int32_t number, std::string_view text);

/// @return false when the number has no description
bool delete_description(val*& list, std::int32_t number);

/// Moves the first value of a list behind the others.
void move_to_end(attr*& values);

}  // namespace zelk::tool

#endif

/// \file
/// Names announced in a file's "NS_" section that are no keywords. A statement that begins with one
/// is skipped.

#ifndef ZELK_TEXT_NEW_SYMBOLS_HPP
#define ZELK_TEXT_NEW_SYMBOLS_HPP

#include <string>
#include <string_view>
#include <vector>

namespace zelk {

/// Announces `name`, cut to 32 characters; a keyword is accepted and ignored.
///
/// @return false when there is no memory for it
bool zelk_add_new_symbol(std::string_view name);

/// Whether `name` is announced in the file being read.
bool is_new_symbol(std::string_view name);

/// Ends the announcements: no name is a new symbol any more.
void zelk_free_new_symbols();

/// Forgets the names of the file read before, too: called when a read begins.
void reset_new_symbols();

/// The names announced in the last file that was read, in file order.
const std::vector<std::string>& last_new_symbols();

}  // namespace zelk

#endif

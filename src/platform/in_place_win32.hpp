/// \file
/// Writing a file in place, where it has several names (hard links) that shall stay names of one
/// file.
///
/// No single step does that. So a whole copy of the new content stands beside the target, on the
/// disk, from before the target is emptied until all of it is on the disk again; the copy has the
/// target's time of the last change before that. A copy that no process holds open tells of a write
/// that did not end, and one of two things shows that nobody has changed the target since: it has
/// that time still (not yet emptied), or its content begins the copy's.

#ifndef ZELK_PLATFORM_IN_PLACE_WIN32_HPP
#define ZELK_PLATFORM_IN_PLACE_WIN32_HPP

#include "platform/paths_win32.hpp"

namespace zelk::platform {

/// Ends a save with the system's reason for the call that has just failed.
[[noreturn]] void fail_save_of_windows(const std::string& step = {});

bool has_other_names(const std::filesystem::path& target);

/// Gives the target the content of `fresh`, which stands at `path` and becomes `copy` meanwhile.
///
/// @throws SaveFailure; the target is as it was, or the whole copy stays
void write_in_place(const std::filesystem::path& target, const std::filesystem::path& copy,
                    const Handle& fresh, const std::filesystem::path& path);

/// Ends a write that did not end.
///
/// @return whether there was one
/// @throws SaveFailure when another process is about it, or the target has been changed since
bool end_write_in_place(const std::filesystem::path& target, const std::filesystem::path& copy);

}  // namespace zelk::platform

#endif

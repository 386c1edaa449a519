/// \file
/// Writing in place (in_place.hpp) on Windows.

#ifndef ZELK_FILES_IN_PLACE_WIN32_HPP
#define ZELK_FILES_IN_PLACE_WIN32_HPP

#include "files/paths_win32.hpp"

namespace zelk::files {

/// Ends a save with the system's reason for the call that has just failed.
[[noreturn]] void fail_save_of_windows(const std::string& step = {});

bool has_other_names(const std::filesystem::path& target);

/// Where the whole copy of the target's new content stands while the target is written in place.
std::filesystem::path whole_copy_of(const std::filesystem::path& target);

/// Gives the target the content of `fresh`, which stands at `path` and becomes the copy meanwhile.
///
/// @throws SaveFailure; the target is as it was, or the whole copy stays
void write_in_place(const std::filesystem::path& target, const Handle& fresh,
                    const std::filesystem::path& path);

/// Ends an earlier write that did not end.
///
/// @return whether the target had to be written again
/// @throws SaveFailure when another process writes now, or the target has been changed since
bool end_write_in_place(const std::filesystem::path& target);

/// What to read instead of a target whose write has not ended.
///
/// @return null when the target itself is to be read
/// @throws SaveFailure, std::bad_alloc
Handle open_whole_copy(const std::filesystem::path& target);

}  // namespace zelk::files

#endif

/// \file
/// Writing in place (in_place.hpp) on Windows.

#ifndef ZELK_FILES_IN_PLACE_WIN32_HPP
#define ZELK_FILES_IN_PLACE_WIN32_HPP

#include "files/paths_win32.hpp"

namespace zelk::files {

/// Ends a save with the system's reason for the call that has just failed.
[[noreturn]] void fail_save_of_windows(const std::string& step = {});

bool has_other_names(const std::filesystem::path& target);

/// Gives the target the content of `fresh`, which stands at `path` and becomes `copy` meanwhile.
///
/// @throws SaveFailure; the target is as it was, or the whole copy stays
void write_in_place(const std::filesystem::path& target, const std::filesystem::path& copy,
                    const Handle& fresh, const std::filesystem::path& path);

/// Ends an earlier write that did not end.
///
/// @return whether the target had to be written again
/// @throws SaveFailure when another process writes now, or the target has been changed since
bool end_write_in_place(const std::filesystem::path& target, const std::filesystem::path& copy);

}  // namespace zelk::files

#endif

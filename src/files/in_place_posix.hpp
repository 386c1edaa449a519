/// \file
/// Writing in place (in_place.hpp) on POSIX systems.

#ifndef ZELK_FILES_IN_PLACE_POSIX_HPP
#define ZELK_FILES_IN_PLACE_POSIX_HPP

#include "files/temporary_file_posix.hpp"

namespace zelk::files {

/// Gives the target the content of `fresh`, which is on the disk.
///
/// @param old  the target, open for writing
/// @throws SaveFailure; the target is as it was, or the whole copy stays
void write_in_place(const std::filesystem::path& target, const Descriptor& old,
                    TemporaryFile& fresh);

/// Ends an earlier write that did not end.
///
/// @param old  as above; none when there is no target
/// @return whether the target had to be written again
/// @throws SaveFailure when another process writes now, or the target has been changed since
bool end_write_in_place(const std::filesystem::path& target, const Descriptor& old);

/// What to read instead of a target whose write has not ended.
///
/// @param path    of the target, maybe through links
/// @param target  open for reading
/// @return none when the target itself is to be read
/// @throws SaveFailure, std::bad_alloc
Descriptor open_whole_copy(const char* path, const Descriptor& target);

}  // namespace zelk::files

#endif

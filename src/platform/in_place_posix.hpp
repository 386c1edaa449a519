/// \file
/// Writing a file in place, where it has several names (hard links) that shall stay names of one
/// file.
///
/// No single step does that. So a synced copy of the whole new content stands beside the target
/// from before the target is emptied until all of it is on the disk again; the copy has the
/// target's time of the last change before that. A copy that nobody's lock holds tells of a write
/// that did not end, and one of two things shows that nobody has changed the target since: it has
/// that time still (not yet emptied), or its content begins the copy's.

#ifndef ZELK_PLATFORM_IN_PLACE_POSIX_HPP
#define ZELK_PLATFORM_IN_PLACE_POSIX_HPP

#include "platform/beside_posix.hpp"

namespace zelk::platform {

/// Gives the target the content of `fresh`, which is on the disk.
///
/// @param old  the target, open for writing
/// @throws SaveFailure; the target is as it was, or the whole copy stays
void write_in_place(const std::filesystem::path& target, const Descriptor& old, FileBeside& fresh);

/// Ends a write that did not end.
///
/// @param old  as above; none when there is no target
/// @return whether there was one
/// @throws SaveFailure when another process is about it, or the target has been changed since
bool end_write_in_place(const std::filesystem::path& target, const Descriptor& old);

}  // namespace zelk::platform

#endif

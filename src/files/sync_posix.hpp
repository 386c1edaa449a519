/// \file
/// Putting files and the names in folders on the disk, on POSIX systems.

#ifndef ZELK_FILES_SYNC_POSIX_HPP
#define ZELK_FILES_SYNC_POSIX_HPP

#include "files/descriptor_posix.hpp"

namespace zelk::files {

/// Waits until the file's content is on the disk. A file system that cannot be asked for that keeps
/// what it has when it pleases: that is no failure.
///
/// @return false when the disk does not take it (`errno` says)
bool sync(const Descriptor& file);

}  // namespace zelk::files

#endif

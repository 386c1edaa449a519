/// \file
/// What a file system keeps beside the content of a file.

#ifndef ZELK_FILES_ATTRIBUTES_POSIX_HPP
#define ZELK_FILES_ATTRIBUTES_POSIX_HPP

#include "files/descriptor_posix.hpp"

namespace zelk::files {

/// Gives `fresh` the owner, the group, the extended attributes (access lists among them) and the
/// permissions of `old`, so that it can take its place.
///
/// Only root can keep an owner that is not the process's own. Everything else is kept, but for the
/// security labels, where the system's policy has the last word, and for what the system derives
/// from the content.
///
/// @throws SaveFailure when something cannot be kept, std::bad_alloc
void copy_attributes(const Descriptor& old, const Descriptor& fresh);

}  // namespace zelk::files

#endif

/// \file
/// Streams whose reader or writer has a buffer already.

#ifndef ZELK_FILES_UNBUFFERED_HPP
#define ZELK_FILES_UNBUFFERED_HPP

#include "files/files.hpp"

namespace zelk::files {

/// A stream that the system has given, without a buffer of its own; null for null (`errno` says
/// why).
///
/// @throws std::bad_alloc when there was no memory for the stream
File unbuffered(std::FILE* stream);

}  // namespace zelk::files

#endif

/// \file
/// What the library needs of an operating system; one source file per system fulfils it.

#ifndef ZELK_PLATFORM_PLATFORM_HPP
#define ZELK_PLATFORM_PLATFORM_HPP

#include <array>
#include <cstdio>
#include <memory>

namespace zelk::platform {

struct FileCloser {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

/// An open file, closed when it goes.
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Opens a file for reading its bytes as they are, without a buffer of the stream's own.
///
/// @param path  NUL-terminated, in the system's encoding of file names
/// @return null when the file cannot be opened, or is a directory
File open_for_reading(const char* path);

/// Creates or empties a file for writing text, without a buffer of the stream's own: a line feed is
/// written as the system's line end.
///
/// @param path  NUL-terminated, in the system's encoding of file names
/// @return null when the file cannot be opened for writing
File open_for_writing(const char* path);

/// The bytes that begin a double-byte character in the process's code page; none in single-byte
/// code pages, nor in those (such as UTF-8) in which no later byte of a character can be an ASCII
/// one.
std::array<bool, 256> lead_bytes();

}  // namespace zelk::platform

#endif

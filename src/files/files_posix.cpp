#include <fcntl.h>

#include <cerrno>
#include <utility>

#include "files/descriptor_posix.hpp"
#include "files/in_place_posix.hpp"
#include "files/temporary_file_posix.hpp"
#include "files/unbuffered.hpp"

namespace zelk::files {

namespace {

/// The file, or what is to be read instead of it.
///
/// @return none when it cannot be opened (`errno` says)
/// @throws SaveFailure, std::bad_alloc
Descriptor open_whole(const char* path) {
  Descriptor file(open(path, O_RDONLY | O_CLOEXEC));
  if (!file) return {};
  if (S_ISDIR(status_of(file).st_mode)) {
    errno = EISDIR;
    return {};
  }
  Descriptor copy = open_whole_copy(path, file);
  return copy ? std::move(copy) : std::move(file);
}

}  // namespace

File open_for_reading(const char* path) try {
  Descriptor own = open_whole(path);
  File file = unbuffered(own ? fdopen(own.get(), "rb") : nullptr);
  if (file) own.release();
  return file;
} catch (const SaveFailure&) {
  return nullptr;  // a call of the system has failed: `errno` says why
}

bool has_unended_write(const char* path) try {
  struct stat copy = {};
  return lstat(whole_copy_of(behind_links(path)).c_str(), &copy) == 0;
} catch (const SaveFailure&) {
  return false;  // there is no such file
}

File open_for_writing(const char* path, Content /*line ends are line feeds*/) {
  return unbuffered(std::fopen(path, "we"));
}

File open_for_appending(const char* path) { return unbuffered(std::fopen(path, "ae")); }

}  // namespace zelk::files

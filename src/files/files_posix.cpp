#include <sys/stat.h>

#include "files/files.hpp"

namespace zelk::files {

namespace {

bool is_directory(std::FILE* file) {
  struct stat status = {};
  return fstat(fileno(file), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

File open_for_reading(const char* path) {
  File file(std::fopen(path, "rbe"));
  if (!file) return nullptr;
  if (is_directory(file.get())) {
    errno = EISDIR;
    return nullptr;
  }
  std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

File open_for_writing(const char* path, Content /*line ends are line feeds*/) {
  File file(std::fopen(path, "we"));
  if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

File open_for_appending(const char* path) {
  File file(std::fopen(path, "ae"));
  if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

}  // namespace zelk::files

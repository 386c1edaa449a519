#include "files/sync_posix.hpp"

#include <fcntl.h>

#include "files/save.hpp"

namespace zelk::files {

bool sync(const Descriptor& file) {
  while (fsync(file.get()) != 0) {
    if (errno == EINTR) continue;
    return errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;
  }
  return true;
}

void sync_folder(const std::filesystem::path& folder) {
  const char* const path = folder.empty() ? "." : folder.c_str();
  const Descriptor opened(open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!opened && errno == EACCES) return;  // one may write into a folder, and not read it
  if (!opened || !sync(opened)) fail_save("the folder cannot be put on the disk");
}

}  // namespace zelk::files

#include <fcntl.h>

#include <utility>

#include "files/descriptor_posix.hpp"
#include "files/held_folder.hpp"

namespace zelk::files {

namespace fs = std::filesystem;

namespace {

enum class Holding { kHeld, kOthers, kGone };

/// Takes the lock of a folder. Where the file system has no locks, a folder that was there may be
/// another's, and a new one is this process's.
Holding hold(const Descriptor& folder, const fs::path& path, bool is_new) {
  if (!folder) return errno == ENOENT ? Holding::kGone : Holding::kOthers;
  if (status_of(folder).st_uid != geteuid()) return Holding::kOthers;
  if (!try_lock(folder) && (errno == EWOULDBLOCK || !is_new)) return Holding::kOthers;
  return is_named(folder, path.c_str()) ? Holding::kHeld : Holding::kGone;
}

void empty(const fs::path& folder) {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(folder, ignored))
    fs::remove_all(entry.path(), ignored);
}

}  // namespace

std::unique_ptr<HeldFolder> HeldFolder::make(const fs::path& path, std::error_code& error) {
  error.clear();
  for (;;) {
    const bool is_new = mkdir(path.c_str(), S_IRWXU) == 0;
    if (!is_new && errno != EEXIST) {
      error = {errno, std::generic_category()};
      return nullptr;
    }
    Descriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    const Holding holding = hold(folder, path, is_new);
    if (holding == Holding::kOthers) return nullptr;
    if (holding == Holding::kGone) continue;  // its process has just ended
    if (!is_new) empty(path);
    Hold held = std::make_shared<Descriptor>(std::move(folder));
    return std::unique_ptr<HeldFolder>(new HeldFolder(path, std::move(held)));
  }
}

}  // namespace zelk::files

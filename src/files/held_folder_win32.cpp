#include <utility>

#include "files/held_folder.hpp"
#include "files/paths_win32.hpp"

namespace zelk::files {

namespace fs = std::filesystem;

std::unique_ptr<HeldFolder> HeldFolder::make(const fs::path& path, std::error_code& error) {
  bool is_new = fs::create_directory(path, error);
  if (error && error != std::errc::file_exists) return nullptr;
  error.clear();
  // A file beside the folder, which the system removes when its process has ended. The folder
  // itself could not be listed while a handle keeps others from removing it.
  constexpr DWORD kNotShared = 0;
  constexpr DWORD kFlags = FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE;
  Handle file =
      open_handle(path.wstring() + L".held", GENERIC_WRITE, kNotShared, OPEN_ALWAYS, kFlags);
  if (!file) return nullptr;
  std::error_code ignored;
  // Who held it may have removed it since it was seen.
  if (fs::create_directory(path, ignored)) is_new = true;
  if (!fs::is_directory(path, ignored)) return nullptr;
  for (const auto& entry : fs::directory_iterator(path, ignored))
    if (!is_new) fs::remove_all(entry.path(), ignored);
  fs::permissions(path, fs::perms::owner_all, ignored);
  Hold held = std::make_shared<Handle>(std::move(file));
  return std::unique_ptr<HeldFolder>(new HeldFolder(path, std::move(held)));
}

}  // namespace zelk::files

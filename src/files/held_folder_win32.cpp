#include <new>
#include <utility>

#include "files/held_folder.hpp"
#include "files/paths_win32.hpp"

namespace zelk::files {

namespace fs = std::filesystem;

struct HeldFolder::Hold {
  Handle folder;
};

HeldFolder::HeldFolder(const fs::path& path, std::unique_ptr<Hold> hold)
    : path_(path), hold_(std::move(hold)) {}

HeldFolder::~HeldFolder() try {
  hold_.reset();  // it could not be removed
  std::error_code ignored;
  fs::remove_all(path_, ignored);
} catch (const std::bad_alloc&) {
  // The next run removes it.
}

std::unique_ptr<HeldFolder> HeldFolder::make(const fs::path& path, std::error_code& error) {
  const bool is_new = fs::create_directory(path, error);
  if (error) return nullptr;
  // Whoever holds a folder does not let others ask for the right to remove it.
  constexpr DWORD kFlags = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE;
  Handle folder = open_handle(path, GENERIC_READ | DELETE, kShare, OPEN_EXISTING, kFlags);
  if (!folder) return nullptr;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(path, ignored))
    if (!is_new) fs::remove_all(entry.path(), ignored);
  fs::permissions(path, fs::perms::owner_all, ignored);
  auto held = std::make_unique<Hold>(Hold{std::move(folder)});
  return std::unique_ptr<HeldFolder>(new HeldFolder(path, std::move(held)));
}

}  // namespace zelk::files

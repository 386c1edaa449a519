#include "files/temporary_file_posix.hpp"

#include <fcntl.h>

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "base/check_memory.hpp"
#include "files/save.hpp"

namespace zelk::files {
namespace {

/// Part of the names of a target's files: its own name, or the beginning of a long one with a
/// number for the whole. The two never meet, since they differ in length.
std::string stem_of(const std::string& name) {
  constexpr std::size_t kLongestName = 100;  // some file systems take less than 255 bytes
  constexpr std::size_t kBeginning = 90;
  if (name.size() <= kLongestName) return name;
  std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a: every version must find the files
  for (const char byte : name) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
  char number[17];
  static_cast<void>(std::snprintf(number, sizeof number, "%016" PRIx64, hash));
  return name.substr(0, kBeginning) + "~" + number;
}

std::filesystem::path beside(const std::filesystem::path& target, std::string_view ending) {
  std::string name = "." + stem_of(target.filename().string()) + ".zelk-";
  return target.parent_path() / name.append(ending);
}

}  // namespace

TemporaryFile::TemporaryFile(const std::filesystem::path& target, mode_t mode) {
  errno = EEXIST;
  int number = 0;
  while (number < kMostWriters && !create(target, number, mode) && errno == EEXIST) ++number;
  if (!descriptor_) fail_save("no file can be created beside it");
}

/// `EEXIST` when the name is taken, or when another save is removing the new file as a leftover.
bool TemporaryFile::create(const std::filesystem::path& target, int number, mode_t mode) {
  std::string path = beside(target, std::to_string(number)).string();
  Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  if (!file) return false;
  path_ = std::move(path);
  const bool is_others = !try_lock(file) && errno == EWOULDBLOCK;
  if (is_others || !is_named(file, path_.c_str())) {
    path_.clear();
    errno = EEXIST;
    return false;
  }
  descriptor_ = std::move(file);
  return true;
}

bool TemporaryFile::move_to(const std::filesystem::path& path) {
  if (rename(path_.c_str(), path.c_str()) != 0) return false;
  path_.clear();
  return true;
}

bool TemporaryFile::move_to_new(const std::filesystem::path& path) {
  if (link(path_.c_str(), path.c_str()) != 0) return false;
  unlink(path_.c_str());
  path_.clear();
  return true;
}

TemporaryFile::~TemporaryFile() {
  if (!path_.empty()) unlink(path_.c_str());
}

std::filesystem::path behind_links(std::filesystem::path path) {
  constexpr int kMostLinks = 40;  // no more than the system follows
  std::error_code error;
  for (int links = 0; is_symlink(path, error); ++links) {
    if (links == kMostLinks) fail_save({ELOOP, std::generic_category()});
    path = path.parent_path() / read_symlink(path, error);
    check_memory(error);
  }
  return path;
}

std::filesystem::path whole_copy_of(const std::filesystem::path& target) {
  return beside(target, "whole");
}

void clear_leftovers(const std::filesystem::path& target) {
  const std::string beginning = beside(target, "").string();
  for (int number = 0; number < kMostWriters; ++number) {
    const std::string path = beginning + std::to_string(number);
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0) continue;  // costs less than to open nothing
    const Descriptor file(open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    // Nobody else removes or renames a file while this process holds its lock.
    if (file && S_ISREG(status_of(file).st_mode) && try_lock(file) &&
        is_named(file, path.c_str())) {
      unlink(path.c_str());
    }
  }
}

}  // namespace zelk::files

#include "files/in_place_posix.hpp"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>

#include "files/attributes_posix.hpp"
#include "files/in_place.hpp"
#include "files/save.hpp"
#include "files/sync_posix.hpp"

namespace zelk::files {
namespace {

namespace fs = std::filesystem;

using Block = std::array<char, 16384>;

/// @return bytes read; less than a block only at the end
std::size_t read_block(const Descriptor& file, off_t at, Block& block) {
  std::size_t size = 0;
  while (size < block.size()) {
    const ssize_t count =
        pread(file.get(), block.data() + size, block.size() - size, at + static_cast<off_t>(size));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail_save();
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  return size;
}

void write_block(const Descriptor& file, off_t at, const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t count = pwrite(file.get(), bytes, size, at);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail_save();
    bytes += count;
    at += count;
    size -= static_cast<std::size_t>(count);
  }
}

/// Appends to `to` what `from` has behind the first `at` bytes, and puts it on the disk.
void copy_rest(const Descriptor& from, const Descriptor& to, off_t at) {
  Block block;
  while (const std::size_t size = read_block(from, at, block)) {
    write_block(to, at, block.data(), size);
    at += static_cast<off_t>(size);
  }
  if (!sync(to)) fail_save();
}

/// By the content alone: of a target that has part of the copy's, maybe with zeros in place of some
/// bytes, nothing else is lost.
Progress compare(const Descriptor& target, const Descriptor& whole) {
  const auto may_become = [](char now, char wanted) { return now == wanted || now == 0; };
  Progress progress = Progress::kAll;
  Block now;
  Block wanted;
  off_t at = 0;
  while (const std::size_t size = read_block(whole, at, wanted)) {
    const std::size_t there = read_block(target, at, now);
    if (there > size || !std::equal(now.data(), now.data() + there, wanted.data(), may_become)) {
      return Progress::kUnknown;
    }
    if (there < size || std::memcmp(now.data(), wanted.data(), size) != 0) {
      progress = Progress::kPart;
    }
    at += static_cast<off_t>(size);
  }
  return read_block(target, at, now) == 0 ? progress : Progress::kUnknown;
}

bool is_same_time(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool set_time(const Descriptor& file, const timespec& time) {
  const timespec times[] = {time, time};
  return futimens(file.get(), times) == 0;
}

/// Reserves room for the content, on file systems that can do it.
void reserve(const Descriptor& file, off_t size) {
  const timespec before = status_of(file).st_mtim;
  if (size == 0 || fallocate(file.get(), FALLOC_FL_KEEP_SIZE, 0, size) == 0) return;
  const std::error_code reason(errno, std::generic_category());
  if (reason == std::errc::not_supported || reason == std::errc::function_not_supported ||
      reason == std::errc::operation_not_supported) {
    return;
  }
  set_time(file, before);  // the attempt alone can change it
  fail_save(reason);
}

void write_all(const Descriptor& target, const Descriptor& content) {
  if (ftruncate(target.get(), 0) != 0) fail_save();
  reserve(target, status_of(content).st_size);
  copy_rest(content, target, 0);
}

/// Locks the file until its descriptor is closed; a file system may have no locks.
void lock(const Descriptor& file) {
  if (!try_lock(file) && errno == EWOULDBLOCK) throw SaveFailure(kBusy);
}

/// @param target  open for reading
Progress progress_of(const Descriptor& target, const Descriptor& whole) {
  // Asked before the content: a write that begins in this moment changes the time.
  const bool is_old = is_same_time(status_of(target).st_mtim, status_of(whole).st_mtim);
  const Progress progress = compare(target, whole);
  return is_old && progress == Progress::kUnknown ? Progress::kPart : progress;
}

/// Of a write whose writer has gone.
///
/// @param old  the target, open for writing
Progress progress_of_unended(const fs::path& target, const Descriptor& old,
                             const Descriptor& whole) {
  lock(old);  // another process may write to it by another of its names
  const Descriptor readable(open(target.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!readable) fail_save("a write did not end, and it cannot be read");
  const Progress progress = progress_of(readable, whole);
  return progress == Progress::kAll && !sync(old) ? Progress::kPart : progress;
}

/// Others could put a file of theirs beside the target.
bool is_trusted(const struct stat& copy, uid_t owner_of_target) {
  return S_ISREG(copy.st_mode) && (copy.st_uid == geteuid() || copy.st_uid == owner_of_target);
}

/// Without a type where this process can have no file.
struct stat status_at(const fs::path& path) {
  struct stat status = {};
  if (lstat(path.c_str(), &status) == 0) return status;
  for (const int none : {ENOENT, ENOTDIR, EACCES, ENAMETOOLONG, ELOOP})
    if (errno == none) return {};
  fail_save();
}

/// Whoever may read the target may read its copy, where the process can give it to them.
void share_like(const Descriptor& old, const Descriptor& copy) {
  try {
    copy_attributes(old, copy);
  } catch (const SaveFailure&) {
    // The writer's alone then, as it was made.
  }
  fchmod(copy.get(), (status_of(copy).st_mode & 0777) | S_IRUSR | S_IWUSR);
}

}  // namespace

void write_in_place(const fs::path& target, const Descriptor& old, TemporaryFile& fresh) {
  lock(old);
  if (!is_named(old, target.c_str())) throw SaveFailure("another process has replaced it");
  reserve(old, status_of(fresh.descriptor()).st_size);
  share_like(old, fresh.descriptor());
  const bool has_time = set_time(fresh.descriptor(), status_of(old).st_mtim);
  if (!has_time || !sync(fresh.descriptor())) fail_save();
  const fs::path copy = whole_copy_of(target);
  if (!fresh.move_to_new(copy)) {
    if (errno == EEXIST) throw SaveFailure(kBusy);
    fail_save("no copy can be kept beside it");
  }
  try {
    sync_folder(copy.parent_path());
  } catch (const SaveFailure&) {
    remove_copy(copy);
    throw;
  }
  overwrite(copy, [&] { write_all(old, fresh.descriptor()); });
}

bool end_write_in_place(const fs::path& target, const Descriptor& old) {
  const fs::path copy = whole_copy_of(target);
  const Descriptor whole(open(copy.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!whole && errno == ENOENT) return false;
  const std::string name = copy.filename().string();
  if (!whole) fail_save("a write did not end, and " + name + " cannot be opened");
  lock(whole);
  if (!is_named(whole, copy.c_str())) return false;  // that process has just ended its write
  if (!is_trusted(status_of(whole), old ? status_of(old).st_uid : geteuid())) {
    throw SaveFailure(name + " beside it is somebody else's");
  }
  const Progress progress = old ? progress_of_unended(target, old, whole) : Progress::kUnknown;
  return end_write(progress, copy, [&] { write_all(old, whole); });
}

Descriptor open_whole_copy(const char* path, const Descriptor& target) {
  const struct stat status = status_of(target);
  if (!S_ISREG(status.st_mode)) return {};
  const fs::path copy = whole_copy_of(behind_links(path));
  while (is_trusted(status_at(copy), status.st_uid)) {
    Descriptor whole(open(copy.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!whole && errno == ENOENT) break;
    if (!whole) fail_save();
    const bool is_wanted = progress_of(target, whole) == Progress::kPart;
    // Else that write has ended meanwhile; another one may have begun.
    if (is_named(whole, copy.c_str())) return is_wanted ? std::move(whole) : Descriptor();
  }
  return {};
}

void remove_copy(const fs::path& copy) {
  unlink(copy.c_str());
  try {
    sync_folder(copy.parent_path());
  } catch (const SaveFailure&) {
    // The copy may come back with the power, beside a target that is as whole as it is.
  }
}

}  // namespace zelk::files

/// \file
/// Descriptors of POSIX systems.

#ifndef ZELK_FILES_DESCRIPTOR_POSIX_HPP
#define ZELK_FILES_DESCRIPTOR_POSIX_HPP

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

#include "files/save_failure.hpp"

namespace zelk::files {

/// A descriptor, closed by its destructor.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }

  explicit operator bool() const { return number_ >= 0; }
  int get() const { return number_; }
  void release() { number_ = -1; }  ///< the caller closes it

 private:
  int number_ = -1;
};

/// Ends a save with the system's reason for the call that has just failed.
[[noreturn]] inline void fail_save(const std::string& step = {}) {
  fail_save({errno, std::generic_category()}, step);
}

inline struct stat status_of(const Descriptor& file) {
  struct stat status = {};
  if (fstat(file.get(), &status) != 0) fail_save();
  return status;
}

/// Whether `path` itself, no link, names the open file.
inline bool is_named(const Descriptor& file, const char* path) {
  struct stat named = {};
  const struct stat status = status_of(file);
  return lstat(path, &named) == 0 && named.st_dev == status.st_dev && named.st_ino == status.st_ino;
}

/// Takes the file's lock, which the system releases with the last descriptor of this opening, also
/// when the process is killed.
///
/// @return false when another opening holds it, or the file system has no locks (`errno` says)
inline bool try_lock(const Descriptor& file) { return flock(file.get(), LOCK_EX | LOCK_NB) == 0; }

}  // namespace zelk::files

#endif

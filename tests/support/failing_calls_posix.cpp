#include "support/failing_calls_posix.hpp"

#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdarg>
#include <cstdint>

namespace {

bool armed = false;
std::size_t calls_before = 0;
int number = 0;

}  // namespace

FailingCall::FailingCall(std::size_t n, int error) {
  calls_before = n, number = error, armed = true;
}
FailingCall::~FailingCall() { armed = false; }
bool FailingCall::is_armed() { return armed; }
bool FailingCall::has_failed() { return calls_before == SIZE_MAX; }

bool FailingCall::is_now() {
  if (!armed || has_failed() || calls_before-- != 0) return false;
  errno = number;
  return true;
}

// One for each call: NAME and its parameters, the arguments without their types.
#define ZELK_WRAP(result, name, parameters, arguments) \
  result __real_##name parameters;                     \
  result __wrap_##name parameters { return FailingCall::is_now() ? -1 : __real_##name arguments; }

extern "C" {
ZELK_WRAP(int, fstat, (int file, struct stat* status), (file, status))
ZELK_WRAP(int, lstat, (const char* path, struct stat* status), (path, status))
ZELK_WRAP(int, flock, (int file, int operation), (file, operation))
ZELK_WRAP(int, fchown, (int file, uid_t owner, gid_t group), (file, owner, group))
ZELK_WRAP(int, fchmod, (int file, mode_t mode), (file, mode))
ZELK_WRAP(int, futimens, (int file, const struct timespec* times), (file, times))
ZELK_WRAP(int, fallocate, (int file, int mode, off_t at, off_t size), (file, mode, at, size))
ZELK_WRAP(ssize_t, pread, (int file, void* bytes, std::size_t size, off_t at),
          (file, bytes, size, at))
ZELK_WRAP(ssize_t, flistxattr, (int file, char* names, std::size_t size), (file, names, size))
ZELK_WRAP(ssize_t, fgetxattr, (int file, const char* name, void* value, std::size_t size),
          (file, name, value, size))
ZELK_WRAP(int, fsetxattr,
          (int file, const char* name, const void* value, std::size_t size, int flags),
          (file, name, value, size, flags))
ZELK_WRAP(int, fremovexattr, (int file, const char* name), (file, name))

int __real_open(const char* path, int flags, ...);

int __wrap_open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = va_arg(rest, mode_t);  // read in vain where there is none
  va_end(rest);
  return FailingCall::is_now() ? -1 : __real_open(path, flags, mode);
}
}  // extern "C"

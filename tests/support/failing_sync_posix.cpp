#include "support/failing_sync_posix.hpp"

#include <sys/stat.h>

#include <cerrno>

#include "support/disk_watch_posix.hpp"
#include "support/failing_calls_posix.hpp"

extern "C" {
int __real_fsync(int file);
int __real_rename(const char* from, const char* to);
}

namespace {

bool armed = false;
std::size_t calls_before = 0;
int number = 0;
std::string done;

int watched_fsync(int file) {
  DiskWatch* const watch = DiskWatch::now();
  if (watch) watch->before_change();
  const int result = __real_fsync(file);
  if (watch && result == 0) watch->after_sync(file);
  return result;
}

}  // namespace

FailingSync::FailingSync(std::size_t n, int error) {
  armed = true, calls_before = n, number = error;
  done.clear();
}
FailingSync::~FailingSync() { armed = false; }
const std::string& FailingSync::order() { return done; }

extern "C" {
int __wrap_fsync(int file) {
  if (FailingCall::is_now()) return -1;
  if (FailingCall::is_armed()) return 0;
  if (!armed) return watched_fsync(file);
  struct stat status = {};
  done += fstat(file, &status) == 0 && S_ISDIR(status.st_mode) ? "folder " : "file ";
  if (calls_before-- != 0) return __real_fsync(file);
  errno = number;
  return -1;
}

int __wrap_rename(const char* from, const char* to) {
  if (armed) done += "rename ";
  if (DiskWatch::now()) DiskWatch::now()->before_change();
  return FailingCall::is_now() ? -1 : __real_rename(from, to);
}
}  // extern "C"

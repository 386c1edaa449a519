#include "support/disk_watch_posix.hpp"

#include <sys/types.h>

#include <cstddef>

#include "support/failing_calls_posix.hpp"

namespace {

DiskWatch* watch = nullptr;

void announce_change() {
  if (watch) watch->before_change();
}

}  // namespace

DiskWatch::DiskWatch() { watch = this; }
DiskWatch::~DiskWatch() { watch = nullptr; }
DiskWatch* DiskWatch::now() { return watch; }

extern "C" {
int __real_link(const char* from, const char* to);
int __real_unlink(const char* path);
int __real_ftruncate(int file, off_t size);
ssize_t __real_pwrite(int file, const void* bytes, std::size_t size, off_t at);

int __wrap_link(const char* from, const char* to) {
  announce_change();
  return FailingCall::is_now() ? -1 : __real_link(from, to);
}

int __wrap_unlink(const char* path) {
  announce_change();
  return FailingCall::is_now() ? -1 : __real_unlink(path);
}

int __wrap_ftruncate(int file, off_t size) {
  announce_change();
  return FailingCall::is_now() ? -1 : __real_ftruncate(file, size);
}

ssize_t __wrap_pwrite(int file, const void* bytes, std::size_t size, off_t at) {
  announce_change();
  return FailingCall::is_now() ? -1 : __real_pwrite(file, bytes, size, at);
}
}  // extern "C"

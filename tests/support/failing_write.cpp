#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "support/failing.hpp"

namespace {

bool armed = false;
bool failed = false;
std::size_t bytes_left = 0;

}  // namespace

FailingWrite::FailingWrite(std::size_t size_bytes) {
  armed = true;
  failed = false;
  bytes_left = size_bytes;
}
FailingWrite::~FailingWrite() { armed = false; }
bool FailingWrite::has_failed() const { return failed; }

// As in failing.cpp.
extern "C" {
std::size_t __real_fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file);

std::size_t __wrap_fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
  if (!armed || size == 0) return __real_fwrite(data, size, count, file);
  const std::size_t taken = std::min(count, bytes_left / size);
  bytes_left -= taken * size;
  if (taken < count) failed = true, errno = ENOSPC;
  return taken == 0 ? 0 : __real_fwrite(data, size, taken, file);
}
}  // extern "C"

#include "support/failing_write.hpp"

#include <algorithm>
#include <cstdio>

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

// The linker's --wrap=fwrite leads calls of fwrite to the second, which reaches the stream by the
// first.
extern "C" std::size_t __real_fwrite(const void* data, std::size_t size, std::size_t count,
                                     std::FILE* file);

extern "C" std::size_t __wrap_fwrite(const void* data, std::size_t size, std::size_t count,
                                     std::FILE* file) {
  if (!armed || size == 0) return __real_fwrite(data, size, count, file);
  const std::size_t taken = std::min(count, bytes_left / size);
  bytes_left -= taken * size;
  failed |= taken < count;
  return taken == 0 ? 0 : __real_fwrite(data, size, taken, file);
}

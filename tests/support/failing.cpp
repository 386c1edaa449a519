#include "support/failing.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

bool armed = false;
bool failed = false;
std::size_t bytes_left = 0;

void* take(std::size_t size) {
  void* const block = FailingNew::count() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (!block) throw std::bad_alloc();
  return block;
}

}  // namespace

FailingWrite::FailingWrite(std::size_t size_bytes) {
  armed = true;
  failed = false;
  bytes_left = size_bytes;
}
FailingWrite::~FailingWrite() { armed = false; }
bool FailingWrite::has_failed() const { return failed; }

// The linker's --wrap leads calls of calloc and fwrite to the functions named __wrap, which reach
// the heap and the stream by those named __real.
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
std::size_t __real_fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file);

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return FailingCalloc::count() ? nullptr : __real_calloc(count, size);
}

std::size_t __wrap_fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
  if (!armed || size == 0) return __real_fwrite(data, size, count, file);
  const std::size_t taken = std::min(count, bytes_left / size);
  bytes_left -= taken * size;
  if (taken < count) failed = true, errno = ENOSPC;
  return taken == 0 ? 0 : __real_fwrite(data, size, taken, file);
}
}  // extern "C"

void* operator new(std::size_t size) { return take(size); }
void* operator new[](std::size_t size) { return take(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept try {
  return take(size);
} catch (const std::bad_alloc&) {
  return nullptr;
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

#include "exhausted/heap.hpp"

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <new>

// What would have been called without the functions here. The address sanitizer is asked for its
// own by name: it allocates before a search could work.
#ifdef ZELK_UNDER_ADDRESS_SANITIZER
extern "C" {
void* __interceptor_malloc(std::size_t size);
void* __interceptor_calloc(std::size_t count, std::size_t size);
void* __interceptor_realloc(void* block, std::size_t size);
int __interceptor_posix_memalign(void** block, std::size_t alignment, std::size_t size);
void* __interceptor_aligned_alloc(std::size_t alignment, std::size_t size);
void __interceptor_free(void* block);
}
#define NEXT(function) __interceptor_##function
#else
#define NEXT(function) (*reinterpret_cast<decltype(&(function))>(dlsym(RTLD_NEXT, #function)))
#endif

namespace {

constexpr long kDisarmed = std::numeric_limits<long>::max();

std::atomic<long> calls_left = kDisarmed;  // below 0: it was tried
std::atomic<bool> is_once = false;

void* counted(void* block) {
  if (block) ++ExhaustedHeap::blocks_;
  return block;
}

}  // namespace

ExhaustedHeap::ExhaustedHeap(std::size_t n, Extent extent) {
  is_once = extent == Extent::kOnce;
  calls_left = static_cast<long>(n);
}

ExhaustedHeap::~ExhaustedHeap() { calls_left = kDisarmed; }

bool ExhaustedHeap::has_failed() const { return calls_left < 0; }

bool ExhaustedHeap::fails() {
  if (calls_left == kDisarmed) return false;
  const long left = calls_left--;
  const bool is_the_one = is_once ? left == 0 : left <= 0;
  if (is_the_one) errno = ENOMEM;
  return is_the_one;
}

extern "C" {

void* malloc(std::size_t size) {
  static auto& real = NEXT(malloc);
  return ExhaustedHeap::fails() ? nullptr : counted(real(size));
}

void* calloc(std::size_t count, std::size_t size) {
  static auto& real = NEXT(calloc);
  return ExhaustedHeap::fails() ? nullptr : counted(real(count, size));
}

void* realloc(void* block, std::size_t size) {
  static auto& real = NEXT(realloc);
  if (ExhaustedHeap::fails()) return nullptr;
  return block ? real(block, size) : counted(real(block, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  static auto& real = NEXT(posix_memalign);
  if (ExhaustedHeap::fails()) return ENOMEM;
  const int error = real(block, alignment, size);
  if (error == 0) counted(*block);
  return error;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  static auto& real = NEXT(aligned_alloc);
  return ExhaustedHeap::fails() ? nullptr : counted(real(alignment, size));
}

void free(void* block) {
  static auto& real = NEXT(free);
  if (block) --ExhaustedHeap::blocks_;
  real(block);
}

// What is written here need not outlast a loss of power, and thousands of saves have to be quick.
int fsync(int) { return 0; }

}  // extern "C"

// The sanitizers have operators of their own, which do not call malloc.

void* operator new(std::size_t size) {
  void* const block = malloc(size == 0 ? 1 : size);
  if (!block) throw std::bad_alloc();
  return block;
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return malloc(size == 0 ? 1 : size);
}
void operator delete(void* block) noexcept { free(block); }
void operator delete[](void* block) noexcept { free(block); }
void operator delete(void* block, std::size_t) noexcept { free(block); }
void operator delete[](void* block, std::size_t) noexcept { free(block); }

#include "exhausted/heap.hpp"

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr long kDisarmed = std::numeric_limits<long>::max();

std::atomic<long> calls_left = kDisarmed;  // below 0: it was tried
std::atomic<bool> is_once = false;

/// The function that would have been called without the one here.
template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

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
  static auto* const real = next<void*(std::size_t)>("malloc");
  return ExhaustedHeap::fails() ? nullptr : counted(real(size));
}

void* calloc(std::size_t count, std::size_t size) {
  static auto* const real = next<void*(std::size_t, std::size_t)>("calloc");
  return ExhaustedHeap::fails() ? nullptr : counted(real(count, size));
}

void* realloc(void* block, std::size_t size) {
  static auto* const real = next<void*(void*, std::size_t)>("realloc");
  if (ExhaustedHeap::fails()) return nullptr;
  return block ? real(block, size) : counted(real(block, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  static auto* const real = next<int(void**, std::size_t, std::size_t)>("posix_memalign");
  if (ExhaustedHeap::fails()) return ENOMEM;
  const int error = real(block, alignment, size);
  if (error == 0) counted(*block);
  return error;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  static auto* const real = next<void*(std::size_t, std::size_t)>("aligned_alloc");
  return ExhaustedHeap::fails() ? nullptr : counted(real(alignment, size));
}

void free(void* block) {
  static auto* const real = next<void(void*)>("free");
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

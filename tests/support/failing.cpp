#include "support/failing.hpp"

#include <cstdlib>
#include <new>

namespace {

void* take(std::size_t size) {
  void* const block = FailingNew::count() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (!block) throw std::bad_alloc();
  return block;
}

}  // namespace

// The linker's --wrap leads calls of calloc to the function named __wrap, which reaches the heap by
// the one named __real.
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return FailingCalloc::count() ? nullptr : __real_calloc(count, size);
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

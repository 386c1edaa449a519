#include "support/failing_new.hpp"

#include <cstdlib>
#include <new>

namespace {

bool armed = false;
std::size_t calls_before = 0;

void* take(std::size_t size) {
  const bool fails = armed && calls_before-- == 0;
  if (fails) armed = false;
  void* const block = fails ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (!block) throw std::bad_alloc();
  return block;
}

}  // namespace

FailingNew::FailingNew(std::size_t n) { armed = true, calls_before = n; }
FailingNew::~FailingNew() { armed = false; }
bool FailingNew::has_failed() const { return !armed; }

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

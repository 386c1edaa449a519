#include <sys/mman.h>

#include <cstdlib>
#include <new>

#include "large_memory.hpp"

namespace zelk::python {

std::shared_ptr<unsigned char> large_memory(std::size_t size) {
  constexpr std::size_t kAlignment = 64;
  void* memory = nullptr;
  const bool is_large = size >= kLargePage;
  if (posix_memalign(&memory, is_large ? kLargePage : kAlignment, size) != 0)
    throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
  if (is_large) madvise(memory, size, MADV_HUGEPAGE);  // a wish, which may not be granted
#endif
  return {static_cast<unsigned char*>(memory), std::free};
}

}  // namespace zelk::python

#include <new>

#include "large_memory.hpp"

namespace zelk::python {

std::shared_ptr<unsigned char> large_memory(std::size_t size) {
  constexpr std::align_val_t kAlignment{64};
  return {static_cast<unsigned char*>(operator new(size, kAlignment)),
          [](unsigned char* memory) { operator delete(memory, kAlignment); }};
}

}  // namespace zelk::python

#include "model/memory.hpp"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "model/errors.hpp"

namespace zelk {

void* allocate(std::size_t size) {
  void* block = zelk_malloc(size);
  if (!block) zelk_report(ZELK_ERR_MEMORY, kNoLine, nullptr, 1);
  return block;
}

OwnedText copy_text(std::string_view text) {
  OwnedText copy(static_cast<char*>(allocate(text.size() + 1)));
  std::copy(text.begin(), text.end(), copy.get());
  return copy;
}

void assign_text(char*& field, OwnedText text) { zelk_mfree(std::exchange(field, text.release())); }

}  // namespace zelk

extern "C" {

void* zelk_malloc(size_t size) { return std::calloc(1, std::max<size_t>(size, 1)); }

void zelk_mfree(void* block) { std::free(block); }

}  // extern "C"

#include "common/records.hpp"

#include <cassert>
#include <new>

namespace zelk::modules {

void* allocated(std::size_t size) {
  void* const block = zelk_malloc(size);
  if (!block) throw std::bad_alloc();
  return block;
}

void assign_text(char*& field, std::string_view text) {
  assert(text.find('\0') == std::string_view::npos);
  auto* const copy = static_cast<char*>(allocated(text.size() + 1));
  text.copy(copy, text.size());  // the block's last byte is zero already
  zelk_mfree(field);
  field = copy;
}

void check_inline(std::string_view text, std::string_view what) {
  assert(text.find('\0') == std::string_view::npos);
  if (text.size() <= ZELK_INLINE_NAME_MAX) return;
  throw Fault(std::string(what) + ": \"" + std::string(text) + "\" has more than " +
              std::to_string(ZELK_INLINE_NAME_MAX) + " characters");
}

}  // namespace zelk::modules

#include "common/records.hpp"

#include <new>

namespace zelk::modules {
namespace {

constexpr const char* kNul = "a text with a NUL character, which no database can hold";

}  // namespace

void* allocated(std::size_t size) {
  void* const block = zelk_malloc(size);
  if (!block) throw std::bad_alloc();
  return block;
}

void assign_text(char*& field, std::string_view text) {
  if (text.find('\0') != std::string_view::npos) throw Fault(kNul);
  auto* const copy = static_cast<char*>(allocated(text.size() + 1));
  text.copy(copy, text.size());  // the block's last byte is zero already
  zelk_mfree(field);
  field = copy;
}

void check_inline(std::string_view text, std::string_view what) {
  const std::string place = std::string(what) + ": ";
  if (text.size() > ZELK_INLINE_NAME_MAX) {
    throw Fault(place + "\"" + std::string(text) + "\" has more than " +
                std::to_string(ZELK_INLINE_NAME_MAX) + " characters");
  }
  if (text.find('\0') != std::string_view::npos) throw Fault(place + kNul);
}

}  // namespace zelk::modules

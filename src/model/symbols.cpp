#include "model/symbols.hpp"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "model/thread_state.hpp"
#include "zelk/model.h"

namespace zelk {
namespace {

std::atomic<std::size_t>& symbol_length() {
  static constinit std::atomic<std::size_t> length = 128;
  return length;
}

}  // namespace

void copy_symbol(char* destination, std::size_t room, std::string_view source) {
  const std::size_t kept =
      std::min({source.size(), room, symbol_length().load(std::memory_order_relaxed)});
  std::copy_n(source.data(), kept, destination);
  destination[kept] = '\0';
  if (kept < source.size()) thread_state().symbols_shortened = true;
}

void append_symbol(char* destination, std::size_t room, std::string_view source) {
  const std::size_t used = std::strlen(destination);
  copy_symbol(destination + used, room - std::min(used, room), source);
}

}  // namespace zelk

extern "C" {

/// Any argument sets the limit of 32 characters, and nothing sets another one again.
void zelk_set_symbol_length(uint32_t) { zelk::symbol_length() = ZELK_INLINE_NAME_MAX; }

int zelk_symbols_shortened(void) { return zelk::thread_state().symbols_shortened ? 1 : 0; }

void zelk_reset_symbols_shortened(void) { zelk::thread_state().symbols_shortened = false; }

}  // extern "C"

#include "model/symbols.hpp"

#include <algorithm>
#include <cstring>

#include "zelk/model.h"

namespace zelk {
namespace {

struct SymbolState {
  std::size_t length = 128;
  bool shortened = false;
};

SymbolState& symbol_state() {
  static SymbolState state;
  return state;
}

}  // namespace

void copy_symbol(char* destination, std::size_t room, std::string_view source) {
  const std::size_t kept = std::min({source.size(), room, symbol_state().length});
  std::copy_n(source.data(), kept, destination);
  destination[kept] = '\0';
  if (kept < source.size()) symbol_state().shortened = true;
}

void append_symbol(char* destination, std::size_t room, std::string_view source) {
  const std::size_t used = std::strlen(destination);
  copy_symbol(destination + used, room - std::min(used, room), source);
}

}  // namespace zelk

extern "C" {

/// Every path leads to the 32-character limit, so the latch needs no state of its own.
void zelk_set_symbol_length(uint32_t) { zelk::symbol_state().length = ZELK_INLINE_NAME_MAX; }

int zelk_symbols_shortened(void) { return zelk::symbol_state().shortened ? 1 : 0; }

void zelk_reset_symbols_shortened(void) { zelk::symbol_state().shortened = false; }

}  // extern "C"

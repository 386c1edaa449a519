/// \file
/// The length of symbols: the bounded copies by which names enter inline arrays.

#ifndef ZELK_MODEL_SYMBOLS_HPP
#define ZELK_MODEL_SYMBOLS_HPP

#include <cstddef>
#include <string_view>

#include "zelk/records.h"

namespace zelk {

/// Copies at most `room` characters of `source`, and no more than the process's symbol length, into
/// `destination` and terminates it (so `destination` has `room` + 1 bytes). Leaving characters out
/// marks symbols as shortened.
void copy_symbol(char* destination, std::size_t room, std::string_view source);

/// The same behind the text that `destination` holds; `room` counts that text too.
void append_symbol(char* destination, std::size_t room, std::string_view source);

/// `copy_symbol` into an inline name or unit.
template <std::size_t kSize>
void copy_inline(char (&destination)[kSize], std::string_view source) {
  static_assert(kSize > ZELK_INLINE_NAME_MAX);
  copy_symbol(destination, ZELK_INLINE_NAME_MAX, source);
}

/// Whether an inline name or unit can hold the whole text.
inline bool fits_inline(std::string_view text) { return text.size() <= ZELK_INLINE_NAME_MAX; }

/// The part of a name by which inline names are compared.
inline std::string_view inline_key(std::string_view name) {
  return name.substr(0, ZELK_INLINE_NAME_MAX);
}

}  // namespace zelk

#endif

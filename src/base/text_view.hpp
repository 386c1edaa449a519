/// \file
/// Texts of records as views, and their comparison.

#ifndef ZELK_BASE_TEXT_VIEW_HPP
#define ZELK_BASE_TEXT_VIEW_HPP

#include <cassert>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace zelk {

/// A text of a record; null reads as empty.
inline std::string_view view(const char* text) { return text ? text : std::string_view(); }

/// An inline name or unit; its array need not be terminated.
template <std::size_t kSize>
std::string_view view(const char (&field)[kSize]) {
  const std::string_view whole(field, kSize);
  return whole.substr(0, whole.find('\0'));
}

/// Whether two whole texts are equal.
///
/// @param text  text of a record; null (a record without a name) equals nothing
/// @param key   must not be null
inline bool same_text(const char* text, const char* key) {
  assert(key != nullptr);
  return text != nullptr && std::strcmp(text, key) == 0;
}

}  // namespace zelk

#endif

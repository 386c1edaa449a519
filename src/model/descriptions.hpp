/// \file
/// Searches in the value descriptions of signals, environment variables and value tables.

#ifndef ZELK_MODEL_DESCRIPTIONS_HPP
#define ZELK_MODEL_DESCRIPTIONS_HPP

#include <cstdint>

#include "base/list.hpp"
#include "zelk/records.h"

namespace zelk {

/// First description of a value, of which all 32 bits count; null when there is none.
inline const val* description_of(const val* descriptions, std::uint32_t value) {
  return find_first(descriptions, [value](const val& description) {
    return static_cast<std::uint32_t>(description.value) == value;
  });
}

/// First description with a text; null when there is none, and for a null text.
inline const val* description_with(const val* descriptions, const char* text) {
  if (text == nullptr) return nullptr;
  return find_first(descriptions, [text](const val& other) { return same_text(other.text, text); });
}

}  // namespace zelk

#endif

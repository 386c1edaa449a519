/// \file
/// Names that records hold inline, which are compared on as many characters as fit.

#ifndef ZELK_MODEL_INLINE_NAME_HPP
#define ZELK_MODEL_INLINE_NAME_HPP

#include <cassert>
#include <cstring>

#include "base/list.hpp"
#include "zelk/records.h"

namespace zelk {

/// Whether `key` agrees with a name that a record holds inline: what such a name cannot hold does
/// not count.
inline bool same_inline_name(const char* name, const char* key) {
  assert(key != nullptr);
  return std::strncmp(name, key, ZELK_INLINE_NAME_MAX) == 0;
}

/// First record whose inline name agrees with `name`; null gives null.
template <typename Record>
Record* find_inline_name(Record* head, const char* name) {
  if (name == nullptr) return nullptr;
  return find_first(head,
                    [name](const Record& record) { return same_inline_name(record.name, name); });
}

}  // namespace zelk

#endif

/// \file
/// Names of records. Those that a record holds inline are compared on as many characters as fit.

#ifndef ZELK_MODEL_INLINE_NAME_HPP
#define ZELK_MODEL_INLINE_NAME_HPP

#include <cassert>
#include <cstring>
#include <type_traits>

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

template <typename Record>
inline constexpr bool kHasInlineName = std::is_array_v<decltype(Record::name)>;

/// Whether the record, whichever way it holds its name, has this one.
///
/// @param name  not null
template <typename Record>
bool is_named(const Record& record, const char* name) {
  if constexpr (kHasInlineName<Record>) return same_inline_name(record.name, name);
  return same_text(record.name, name);
}

/// First record of this name; null gives null.
template <typename Record>
Record* find_named(Record* head, const char* name) {
  if (name == nullptr) return nullptr;
  return find_first(head, [name](const Record& record) { return is_named(record, name); });
}

/// First value of the attribute `name`; null when there is none, and for a null `name`. Values
/// without a definition are passed over.
///
/// @tparam Attr  `attr` or `const attr`
template <typename Attr>
Attr* find_attribute_value(Attr* values, const char* name) {
  if (name == nullptr) return nullptr;
  return find_first(values, [name](const attr& value) {
    return value.def != nullptr && same_inline_name(value.def->name, name);
  });
}

}  // namespace zelk

#endif

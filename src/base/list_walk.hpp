/// \file
/// Walks over the singly linked lists of records: the one place where "first match in list order"
/// is spelled.

#ifndef ZELK_BASE_LIST_WALK_HPP
#define ZELK_BASE_LIST_WALK_HPP

#include <cassert>
#include <cstdint>
#include <cstring>

#include "zelk/records.h"

namespace zelk {

/// Whether two whole texts are equal.
///
/// @param text  text of a record; null (a record without a name) equals nothing
/// @param key   must not be null
inline bool same_text(const char* text, const char* key) {
  assert(key != nullptr);
  return text != nullptr && std::strcmp(text, key) == 0;
}

/// Whether `key` agrees with a name that a record holds inline: what such a name cannot hold does
/// not count.
inline bool same_inline_name(const char* name, const char* key) {
  assert(key != nullptr);
  return std::strncmp(name, key, ZELK_INLINE_NAME_MAX) == 0;
}

/// First record from `head` on that `matches`; null when there is none.
template <typename Record, typename Predicate>
Record* find_first(Record* head, Predicate matches) {
  Record* record = head;
  while (record != nullptr && !matches(*record)) record = record->next;
  return record;
}

/// The `n`-th record counting from 1; everything below 1 gives the first, past the end gives null.
template <typename Record>
Record* find_nth(Record* head, std::int32_t n) {
  Record* record = head;
  for (; record != nullptr && n > 1; --n) record = record->next;
  return record;
}

/// First record whose own, allocated name is `name`; null, which is no name, gives null.
template <typename Record>
Record* find_name(Record* head, const char* name) {
  if (name == nullptr) return nullptr;
  return find_first(head, [name](const Record& record) { return same_text(record.name, name); });
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

/// \file
/// Links records into singly linked lists, and takes them out.

#ifndef ZELK_MODEL_LIST_EDIT_HPP
#define ZELK_MODEL_LIST_EDIT_HPP

#include <atomic>
#include <cstdint>

#include "base/list.hpp"

namespace zelk {

/// Counts removals from lists of this kind of record, and insertions elsewhere than at the end,
/// that a host asks for. Code that remembers a place in such a list compares the count before using
/// it.
template <typename Record>
inline std::atomic<std::uint64_t> list_changes = 0;

template <typename Record>
void count_list_change() {
  list_changes<Record>.fetch_add(1, std::memory_order_relaxed);
}

template <typename... Records>
void count_list_changes() {
  (count_list_change<Records>(), ...);
}

/// Links `record` in front of the one at position `index` (0: the first), or behind the last one
/// when there are fewer.
template <typename Record>
void link_at(Record*& head, std::uint32_t index, Record* record) {
  Record** link = &head;
  for (; index > 0 && *link; --index) link = &(*link)->next;
  link_in_front(*link, record);
}

/// Takes `record` out of the list; a record that is not in it leaves the list as it is.
///
/// @return whether it was in the list
template <typename Record>
bool unlink(Record*& head, const Record* record) {
  Record** link = &head;
  while (*link && *link != record) link = &(*link)->next;
  if (!*link) return false;
  *link = record->next;
  count_list_change<Record>();
  return true;
}

/// Takes every record that `matches` out of the list, and hands it to `release`.
///
/// @return how many there were
template <typename Record, typename Matches, typename Release>
std::uint32_t remove_if(Record*& head, Matches matches, Release release) {
  std::uint32_t removed = 0;
  for (Record** link = &head; *link;) {
    Record* const record = *link;
    if (!matches(*record)) {
      link = &record->next;
      continue;
    }
    *link = record->next;
    release(record);
    ++removed;
  }
  if (removed > 0) count_list_change<Record>();
  return removed;
}

}  // namespace zelk

#endif

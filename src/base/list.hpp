/// \file
/// Singly linked lists of records: walks, searches and appending. A list is the pointer to its
/// first record, null when it is empty; every record has a member `next`. Searches give the first
/// match in list order.

#ifndef ZELK_BASE_LIST_HPP
#define ZELK_BASE_LIST_HPP

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "base/text_view.hpp"

namespace zelk {

/// A list as a range; see `each`.
template <typename Record>
class ListRange {
 public:
  class iterator {
   public:
    using value_type = Record;
    using difference_type = std::ptrdiff_t;
    iterator() = default;
    explicit iterator(Record* at) : at_(at) {}
    Record& operator*() const { return *at_; }
    Record* operator->() const { return at_; }
    iterator& operator++() {
      at_ = at_->next;
      return *this;
    }
    iterator operator++(int) {
      iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const iterator&) const = default;

   private:
    Record* at_ = nullptr;
  };

  explicit ListRange(Record* head) : head_(head) {}
  iterator begin() const { return iterator(head_); }
  iterator end() const { return iterator(); }
  bool empty() const { return !head_; }
  /// Walks the list.
  std::size_t size() const { return static_cast<std::size_t>(std::distance(begin(), end())); }

 private:
  Record* head_;
};

/// The records from `head` on: `for (const sigblk& signal : each(message.signals))`. The record at
/// hand may be changed, but neither released nor taken out of the list.
template <typename Record>
ListRange<Record> each(Record* head) {
  return ListRange<Record>(head);
}

/// Number of records of a list, as the 16-bit counts of records hold it: 65535 stands for more.
template <typename Record>
std::uint16_t count_16(const Record* head) {
  std::uint16_t count = 0;
  for (; head != nullptr && count < UINT16_MAX; head = head->next) ++count;
  return count;
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

/// Whether the list has this very record.
template <typename Record>
bool contains(const Record* head, const Record& record) {
  return find_first(head, [&record](const Record& other) { return &other == &record; });
}

/// The link behind the last record; of an empty list `head` itself.
template <typename Record>
Record*& end_of(Record*& head) {
  Record** link = &head;
  while (*link) link = &(*link)->next;
  return *link;
}

/// Links a record in front of the list.
template <typename Record>
void link_in_front(Record*& head, Record* record) {
  record->next = head;
  head = record;
}

/// Appends to one list without walking it each time. Nobody else may append meanwhile, or take out
/// the last record.
template <typename Record>
class ListTail {
 public:
  explicit ListTail(Record*& head) : end_(&end_of(head)) {}

  /// @param records  a list, which may be empty
  void append(Record* records) {
    *end_ = records;
    end_ = &end_of(*end_);
  }

 private:
  Record** end_;
};

}  // namespace zelk

#endif

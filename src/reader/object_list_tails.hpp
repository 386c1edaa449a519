/// \file
/// Appending to the lists inside records without walking them each time.

#ifndef ZELK_READER_OBJECT_LIST_TAILS_HPP
#define ZELK_READER_OBJECT_LIST_TAILS_HPP

#include <unordered_map>

#include "base/list.hpp"
#include "model/release.hpp"

namespace zelk {

/// The ends of the many lists inside records. Short lists are walked; of a list that has become
/// long, the last end found is remembered.
class ObjectListTails {
 public:
  /// Appends `records` (a list) to the list at `head`.
  template <typename Record>
  void append(Record*& head, Owned<Record> records) {
    Record** tail = &head;
    for (int steps = 0; *tail; tail = &(*tail)->next) {
      if (++steps < kShortList) continue;
      tail = remembered_end(head, tail);
      break;
    }
    *tail = records.release();
  }

 private:
  static constexpr int kShortList = 16;

  /// The end of the list at `head`, looked for from `from` or from the place remembered.
  template <typename Record>
  Record** remembered_end(Record*& head, Record** from) {
    void*& place = places_.try_emplace(&head, from).first->second;
    Record** const tail = &end_of(*static_cast<Record**>(place));
    place = tail;
    return tail;
  }

  std::unordered_map<const void*, void*> places_;
};

}  // namespace zelk

#endif

/// \file
/// Remembers where the lists of a database end, so that appending needs no walk.

#ifndef ZELK_DATABASE_LIST_ENDS_HPP
#define ZELK_DATABASE_LIST_ENDS_HPP

#include <cstdint>
#include <tuple>

#include "model/list_edit.hpp"
#include "zelk/records.h"

namespace zelk {

/// The last record of a list, valid as long as `list_changes` counts no other change. Records that
/// were appended without it stand behind that one, and are walked over.
template <typename Record>
class ListEnd {
 public:
  /// Links `record` in front of the one at position `index` (0: the first), or behind the last one
  /// when there are fewer.
  void link_at(Record*& head, std::uint32_t index, Record* record) {
    const bool is_known = last_ && head == first_ && changes_ == count();
    if (!is_known) last_ = nullptr;
    const bool is_behind = is_known && index > position_;
    Record** link = is_behind ? &last_->next : &head;
    std::uint32_t position = is_behind ? position_ + 1 : 0;
    for (; position < index && *link; ++position) link = &(*link)->next;
    link_in_front(*link, record);
    first_ = head;
    if (record->next) {
      if (is_known && !is_behind) ++position_;
      return;
    }
    last_ = record;
    position_ = position;
    changes_ = count();
  }

 private:
  static std::uint64_t count() { return list_changes<Record>.load(std::memory_order_relaxed); }

  Record* first_ = nullptr;  ///< another one: the list has been exchanged
  Record* last_ = nullptr;
  std::uint32_t position_ = 0;  ///< of `last_`
  std::uint64_t changes_ = 0;   ///< counted when `last_` was the last one
};

struct ListEnds {
  template <typename Record>
  ListEnd<Record>& of() {
    return std::get<ListEnd<Record>>(ends);
  }

  std::tuple<ListEnd<symblk>, ListEnd<msgblk>, ListEnd<env_var_blk>, ListEnd<btlblk>, ListEnd<cat>,
             ListEnd<sigtype>, ListEnd<valtable>, ListEnd<attr_def>>
      ends;
};

}  // namespace zelk

#endif

/// \file
/// Release of records with everything that they own, and RAII for records that no list owns yet.

#ifndef ZELK_MODEL_RELEASE_HPP
#define ZELK_MODEL_RELEASE_HPP

#include <memory>
#include <utility>

#include "model/heads.hpp"
#include "model/list_edit.hpp"
#include "zelk/model.h"

namespace zelk {

/// Releases the records of a list, each after `release_members` has released what it owns.
template <typename Record, typename ReleaseMembers>
void release_each(Record* list, ReleaseMembers release_members) {
  while (list) {
    Record* record = std::exchange(list, list->next);
    release_members(*record);
    zelk_mfree(record);
  }
}

// Each releases a whole list and all that its records own. Attribute values ask their definitions
// for their type, so definitions go after everything that carries values.
void release_list(attr* list);
void release_list(val* list);
void release_list(rxblk* list);
void release_list(catlink* list);
void release_list(muxor_val_range* list);
void release_list(siglistblk* list);
void release_list(siggroup_extra* list);
void release_list(siggroupblk* list);
void release_list(sigblk* list);
void release_list(msgblk* list);
void release_list(symblk* list);
void release_list(env_var_blk* list);
void release_list(btlblk* list);
void release_list(cat* list);
void release_list(valtable* list);
void release_list(sigtype* list);
void release_list(attr_def* list);

/// Releases the whole of a database, and leaves its heads empty.
void release(const ModelHeads& model);

/// Releases one record, which is in no list any more, and all that it owns.
template <typename Record>
void release_one(Record* record) {
  record->next = nullptr;
  release_list(record);
}

struct ListDeleter {
  template <typename Record>
  void operator()(Record* list) const {
    release_list(list);
  }
};

/// A record, with the list behind it, that no list of the model owns yet.
template <typename Record>
using Owned = std::unique_ptr<Record, ListDeleter>;

/// A list under construction: appends in constant time, and releases its records unless they are
/// taken.
template <typename Record>
class PendingList {
 public:
  PendingList() = default;
  PendingList(const PendingList&) = delete;
  PendingList& operator=(const PendingList&) = delete;
  ~PendingList() { clear(); }

  bool empty() const { return !head_; }

  void push_back(Record* record) {
    *tail_ = record;
    tail_ = &record->next;
  }

  /// Puts the list in front of `list` and gives all of it away.
  Record* take_in_front_of(Record* list) {
    count_list_change<Record>();
    *tail_ = list;
    return take();
  }

  /// Gives the list away and is empty afterwards.
  Record* take() {
    tail_ = &head_;
    return std::exchange(head_, nullptr);
  }

  void clear() { release_list(take()); }

 private:
  Record* head_ = nullptr;
  Record** tail_ = &head_;
};

}  // namespace zelk

#endif

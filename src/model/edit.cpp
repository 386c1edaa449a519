// Insertion into and deletion from the lists, and the edits of a signal's multiplexing.

#include <cstdint>
#include <new>
#include <unordered_set>
#include <utility>

#include "base/signal_bits.hpp"
#include "model/list_edit.hpp"
#include "model/release.hpp"
#include "zelk/model.h"

namespace zelk {
namespace {

/// Links `record` behind the element at `position` (from 1), or behind the last one, and returns
/// that element.
template <typename Record>
Record* link_behind(Record* head, Record* record, std::uint32_t position) {
  Record* element = head;
  for (std::uint32_t step = 1; step < position && element->next; ++step) element = element->next;
  link_in_front(element->next, record);
  return element;
}

template <typename Record>
void* insert(Record** head, Record* record, std::uint32_t position) {
  if (!head || !record) return nullptr;
  count_list_change<Record>();
  if (position > 0 && *head) return link_behind(*head, record, position);
  link_in_front(*head, record);
  return static_cast<void*>(head);
}

template <typename Record>
void delete_bare(Record** head, Record* record) {
  if (!head || !record) return;
  unlink(*head, record);
  zelk_mfree(record);
}

template <typename Record>
void delete_with_comment(Record** head, Record* record) {
  if (head && record) zelk_mfree(record->comment);
  delete_bare(head, record);
}

bool selects_any(const msgblk& message, const sigblk* multiplexor) {
  return find_first(message.signals, [multiplexor](const sigblk& signal) {
    return signal.mux_signal == multiplexor;
  });
}

void remove_multiplexing(sigblk& signal) {
  sigblk* const multiplexor = std::exchange(signal.mux_signal, nullptr);
  release_list(std::exchange(signal.mux_ranges, nullptr));
  if (!multiplexor || (signal.message && selects_any(*signal.message, multiplexor))) return;
  set_flag(*multiplexor, ZELK_SIGNAL_MULTIPLEXOR, false);
}

/// What `zelk_remove_multiplexor` does for each signal from `first` on that has ranges, but in one
/// pass over the message instead of one for each: multiplexors that no other signal names lose
/// their flag.
void remove_multiplexing_from(sigblk* first) try {
  std::unordered_set<const sigblk*> named;
  bool is_behind_first = false;
  for (const sigblk& other : each(first && first->message ? first->message->signals : first)) {
    is_behind_first |= &other == first;
    const bool goes = is_behind_first && other.mux_ranges;
    if (!goes && other.mux_signal) named.insert(other.mux_signal);
  }
  for (sigblk& signal : each(first)) {
    if (!signal.mux_ranges) continue;
    release_list(std::exchange(signal.mux_ranges, nullptr));
    sigblk* multiplexor = std::exchange(signal.mux_signal, nullptr);
    const bool is_named = !multiplexor || named.contains(multiplexor);
    if (!is_named) set_flag(*multiplexor, ZELK_SIGNAL_MULTIPLEXOR, false);
  }
} catch (const std::bad_alloc&) {  // slower, but a deletion cannot fail
  for (sigblk& signal : each(first)) {
    if (signal.mux_ranges) remove_multiplexing(signal);
  }
}

}  // namespace
}  // namespace zelk

extern "C" {

void* can_insert_symbol(symblk** head, symblk* record, uint32_t position) {
  return zelk::insert(head, record, position);
}

void* can_insert_msg(msgblk** head, msgblk* record, uint32_t position) {
  return zelk::insert(head, record, position);
}

void* can_insert_evblk(env_var_blk** head, env_var_blk* record, uint32_t position) {
  return zelk::insert(head, record, position);
}

void* can_insert_sigtype(sigtype** head, sigtype* record, uint32_t position) {
  return zelk::insert(head, record, position);
}

void* can_insert_valtable(valtable** head, valtable* record, uint32_t position) {
  return zelk::insert(head, record, position);
}

void* can_insert_sig(msgblk* message, sigblk* signal, uint32_t position) {
  if (!message) return nullptr;
  void* const where = zelk::insert(&message->signals, signal, position);
  return where == &message->signals ? message : where;
}

void can_delete_symbol(symblk** head, symblk* node) { zelk::delete_with_comment(head, node); }

void can_delete_msg(msgblk** head, msgblk* message) {
  if (!head || !message) return;
  zelk::unlink(*head, message);
  message->next = nullptr;
  can_delete_siglist(message->signals);
  zelk_mfree(message->comment);
  zelk_mfree(message);
}

void can_delete_evblk(env_var_blk** head, env_var_blk* variable) {
  zelk::delete_with_comment(head, variable);
}

void can_delete_btl(btlblk** head, btlblk* bit_timing) { zelk::delete_bare(head, bit_timing); }

void can_delete_attr_def(attr_def** head, attr_def* definition) {
  if (!head || !definition) return;
  if (definition->value_type == ZELK_ATTR_ENUM) zelk_mfree(definition->enum_values);
  if (definition->value_type == ZELK_ATTR_STRING) zelk_mfree(definition->default_value.text);
  zelk::delete_bare(head, definition);
}

void can_delete_category(cat** head, cat* category) { zelk::delete_bare(head, category); }

void can_delete_sigtype(sigtype** head, sigtype* type) { zelk::delete_bare(head, type); }

void can_delete_valtable(valtable** head, valtable* table) { zelk::delete_bare(head, table); }

void can_delete_sig(msgblk* message, sigblk* signal) {
  if (!message || !signal) return;
  zelk::unlink(message->signals, signal);
  can_deallocate_sig(signal);
}

void can_delete_siggroup(msgblk* message, siggroupblk* group) {
  if (!message || !group) return;
  zelk::unlink(message->siggroups, group);
  can_deallocate_siggroup(group);
}

void can_delete_siglist(sigblk* first) {
  // Multiplexing is undone while all signals are alive: it looks at the siblings.
  zelk::remove_multiplexing_from(first);
  while (first) can_deallocate_sig(std::exchange(first, first->next));
}

void can_delete_multiplexor_value_range(sigblk* signal, muxor_val_range* range) {
  if (!signal || !range) return;
  zelk::delete_bare(&signal->mux_ranges, range);
  if (!signal->mux_ranges) zelk_remove_multiplexor(signal);
}

void can_deallocate_sig(sigblk* signal) {
  if (!signal) return;
  zelk::release_each(signal->receivers, [](rxblk&) {});
  zelk_mfree(signal->comment);
  if (signal->mux_ranges) zelk_remove_multiplexor(signal);
  zelk_mfree(signal);
}

void can_deallocate_siggroup(siggroupblk* group) {
  if (!group) return;
  zelk::release_list(group->signals);
  zelk_mfree(group->comment);
  zelk_mfree(group);
}

void zelk_remove_multiplexor(sigblk* signal) {
  if (signal) zelk::remove_multiplexing(*signal);
}

muxor_val_range* zelk_add_multiplexor_value_range(sigblk* signal, sigblk* multiplexor, uint32_t low,
                                                  uint32_t high) {
  if (!signal) return nullptr;
  if (multiplexor != signal->mux_signal) {
    zelk_remove_multiplexor(signal);
    signal->mux_signal = multiplexor;
    if (multiplexor) zelk::set_flag(*multiplexor, ZELK_SIGNAL_MULTIPLEXOR);
  }
  if (!signal->mux_signal) return nullptr;
  muxor_val_range* range = zelk_create_muxor_value_range();
  if (!range) return nullptr;
  range->low = low;
  range->high = high;
  zelk::link_in_front(signal->mux_ranges, range);
  return range;
}

}  // extern "C"

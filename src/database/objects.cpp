// Creation and deletion of a database's objects.

#include <algorithm>
#include <cstdint>
#include <new>

#include "base/list.hpp"
#include "database/list_ends.hpp"
#include "model/list_edit.hpp"
#include "model/symbols.hpp"
#include "model/without_raising.hpp"
#include "zelk/database.hpp"
#include "zelk/model.h"

template <typename Record>
Record* ZelkDatabase::CreateAt(Record*& list, unsigned index, Record* (*create)()) {
  return zelk::without_raising<Record*>(nullptr, [&] {
    Record* const record = create();
    if (!record) throw std::bad_alloc();  // silent after a read that has reported an error
    if (!ends_) ends_.reset(new (std::nothrow) zelk::ListEnds());
    if (ends_) {
      ends_->of<Record>().link_at(list, index, record);
    } else {
      zelk::link_at(list, index, record);
    }
    return HandOut(record);
  });
}

template <typename Record>
void ZelkDatabase::Delete(Record*& list, Record& record, void (*remove)(Record**, Record*)) {
  remove(&list, HandOut(&record));
}

symblk* ZelkDatabase::CreateNode(unsigned index) {
  return CreateAt(nodes, index, zelk_create_symbol);
}
void ZelkDatabase::DeleteNode(symblk& node) { Delete(nodes, node, can_delete_symbol); }

msgblk* ZelkDatabase::CreateMessage(unsigned index) {
  return CreateAt(messages, index, zelk_create_msgblk);
}
void ZelkDatabase::DeleteMessage(msgblk& message) { Delete(messages, message, can_delete_msg); }

env_var_blk* ZelkDatabase::CreateEnvvar(unsigned index) {
  return CreateAt(env_vars, index, zelk_create_evblk);
}
void ZelkDatabase::DeleteEnvvar(env_var_blk& variable) {
  Delete(env_vars, variable, can_delete_evblk);
}

btlblk* ZelkDatabase::CreateBitTiming(unsigned index) {
  return CreateAt(bit_timings, index, zelk_create_btlblk);
}
void ZelkDatabase::DeleteBitTiming(btlblk& bit_timing) {
  Delete(bit_timings, bit_timing, can_delete_btl);
}

valtable* ZelkDatabase::CreateValueTable(unsigned index) {
  return CreateAt(value_tables, index, zelk_create_valtable);
}
void ZelkDatabase::DeleteValueTable(valtable& table) {
  Delete(value_tables, table, can_delete_valtable);
}

sigtype* ZelkDatabase::CreateSignalType(unsigned index) {
  return CreateAt(signal_types, index, zelk_create_sigtype);
}
void ZelkDatabase::DeleteSignalType(sigtype& type) {
  Delete(signal_types, type, can_delete_sigtype);
}

cat* ZelkDatabase::CreateCategory(unsigned index) {
  return CreateAt(categories, index, zelk_create_category);
}
void ZelkDatabase::DeleteCategory(cat& category) {
  Delete(categories, category, can_delete_category);
}

attr_def* ZelkDatabase::CreateAttrDef(unsigned index) {
  return CreateAt(attr_defs, index, zelk_create_attr_def);
}
void ZelkDatabase::DeleteAttrDef(attr_def& definition) {
  CheckAndRemovePredefinedAttrs(definition);
  Delete(attr_defs, definition, can_delete_attr_def);
}

void ZelkDatabase::RenameAttrDef(attr_def& definition, const char* name) {
  if (!name) return;
  CheckAndRemovePredefinedAttrs(definition);
  zelk::copy_inline(HandOut(&definition)->name, name);
  CheckAndInsertPredefinedAttrs(definition);
}

unsigned long ZelkDatabase::GetMaxEnvvarHandle() const {
  std::uint32_t largest = 0;
  for (const env_var_blk& variable : zelk::each(env_vars)) largest = std::max(largest, variable.id);
  return largest;
}

// Lookups, creation and deletion of a database's objects.

#include <cstdint>

#include "capi/attribute_text.hpp"
#include "capi/list_walk.hpp"
#include "model/symbols.hpp"
#include "zelk/database.hpp"
#include "zelk/exception.hpp"
#include "zelk/model.h"
#include "zelk/query.h"

namespace {

/// Makes a record and links it in front of the one at position `index`, or behind the last one.
template <typename Record>
Record* create_at(Record*& list, unsigned index, Record* (*create)()) try {
  Record* const record = create();
  if (!record) return nullptr;
  Record** link = &list;
  for (; index > 0 && *link; --index) link = &(*link)->next;
  record->next = *link;
  *link = record;
  return record;
} catch (const ZelkException&) {
  return nullptr;
}

/// Looks a name up, or finds nothing for null.
template <typename Record>
Record* find(Record* list, const char* name, Record* (*lookup)(Record*, const char*)) {
  return name ? lookup(list, name) : nullptr;
}

bool is_number(const attr_def& definition) {
  return definition.value_type != ZELK_ATTR_STRING && definition.value_type != ZELK_ATTR_ENUM;
}

/// Whether the network attribute `name` has a value above 0, or else a default above 0. The default
/// of an ENUM is a text, and no number.
bool is_switched_on(const ZelkDatabase& database, const char* name) {
  const attr* value = zelk::find_attribute_value(database.attr_values, name);
  const bool has_number = value && value->def->value_type != ZELK_ATTR_STRING;
  if (has_number && value->value.number > 0) return true;
  const attr_def* definition = database.GetAttrDef(name);
  return definition && is_number(*definition) && definition->default_value.number > 0;
}

}  // namespace

symblk* ZelkDatabase::GetNode(const char* name) const {
  return find(nodes, name, zelk_get_symbol_name);
}
symblk* ZelkDatabase::CreateNode(unsigned index) {
  return create_at(nodes, index, zelk_create_symbol);
}
void ZelkDatabase::DeleteNode(symblk& node) { can_delete_symbol(&nodes, &node); }

msgblk* ZelkDatabase::GetMessage(const char* name) const {
  return find(messages, name, zelk_get_message_name);
}
msgblk* ZelkDatabase::GetMessage(unsigned long id) const {
  return zelk_get_message(messages, static_cast<std::uint32_t>(id));
}
msgblk* ZelkDatabase::CreateMessage(unsigned index) {
  return create_at(messages, index, zelk_create_msgblk);
}
void ZelkDatabase::DeleteMessage(msgblk& message) { can_delete_msg(&messages, &message); }

env_var_blk* ZelkDatabase::GetEnvvar(const char* name) const {
  return find(env_vars, name, zelk_get_evblk_name);
}
env_var_blk* ZelkDatabase::CreateEnvvar(unsigned index) {
  return create_at(env_vars, index, zelk_create_evblk);
}
void ZelkDatabase::DeleteEnvvar(env_var_blk& variable) { can_delete_evblk(&env_vars, &variable); }

btlblk* ZelkDatabase::GetBitTiming(unsigned short baudrate) const {
  return zelk_get_btlblk(bit_timings, baudrate);
}
btlblk* ZelkDatabase::CreateBitTiming(unsigned index) {
  return create_at(bit_timings, index, zelk_create_btlblk);
}
void ZelkDatabase::DeleteBitTiming(btlblk& bit_timing) {
  can_delete_btl(&bit_timings, &bit_timing);
}

valtable* ZelkDatabase::GetValueTable(const char* name) const {
  return find(value_tables, name, zelk_get_valtable_name);
}
valtable* ZelkDatabase::CreateValueTable(unsigned index) {
  return create_at(value_tables, index, zelk_create_valtable);
}
void ZelkDatabase::DeleteValueTable(valtable& table) { can_delete_valtable(&value_tables, &table); }

sigtype* ZelkDatabase::GetSignalType(const char* name) const {
  return find(signal_types, name, zelk_get_sigtype_name);
}
sigtype* ZelkDatabase::CreateSignalType(unsigned index) {
  return create_at(signal_types, index, zelk_create_sigtype);
}
void ZelkDatabase::DeleteSignalType(sigtype& type) { can_delete_sigtype(&signal_types, &type); }

cat* ZelkDatabase::CreateCategory(unsigned index) {
  return create_at(categories, index, zelk_create_category);
}
void ZelkDatabase::DeleteCategory(cat& category) { can_delete_category(&categories, &category); }

attr_def* ZelkDatabase::GetAttrDef(const char* name) const {
  return find(attr_defs, name, zelk_get_attr_def_name);
}
attr_def* ZelkDatabase::CreateAttrDef(unsigned index) {
  return create_at(attr_defs, index, zelk_create_attr_def);
}
void ZelkDatabase::DeleteAttrDef(attr_def& definition) {
  CheckAndRemovePredefinedAttrs(definition);
  can_delete_attr_def(&attr_defs, &definition);
}

void ZelkDatabase::RenameAttrDef(attr_def& definition, const char* name) {
  CheckAndRemovePredefinedAttrs(definition);
  zelk::copy_inline(definition.name, name);
  CheckAndInsertPredefinedAttrs(definition);
}

msgblk* ZelkDatabase::GetJ1939Message(unsigned long id, unsigned long flags) const {
  constexpr unsigned long kModes = ZELK_J1939_PGN_IDS | ZELK_J1939_FRAME_FORMAT;
  if ((id & ZELK_ID_EXTENDED) == 0) return GetMessage(id);
  if ((flags & kModes) == 0) {
    flags |= HasJ1939GroupNumbers() ? ZELK_J1939_PGN_IDS : ZELK_J1939_FRAME_FORMAT;
  }
  return zelk_get_j1939_message(messages, attr_defs, static_cast<std::uint32_t>(id),
                                static_cast<std::uint32_t>(flags));
}

bool ZelkDatabase::HasJ1939GroupNumbers() const {
  return is_switched_on(*this, "J1939PGN") || is_switched_on(*this, "IsNMEA");
}

unsigned long ZelkDatabase::GetMaxEnvvarHandle() const {
  std::uint32_t largest = 0;
  for (const env_var_blk* variable = env_vars; variable; variable = variable->next) {
    if (variable->id > largest) largest = variable->id;
  }
  return largest;
}

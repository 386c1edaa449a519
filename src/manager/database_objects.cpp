// Lookups, creation and deletion of a database's objects.

#include <cstdint>
#include <new>

#include "capi/attribute_text.hpp"
#include "capi/list_walk.hpp"
#include "manager/database_index.hpp"
#include "manager/database_lookup.hpp"
#include "model/errors.hpp"
#include "model/list_edit.hpp"
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
  if (record) {
    zelk::link_at(list, index, record);
  } else {
    zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  }
  return record;
} catch (const ZelkException&) {  // has told of itself in the error text
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
  const attr_def* definition = zelk_get_attr_def_name(database.attr_defs, name);
  return definition && is_number(*definition) && definition->default_value.number > 0;
}

}  // namespace

symblk* ZelkDatabase::GetNode(const char* name) const {
  ForbidIndex();
  return find(nodes, name, zelk_get_symbol_name);
}
symblk* ZelkDatabase::CreateNode(unsigned index) {
  ForbidIndex();
  return create_at(nodes, index, zelk_create_symbol);
}
void ZelkDatabase::DeleteNode(symblk& node) {
  DropIndex();
  can_delete_symbol(&nodes, &node);
}

msgblk* ZelkDatabase::GetMessage(const char* name) const {
  ForbidIndex();
  return find(messages, name, zelk_get_message_name);
}
msgblk* ZelkDatabase::GetMessage(unsigned long id) const {
  ForbidIndex();
  return zelk_get_message(messages, static_cast<std::uint32_t>(id));
}
msgblk* ZelkDatabase::CreateMessage(unsigned index) {
  ForbidIndex();
  return create_at(messages, index, zelk_create_msgblk);
}
void ZelkDatabase::DeleteMessage(msgblk& message) {
  DropIndex();
  can_delete_msg(&messages, &message);
}

env_var_blk* ZelkDatabase::GetEnvvar(const char* name) const {
  ForbidIndex();
  return find(env_vars, name, zelk_get_evblk_name);
}
env_var_blk* ZelkDatabase::CreateEnvvar(unsigned index) {
  ForbidIndex();
  return create_at(env_vars, index, zelk_create_evblk);
}
void ZelkDatabase::DeleteEnvvar(env_var_blk& variable) {
  DropIndex();
  can_delete_evblk(&env_vars, &variable);
}

btlblk* ZelkDatabase::GetBitTiming(unsigned short baudrate) const {
  ForbidIndex();
  return zelk_get_btlblk(bit_timings, baudrate);
}
btlblk* ZelkDatabase::CreateBitTiming(unsigned index) {
  ForbidIndex();
  return create_at(bit_timings, index, zelk_create_btlblk);
}
void ZelkDatabase::DeleteBitTiming(btlblk& bit_timing) {
  can_delete_btl(&bit_timings, &bit_timing);
}

valtable* ZelkDatabase::GetValueTable(const char* name) const {
  ForbidIndex();
  return find(value_tables, name, zelk_get_valtable_name);
}
valtable* ZelkDatabase::CreateValueTable(unsigned index) {
  ForbidIndex();
  return create_at(value_tables, index, zelk_create_valtable);
}
void ZelkDatabase::DeleteValueTable(valtable& table) {
  DropIndex();
  can_delete_valtable(&value_tables, &table);
}

sigtype* ZelkDatabase::GetSignalType(const char* name) const {
  ForbidIndex();
  return find(signal_types, name, zelk_get_sigtype_name);
}
sigtype* ZelkDatabase::CreateSignalType(unsigned index) {
  ForbidIndex();
  return create_at(signal_types, index, zelk_create_sigtype);
}
void ZelkDatabase::DeleteSignalType(sigtype& type) {
  DropIndex();
  can_delete_sigtype(&signal_types, &type);
}

cat* ZelkDatabase::CreateCategory(unsigned index) {
  ForbidIndex();
  return create_at(categories, index, zelk_create_category);
}
void ZelkDatabase::DeleteCategory(cat& category) {
  DropIndex();
  can_delete_category(&categories, &category);
}

attr_def* ZelkDatabase::GetAttrDef(const char* name) const {
  ForbidIndex();
  return find(attr_defs, name, zelk_get_attr_def_name);
}
attr_def* ZelkDatabase::CreateAttrDef(unsigned index) {
  ForbidIndex();
  return create_at(attr_defs, index, zelk_create_attr_def);
}
void ZelkDatabase::DeleteAttrDef(attr_def& definition) {
  DropIndex();
  CheckAndRemovePredefinedAttrs(definition);
  can_delete_attr_def(&attr_defs, &definition);
}

void ZelkDatabase::RenameAttrDef(attr_def& definition, const char* name) {
  DropIndex();
  CheckAndRemovePredefinedAttrs(definition);
  zelk::copy_inline(definition.name, name);
  CheckAndInsertPredefinedAttrs(definition);
}

msgblk* ZelkDatabase::GetJ1939Message(unsigned long id, unsigned long flags) const {
  ForbidIndex();
  const auto id_bits = static_cast<std::uint32_t>(id);
  const auto flag_bits = static_cast<std::uint32_t>(flags);
  return const_cast<msgblk*>(zelk::DatabaseLookup::j1939_message(*this, id_bits, flag_bits));
}

std::uint32_t ZelkDatabase::J1939Flags(std::uint32_t flags, bool has_group_numbers) {
  constexpr std::uint32_t kModes = ZELK_J1939_PGN_IDS | ZELK_J1939_FRAME_FORMAT;
  if ((flags & kModes) != 0) return flags;
  return flags | (has_group_numbers ? ZELK_J1939_PGN_IDS : ZELK_J1939_FRAME_FORMAT);
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

// --- Lookups by the index ---

const zelk::DatabaseIndex* ZelkDatabase::Index() const {
  if (is_index_forbidden_ || index_) return index_.get();
  try {
    index_ = std::make_unique<const zelk::DatabaseIndex>(*this);
  } catch (const std::bad_alloc&) {
    is_index_forbidden_ = true;
  }
  return index_.get();
}

void ZelkDatabase::DropIndex() const { index_.reset(); }

void ZelkDatabase::ForbidIndex() const {
  is_index_forbidden_ = true;
  DropIndex();
}

namespace zelk {
namespace {

symblk* walk(symblk* list, const char* name) { return zelk_get_symbol_name(list, name); }
msgblk* walk(msgblk* list, const char* name) { return zelk_get_message_name(list, name); }
env_var_blk* walk(env_var_blk* list, const char* name) { return zelk_get_evblk_name(list, name); }
valtable* walk(valtable* list, const char* name) { return zelk_get_valtable_name(list, name); }
sigtype* walk(sigtype* list, const char* name) { return zelk_get_sigtype_name(list, name); }
attr_def* walk(attr_def* list, const char* name) { return zelk_get_attr_def_name(list, name); }

}  // namespace

template <typename Record>
const Record* DatabaseLookup::named(const ZelkDatabase& database, const char* name) {
  if (!name) return nullptr;
  const DatabaseIndex* const index = database.Index();
  if (index) return index->named<Record>(name);
  return walk(database.ListOf(static_cast<const Record*>(nullptr)), name);
}

template const symblk* DatabaseLookup::named(const ZelkDatabase&, const char*);
template const msgblk* DatabaseLookup::named(const ZelkDatabase&, const char*);
template const env_var_blk* DatabaseLookup::named(const ZelkDatabase&, const char*);
template const valtable* DatabaseLookup::named(const ZelkDatabase&, const char*);
template const sigtype* DatabaseLookup::named(const ZelkDatabase&, const char*);
template const attr_def* DatabaseLookup::named(const ZelkDatabase&, const char*);

const msgblk* DatabaseLookup::message(const ZelkDatabase& database, std::uint32_t id) {
  const DatabaseIndex* const index = database.Index();
  return index ? index->message(id) : zelk_get_message(database.messages, id);
}

const msgblk* DatabaseLookup::j1939_message(const ZelkDatabase& database, std::uint32_t id,
                                            std::uint32_t flags) {
  const DatabaseIndex* const index = database.Index();
  if (index) return index->j1939_message(id, flags);
  if ((id & ZELK_ID_EXTENDED) == 0) return zelk_get_message(database.messages, id);
  flags = ZelkDatabase::J1939Flags(flags, database.HasJ1939GroupNumbers());
  return zelk_get_j1939_message(database.messages, database.attr_defs, id, flags);
}

}  // namespace zelk

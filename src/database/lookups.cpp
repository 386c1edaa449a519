// Lookups of a database's objects, by the index or by walks over the lists.

#include "database/lookup.hpp"

#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "base/attribute_text.hpp"
#include "database/index.hpp"
#include "database/list_ends.hpp"
#include "model/inline_name.hpp"
#include "zelk/query.h"

// --- The index ---

/// One thread makes it, while others that want it walk. Without memory everybody walks.
const zelk::DatabaseIndex* ZelkDatabase::Index() const {
  IndexState state = index_state_.load(std::memory_order_acquire);
  if (state == IndexState::kMade) return made_index_.get();
  if (state != IndexState::kNone ||
      !index_state_.compare_exchange_strong(state, IndexState::kBeingMade)) {
    return nullptr;
  }
  try {
    made_index_ = std::make_unique<const zelk::DatabaseIndex>(*this);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  state = IndexState::kBeingMade;
  const bool is_wanted = index_state_.compare_exchange_strong(state, IndexState::kMade);
  return is_wanted ? made_index_.get() : nullptr;
}

void ZelkDatabase::DropIndex() const {
  ends_.reset();
  made_index_.reset();
  index_state_ = IndexState::kNone;
}

void ZelkDatabase::ForbidIndex() const { index_state_ = IndexState::kForbidden; }

namespace zelk {

template <typename Record>
const Record* DatabaseLookup::named(const ZelkDatabase& database, const char* name) {
  if (!name) return nullptr;
  const DatabaseIndex* const index = database.Index();
  if (index) return index->named<Record>(name);
  return find_named(list<Record>(database), name);
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
  if ((id & ZELK_ID_EXTENDED) == 0) return message(database, id);
  const DatabaseIndex* const index = database.Index();
  if (index) return index->j1939_message(id, flags);
  flags = ZelkDatabase::J1939Flags(flags, database.HasJ1939GroupNumbers());
  return zelk_get_j1939_message(database.messages, database.attr_defs, id, flags);
}

}  // namespace zelk

const symblk* ZelkDatabase::GetNode(const char* name) const {
  return zelk::DatabaseLookup::named<symblk>(*this, name);
}
symblk* ZelkDatabase::GetNode(const char* name) {
  return HandOut(std::as_const(*this).GetNode(name));
}

const msgblk* ZelkDatabase::GetMessage(const char* name) const {
  return zelk::DatabaseLookup::named<msgblk>(*this, name);
}
msgblk* ZelkDatabase::GetMessage(const char* name) {
  return HandOut(std::as_const(*this).GetMessage(name));
}

const env_var_blk* ZelkDatabase::GetEnvvar(const char* name) const {
  return zelk::DatabaseLookup::named<env_var_blk>(*this, name);
}
env_var_blk* ZelkDatabase::GetEnvvar(const char* name) {
  return HandOut(std::as_const(*this).GetEnvvar(name));
}

const valtable* ZelkDatabase::GetValueTable(const char* name) const {
  return zelk::DatabaseLookup::named<valtable>(*this, name);
}
valtable* ZelkDatabase::GetValueTable(const char* name) {
  return HandOut(std::as_const(*this).GetValueTable(name));
}

const sigtype* ZelkDatabase::GetSignalType(const char* name) const {
  return zelk::DatabaseLookup::named<sigtype>(*this, name);
}
sigtype* ZelkDatabase::GetSignalType(const char* name) {
  return HandOut(std::as_const(*this).GetSignalType(name));
}

const attr_def* ZelkDatabase::GetAttrDef(const char* name) const {
  return zelk::DatabaseLookup::named<attr_def>(*this, name);
}
attr_def* ZelkDatabase::GetAttrDef(const char* name) {
  return HandOut(std::as_const(*this).GetAttrDef(name));
}

const msgblk* ZelkDatabase::GetMessage(unsigned long id) const {
  return zelk::DatabaseLookup::message(*this, static_cast<std::uint32_t>(id));
}
msgblk* ZelkDatabase::GetMessage(unsigned long id) {
  return HandOut(std::as_const(*this).GetMessage(id));
}

const msgblk* ZelkDatabase::GetJ1939Message(unsigned long id, unsigned long flags) const {
  return zelk::DatabaseLookup::j1939_message(*this, static_cast<std::uint32_t>(id),
                                             static_cast<std::uint32_t>(flags));
}
msgblk* ZelkDatabase::GetJ1939Message(unsigned long id, unsigned long flags) {
  return HandOut(std::as_const(*this).GetJ1939Message(id, flags));
}

const btlblk* ZelkDatabase::GetBitTiming(unsigned short baudrate) const {
  return zelk_get_btlblk(bit_timings, baudrate);
}
btlblk* ZelkDatabase::GetBitTiming(unsigned short baudrate) {
  return HandOut(std::as_const(*this).GetBitTiming(baudrate));
}

// --- J1939 ---

namespace {

/// Whether the network attribute `name` has a value above 0, or else a default above 0. The default
/// of an ENUM is a text, and no number.
bool is_switched_on(const ZelkDatabase& database, const char* name) {
  const attr* value = zelk::find_attribute_value(database.attr_values, name);
  const bool has_number = value && value->def->value_type != ZELK_ATTR_STRING;
  if (has_number && value->value.number > 0) return true;
  const attr_def* definition = zelk_get_attr_def_name(database.attr_defs, name);
  return definition && !zelk::has_text_default(*definition) && definition->default_value.number > 0;
}

}  // namespace

std::uint32_t ZelkDatabase::J1939Flags(std::uint32_t flags, bool has_group_numbers) {
  constexpr std::uint32_t kModes = ZELK_J1939_PGN_IDS | ZELK_J1939_FRAME_FORMAT;
  if ((flags & kModes) != 0) return flags;
  return flags | (has_group_numbers ? ZELK_J1939_PGN_IDS : ZELK_J1939_FRAME_FORMAT);
}

bool ZelkDatabase::HasJ1939GroupNumbers() const {
  return is_switched_on(*this, "J1939PGN") || is_switched_on(*this, "IsNMEA");
}

// Creating records, and deleting them with everything that refers to them.

#include <cstdint>
#include <utility>

#include "edit/edits.hpp"
#include "model/release.hpp"
#include "zelk/model.h"
#include "zelk/write_manager.hpp"

namespace zelk {
namespace {

constexpr auto kRelease = [](auto* record) { release_one(record); };

/// Removes attribute values from all records that can have them.
///
/// @param is_gone  whether a value goes
template <typename IsGone>
void remove_attributes(ZelkDatabase& database, IsGone is_gone) {
  const auto clean_each = [is_gone](auto* owners) {
    for (auto& owner : each(owners)) remove_if(owner.attrs, is_gone, kRelease);
  };
  remove_if(database.attr_values, is_gone, kRelease);
  clean_each(database.nodes);
  clean_each(database.signal_types);
  clean_each(database.messages);
  clean_each(database.env_vars);
  clean_each(database.filter.nodes);
  for (const env_var_blk& variable : each(database.env_vars)) clean_each(variable.access_nodes);
  for (const msgblk& message : each(database.messages)) {
    clean_each(message.tx_nodes);
    clean_each(message.signals);
    for (const sigblk& signal : each(message.signals)) clean_each(signal.receivers);
  }
}

void detach(ZelkDatabase& database, const symblk& node) {
  for (msgblk& message : each(database.messages)) {
    remove_transmitter(message, node, kRelease);
    for (sigblk& signal : each(message.signals)) {
      count_off(signal.receiver_count, remove_links(signal.receivers, node, kRelease));
    }
  }
  for (env_var_blk& variable : each(database.env_vars)) {
    count_off(variable.access_node_count, remove_links(variable.access_nodes, node, kRelease));
  }
  remove_links(database.filter.nodes, node, kRelease);
}

/// No other record refers to these.
void detach(ZelkDatabase&, const msgblk&) {}
void detach(ZelkDatabase&, const env_var_blk&) {}
void detach(ZelkDatabase&, const btlblk&) {}

template <typename Object>
void drop_category(Object* list, const cat& category) {
  for (Object& object : each(list)) {
    if (object.category == &category) object.category = nullptr;
  }
}

void detach(ZelkDatabase& database, const cat& category) {
  drop_category(database.nodes, category);
  drop_category(database.messages, category);
  drop_category(database.env_vars, category);
  remove_links(database.filter.categories, category);
}

void detach(ZelkDatabase& database, const sigtype& type) {
  for (const msgblk& message : each(database.messages)) {
    for (sigblk& signal : each(message.signals)) {
      if (signal.sigtype == &type) signal.sigtype = nullptr;
    }
  }
}

void detach(ZelkDatabase& database, const valtable& table) {
  for (sigtype& type : each(database.signal_types)) {
    if (type.valtable == &table) type.valtable = nullptr;
  }
}

void detach(ZelkDatabase& database, attr_def& definition) {
  remove_attributes(database,
                    [&definition](const attr& value) { return value.def == &definition; });
  database.CheckAndRemovePredefinedAttrs(definition);
}

/// The signals that it selects as a multiplexor are always present from now on. Its own flags go
/// with it: to look whether it still selects one, after each of them, would take the square of
/// their number.
void detach_signal(msgblk& message, sigblk& signal) {
  for (siggroupblk& group : each(message.siggroups)) remove_entries(group, signal);
  for (sigblk& other : each(message.signals)) {
    if (other.mux_signal != &signal) continue;
    other.mux_signal = nullptr;
    release_list(std::exchange(other.mux_ranges, nullptr));
  }
  zelk_remove_multiplexor(&signal);
}

/// Deletes a record of one of the database's own lists.
template <typename Record>
void delete_record(ZelkWriteManager& manager, Record& record, const char* db,
                   Record* ZelkDatabase::*list) {
  ZelkDatabase* const database = ManagerEdits::holder(manager, record, db);
  if (!database) return;
  detach(*database, record);
  unlink(database->*list, &record);
  release_one(&record);
}

template <typename Record>
Record* create(ZelkWriteManager& manager, const char* db, unsigned index,
               Record* (ZelkDatabase::*create_at)(unsigned)) {
  ZelkDatabase* const database = ManagerEdits::database(manager, db);
  return database ? (database->*create_at)(index) : nullptr;
}

}  // namespace
}  // namespace zelk

symblk* ZelkWriteManager::CreateNode(const char* db, unsigned index) {
  return zelk::create(*this, db, index, &ZelkDatabase::CreateNode);
}
msgblk* ZelkWriteManager::CreateMessage(const char* db, unsigned index) {
  return zelk::create(*this, db, index, &ZelkDatabase::CreateMessage);
}
env_var_blk* ZelkWriteManager::CreateEnvvar(const char* db, unsigned index) {
  return zelk::create(*this, db, index, &ZelkDatabase::CreateEnvvar);
}
btlblk* ZelkWriteManager::CreateBitTiming(const char* db, unsigned index) {
  return zelk::create(*this, db, index, &ZelkDatabase::CreateBitTiming);
}
cat* ZelkWriteManager::CreateCategory(const char* db, unsigned index) {
  return zelk::create(*this, db, index, &ZelkDatabase::CreateCategory);
}
sigtype* ZelkWriteManager::CreateSignalType(const char* db, unsigned index) {
  return zelk::create(*this, db, index, &ZelkDatabase::CreateSignalType);
}
valtable* ZelkWriteManager::CreateValueTable(const char* db, unsigned index) {
  return zelk::create(*this, db, index, &ZelkDatabase::CreateValueTable);
}
attr_def* ZelkWriteManager::CreateAttrDefinition(const char* db, unsigned index) {
  return zelk::create(*this, db, index, &ZelkDatabase::CreateAttrDef);
}

void ZelkWriteManager::DeleteNode(symblk& node, const char* db) {
  zelk::delete_record(*this, node, db, &ZelkDatabase::nodes);
}
void ZelkWriteManager::DeleteMessage(msgblk& message, const char* db) {
  zelk::delete_record(*this, message, db, &ZelkDatabase::messages);
}
void ZelkWriteManager::DeleteEnvvar(env_var_blk& variable, const char* db) {
  zelk::delete_record(*this, variable, db, &ZelkDatabase::env_vars);
}
void ZelkWriteManager::DeleteBitTiming(btlblk& bit_timing, const char* db) {
  zelk::delete_record(*this, bit_timing, db, &ZelkDatabase::bit_timings);
}
void ZelkWriteManager::DeleteCategory(cat& category, const char* db) {
  zelk::delete_record(*this, category, db, &ZelkDatabase::categories);
}
void ZelkWriteManager::DeleteSignalType(sigtype& type, const char* db) {
  zelk::delete_record(*this, type, db, &ZelkDatabase::signal_types);
}
void ZelkWriteManager::DeleteValueTable(valtable& table, const char* db) {
  zelk::delete_record(*this, table, db, &ZelkDatabase::value_tables);
}
void ZelkWriteManager::DeleteAttrDefinition(attr_def& definition, const char* db) {
  zelk::delete_record(*this, definition, db, &ZelkDatabase::attr_defs);
}

sigblk* ZelkWriteManager::CreateSignal(msgblk& message, unsigned index) {
  return zelk::without_raising<sigblk*>(nullptr, [&] {
    sigblk* const signal = zelk_create_sigblk();
    if (!signal) throw std::bad_alloc();  // silent after a read that has reported an error
    zelk::link_at(message.signals, index, signal);
    signal->message = &message;
    ++message.signal_count;
    return signal;
  });
}

siggroupblk* ZelkWriteManager::CreateSignalGroup(msgblk& message, unsigned index) {
  return zelk::without_raising<siggroupblk*>(nullptr, [&] {
    siggroupblk* const group = zelk_create_siggroup(&message);
    zelk::link_at(message.siggroups, index, group);
    return group;
  });
}

void ZelkWriteManager::DeleteSignal(sigblk& signal, const char* db) {
  if (!zelk::ManagerEdits::holder(*this, signal, db)) return;
  msgblk& message = *signal.message;
  if (!zelk::contains<sigblk>(message.signals, signal)) return;
  zelk::detach_signal(message, signal);
  zelk::unlink(message.signals, &signal);
  zelk::count_off(message.signal_count, 1);
  zelk::release_one(&signal);
}

void ZelkWriteManager::DeleteSignalGroup(siggroupblk& group, const char* db) {
  if (!zelk::ManagerEdits::holder(*this, group, db)) return;
  if (zelk::unlink(group.message->siggroups, &group)) zelk::release_one(&group);
}

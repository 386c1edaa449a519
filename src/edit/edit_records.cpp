// Creating records, and deleting them with all that refers to them.

#include <cstdint>

#include "edit/edits.hpp"
#include "model/release.hpp"
#include "zelk/model.h"
#include "zelk/write_manager.hpp"

namespace zelk {
namespace {

constexpr auto kRelease = [](auto* record) { release_one(record); };

/// Removes attribute values, wherever one may stand.
///
/// @param is_gone  whether a value goes
template <typename IsGone>
void remove_attributes(ZelkDatabase& database, IsGone is_gone) {
  const auto clean = [is_gone](attr*& values) { remove_if(values, is_gone, kRelease); };
  const auto clean_links = [clean](rxblk* links) {
    for (; links; links = links->next) clean(links->attrs);
  };
  const auto clean_each = [clean](auto* list) {
    for (; list; list = list->next) clean(list->attrs);
  };
  clean(database.attr_values);
  clean_each(database.nodes);
  clean_each(database.signal_types);
  clean_each(database.messages);
  clean_each(database.env_vars);
  clean_links(database.filter.nodes);
  for (env_var_blk* variable = database.env_vars; variable; variable = variable->next) {
    clean_links(variable->access_nodes);
  }
  for (msgblk* message = database.messages; message; message = message->next) {
    clean_links(message->tx_nodes);
    clean_each(message->signals);
    for (sigblk* signal = message->signals; signal; signal = signal->next) {
      clean_links(signal->receivers);
    }
  }
}

void detach(ZelkDatabase& database, const symblk& node) {
  for (msgblk* message = database.messages; message; message = message->next) {
    remove_transmitter(*message, node, kRelease);
    for (sigblk* signal = message->signals; signal; signal = signal->next) {
      count_off(signal->receiver_count, remove_links(signal->receivers, node, kRelease));
    }
  }
  for (env_var_blk* variable = database.env_vars; variable; variable = variable->next) {
    count_off(variable->access_node_count, remove_links(variable->access_nodes, node, kRelease));
  }
  remove_links(database.filter.nodes, node, kRelease);
}

/// Nothing refers to these but what they own themselves.
void detach(ZelkDatabase&, const msgblk&) {}
void detach(ZelkDatabase&, const env_var_blk&) {}
void detach(ZelkDatabase&, const btlblk&) {}

template <typename Object>
void drop_category(Object* list, const cat& category) {
  for (; list; list = list->next) {
    if (list->category == &category) list->category = nullptr;
  }
}

void detach(ZelkDatabase& database, const cat& category) {
  drop_category(database.nodes, category);
  drop_category(database.messages, category);
  drop_category(database.env_vars, category);
  const auto leads_to_it = [&category](const catlink& link) { return link.category == &category; };
  remove_if(database.filter.categories, leads_to_it, kRelease);
}

void detach(ZelkDatabase& database, const sigtype& type) {
  for (msgblk* message = database.messages; message; message = message->next) {
    for (sigblk* signal = message->signals; signal; signal = signal->next) {
      if (signal->sigtype == &type) signal->sigtype = nullptr;
    }
  }
}

void detach(ZelkDatabase& database, const valtable& table) {
  for (sigtype* type = database.signal_types; type; type = type->next) {
    if (type->valtable == &table) type->valtable = nullptr;
  }
}

void detach(ZelkDatabase& database, attr_def& definition) {
  remove_attributes(database,
                    [&definition](const attr& value) { return value.def == &definition; });
  database.CheckAndRemovePredefinedAttrs(definition);
}

/// The signals that it selects are always there from now on.
void detach_signal(msgblk& message, sigblk& signal) {
  for (siggroupblk* group = message.siggroups; group; group = group->next) {
    const auto is_entry = [&signal](const siglistblk& entry) { return entry.signal == &signal; };
    remove_if(group->signals, is_entry, kRelease);
  }
  for (sigblk* other = message.signals; other; other = other->next) {
    if (other->mux_signal == &signal) zelk_remove_multiplexor(other);
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
  sigblk* signal = nullptr;
  zelk::edit_or_tell([&] {
    signal = zelk_create_sigblk();
    if (!signal) throw std::bad_alloc();
    zelk::link_at(message.signals, index, signal);
    signal->message = &message;
    ++message.signal_count;
  });
  return signal;
}

siggroupblk* ZelkWriteManager::CreateSignalGroup(msgblk& message, unsigned index) {
  siggroupblk* group = nullptr;
  zelk::edit_or_tell([&] {
    group = zelk_create_siggroup(&message);
    if (group) zelk::link_at(message.siggroups, index, group);
  });
  return group;
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

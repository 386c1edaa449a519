// Names, texts and attribute values of records.

#include <cstdint>

#include "edit/edits.hpp"
#include "model/inline_name.hpp"
#include "model/memory.hpp"
#include "model/release.hpp"
#include "zelk/model.h"
#include "zelk/write_manager.hpp"

namespace zelk {
namespace {

void set_text(char*& field, const char* text) {
  without_raising([&] { assign_text(field, copy_of(text)); });
}

void set_name(char*& field, const char* name) {
  if (name) set_text(field, name);
}

void describe(val& description, long value, const char* text) {
  without_raising([&] {
    assign_text(description.text, copy_text(text ? text : ""));
    description.value = static_cast<std::int32_t>(value);
  });
}

/// Sets the text of the first description with this number, or of a new one in front.
void describe(val*& descriptions, long value, const char* text) {
  const auto number = static_cast<std::int32_t>(value);
  val* const found = find_first(descriptions, [number](const val& v) { return v.value == number; });
  if (found) return describe(*found, value, text);
  without_raising([&] {
    OwnedText copy = copy_text(text ? text : "");
    auto* const description = create_record<val>();
    description->value = number;
    description->text = copy.release();
    link_in_front(descriptions, description);
  });
}

// --- Attribute values ---

void store(attr& value, const attr_def& definition, const zelk_attr_value_t& new_value) {
  if (definition.value_type == ZELK_ATTR_STRING) {
    assign_text(value.value.text, copy_of(new_value.text));
  } else {
    value.value.number = new_value.number;
  }
}

/// Replaces the value of that name, or puts a new one in front.
///
/// @param definition  gives the definition for a new value, or null
template <typename FindDefinition>
void set_value(attr*& values, const char* name, const zelk_attr_value_t& value,
               FindDefinition definition) {
  if (!name) return;
  without_raising([&] {
    if (attr* const own = find_attribute_value(values, name)) return store(*own, *own->def, value);
    const attr_def* const found = definition();
    if (!found) return;
    Owned<attr> record(create_record<attr>());
    record->def = const_cast<attr_def*>(found);
    store(*record, *found, value);
    link_in_front(values, record.release());
  });
}

template <typename Object>
void set_value(ZelkWriteManager& manager, Object& object, const char* name,
               const zelk_attr_value_t& value, const char* db) {
  const ZelkManager& lookups = manager;
  set_value(object.attrs, name, value, [&] { return lookups.GetAttrDefinition(object, name, db); });
}

void reset_value(attr*& values, const char* name) {
  attr* const own = name ? find_attribute_value(values, name) : nullptr;
  if (!own) return;
  unlink(values, own);
  release_one(own);
}

}  // namespace
}  // namespace zelk

// --- Names and texts ---

void ZelkWriteManager::SetName(symblk& node, const char* name) {
  zelk::ManagerEdits::begin_change(*this, node);
  zelk::set_name(node.name, name);
}
void ZelkWriteManager::SetName(msgblk& message, const char* name) {
  zelk::ManagerEdits::begin_change(*this, message);
  zelk::set_name(message.name, name);
}
void ZelkWriteManager::SetName(env_var_blk& variable, const char* name) {
  zelk::ManagerEdits::begin_change(*this, variable);
  zelk::set_name(variable.name, name);
}
void ZelkWriteManager::SetName(sigblk& signal, const char* name) {
  zelk::set_name(signal.name, name);
}

void ZelkWriteManager::SetComment(symblk& node, const char* text) {
  zelk::set_text(node.comment, text);
}
void ZelkWriteManager::SetComment(msgblk& message, const char* text) {
  zelk::set_text(message.comment, text);
}
void ZelkWriteManager::SetComment(env_var_blk& variable, const char* text) {
  zelk::set_text(variable.comment, text);
}
void ZelkWriteManager::SetComment(sigblk& signal, const char* text) {
  zelk::set_text(signal.comment, text);
}
void ZelkWriteManager::SetComment(sigtype& type, const char* text) {
  zelk::set_text(type.comment, text);
}
void ZelkWriteManager::SetComment(siggroupblk& group, const char* text) {
  zelk::set_text(group.comment, text);
}

void ZelkWriteManager::SetDatabaseComment(const char* db, const char* text) {
  ZelkDatabase* const database = FindDatabase(db);
  if (database) database->SetComment(text);
}

void ZelkWriteManager::SetUserData(const char* db, const char* text) {
  ZelkDatabase* const database = FindDatabase(db);
  if (database) database->SetUserData(text);
}

void ZelkWriteManager::SetValueDescription(val& description, long value, const char* text) {
  zelk::describe(description, value, text);
}
void ZelkWriteManager::SetValueDescription(sigblk& signal, long value, const char* text) {
  zelk::describe(signal.values, value, text);
}
void ZelkWriteManager::SetValueDescription(env_var_blk& variable, long value, const char* text) {
  zelk::describe(variable.values, value, text);
}
void ZelkWriteManager::SetValueDescription(valtable& table, long value, const char* text) {
  zelk::describe(table.values, value, text);
}

// --- Attribute values ---

attr_def* ZelkWriteManager::HandOutDefinition(const attr_def* found) {
  if (found) zelk::ManagerEdits::holder(*this, *found, nullptr);
  return const_cast<attr_def*>(found);
}

void ZelkWriteManager::SetAttrValue(const char* db, const char* name,
                                    const zelk_attr_value_t& value) {
  ZelkDatabase* const database = zelk::ManagerEdits::database(*this, db);
  if (!database) return;
  const ZelkManager& lookups = *this;
  zelk::set_value(database->attr_values, name, value,
                  [&] { return lookups.GetNetworkAttrDefinition(db, name); });
}
void ZelkWriteManager::SetAttrValue(symblk& node, const char* name, const zelk_attr_value_t& value,
                                    const char* db) {
  zelk::set_value(*this, node, name, value, db);
}
void ZelkWriteManager::SetAttrValue(msgblk& message, const char* name,
                                    const zelk_attr_value_t& value, const char* db) {
  zelk::set_value(*this, message, name, value, db);
}
void ZelkWriteManager::SetAttrValue(env_var_blk& variable, const char* name,
                                    const zelk_attr_value_t& value, const char* db) {
  zelk::set_value(*this, variable, name, value, db);
}
void ZelkWriteManager::SetAttrValue(sigblk& signal, const char* name,
                                    const zelk_attr_value_t& value, const char* db) {
  zelk::set_value(*this, signal, name, value, db);
}

void ZelkWriteManager::ResetAttrValue(const char* db, const char* name) {
  ZelkDatabase* const database = zelk::ManagerEdits::database(*this, db);
  if (database) zelk::reset_value(database->attr_values, name);
}
void ZelkWriteManager::ResetAttrValue(symblk& node, const char* name) {
  zelk::reset_value(node.attrs, name);
}
void ZelkWriteManager::ResetAttrValue(msgblk& message, const char* name) {
  zelk::reset_value(message.attrs, name);
}
void ZelkWriteManager::ResetAttrValue(env_var_blk& variable, const char* name) {
  zelk::reset_value(variable.attrs, name);
}
void ZelkWriteManager::ResetAttrValue(sigblk& signal, const char* name) {
  zelk::reset_value(signal.attrs, name);
}

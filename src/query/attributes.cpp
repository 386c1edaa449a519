// Effective values of attributes.

#include "base/list.hpp"
#include "database/holding.hpp"
#include "model/inline_name.hpp"
#include "text/words.hpp"
#include "zelk/iterator.hpp"

// --- Presence ---

bool ZelkManager::IsAttributeDefined(const char* name, zelk_obj_t type, const char* db) const {
  if (!name) return false;
  for (auto definition = GetAttrDefinitionIterator(db); definition; ++definition) {
    const attr_def& found = **definition;
    if (found.object_type == type && zelk::same_inline_name(found.name, name)) return true;
  }
  return false;
}

bool ZelkManager::IsAttrValueDefined(const char* name, const char* db) const {
  if (!name) return false;
  for (auto value = GetAttributeIterator(db); value; ++value) {
    if ((*value)->def && zelk::same_inline_name((*value)->def->name, name)) return true;
  }
  return false;
}

// --- Effective values ---

const attr_def* ZelkManager::FindDefinition(const char* name, const char* db) const {
  if (!name) return nullptr;
  auto definition = GetAttrDefinitionIterator(db);
  while (definition && !zelk::same_inline_name((*definition)->name, name)) ++definition;
  return *definition;
}

zelk_attr_value_t ZelkManager::GetAttrDefault(const char* name, const char* db) const {
  const attr_def* const definition = FindDefinition(name, db);
  return definition ? definition->default_value : zelk_attr_value_t{};
}

ZelkStatus ZelkManager::GetAttrDefaultEx(const char* name, zelk_attr_value_t& value,
                                         const char* db) {
  const attr_def* const definition = FindDefinition(name, db);
  if (!definition) return Answer(ZelkStatusNotDefined);
  if (definition->value_type == ZELK_ATTR_ENUM) {
    value.number =
        static_cast<double>(GetAttrValueIndex(*definition, definition->default_value.text));
  } else {
    value = definition->default_value;
  }
  return Answer(ZelkStatusOk);
}

ZelkStatus ZelkManager::Answer(ZelkStatus status) {
  status_ = static_cast<std::uint32_t>(status);
  return status;
}

/// The default, when the attribute is defined for that kind of object.
ZelkStatus ZelkManager::DefaultFor(zelk_obj_t type, const char* name, zelk_attr_value_t& value,
                                   const char* db) {
  if (!IsAttributeDefined(name, type, db)) return Answer(ZelkStatusNotDefined);
  return GetAttrDefaultEx(name, value, db);
}

zelk_attr_value_t ZelkManager::GetAttrValue(const char* name, const char* db) {
  const DbListNode* const node = ListFindDatabase(db);
  if (!node) return {};
  const attr* const value = zelk::find_attribute_value(node->database.attr_values, name);
  return value ? value->value : GetAttrDefault(name, db);
}

ZelkStatus ZelkManager::GetAttrValueEx(const char* name, zelk_attr_value_t& value, const char* db) {
  const DbListNode* const node = ListFindDatabase(db);
  if (!node) return ZelkStatusNotFound;
  const attr* const own = zelk::find_attribute_value(node->database.attr_values, name);
  if (!own) return DefaultFor(ZELK_OBJ_NETWORK, name, value, db);
  value = own->value;
  return Answer(ZelkStatusOk);
}

namespace {

/// The first definition of that name for the kind of object, else the first one of that name. Those
/// of relations count for links alone: no file could hold the value elsewhere.
const attr_def* definition_for(const ZelkDatabase& database, zelk_obj_t kind, const char* name) {
  const attr_def* const list = database.attr_defs;
  const attr_def* const of_kind = zelk::find_first(list, [=](const attr_def& definition) {
    return definition.object_type == kind && zelk::same_inline_name(definition.name, name);
  });
  if (of_kind) return of_kind;
  return zelk::find_first(list, [name](const attr_def& definition) {
    return !zelk::is_relation(definition.object_type) &&
           zelk::same_inline_name(definition.name, name);
  });
}

}  // namespace

/// Effective values of objects of every kind, and what defines them.
struct zelk::ManagerAttributes {
  /// An object that another database holds than the named one has no definition: a value must not
  /// refer to one that may be closed before it. While one database is open nothing is walked.
  template <typename Object>
  static const attr_def* definition(const ZelkManager& manager, const Object& object,
                                    const char* name, const char* db) {
    if (!name) return nullptr;
    if (const attr* own = find_attribute_value(object.attrs, name)) return own->def;
    const auto* const node = manager.ListFindNode(db ? db : name_of_holder(manager, object));
    if (!node) return nullptr;
    const ZelkDatabase& database = node->database;
    const bool is_foreign =
        db && find_first(manager.databases_, [&](const ZelkManager::DbListNode& other) {
          return &other.database != &database && holds(other.database, object);
        });
    return is_foreign ? nullptr : definition_for(database, kind_of(object), name);
  }

  /// Name of the first database that holds the object; null when none does.
  template <typename Object>
  static const char* name_of_holder(const ZelkManager& manager, const Object& object) {
    const ZelkManager::DbListNode* const node = find_first(
        manager.databases_,
        [&object](const ZelkManager::DbListNode& open) { return holds(open.database, object); });
    return node ? node->name : nullptr;
  }

  template <typename Object>
  static zelk_attr_value_t value(const ZelkManager& manager, const Object& object,
                                 const char* name) {
    const attr* const own = find_attribute_value(object.attrs, name);
    return own ? own->value : manager.GetAttrDefault(name, name_of_holder(manager, object));
  }

  template <typename Object>
  static ZelkStatus value_ex(ZelkManager& manager, const Object& object, const char* name,
                             zelk_attr_value_t& value, const char* db) {
    if (const attr* own = find_attribute_value(object.attrs, name)) {
      value = own->value;
      return manager.Answer(ZelkStatusOk);
    }
    const char* const holder = db ? db : name_of_holder(manager, object);
    constexpr bool kNeedsDatabase = !std::is_same_v<Object, sigtype>;
    const bool is_known = holder && manager.ListFindNode(holder);
    if (kNeedsDatabase && !is_known) return manager.Answer(ZelkStatusNotFound);
    return manager.DefaultFor(kind_of(object), name, value, holder);
  }
};

using Attributes = zelk::ManagerAttributes;

const attr_def* ZelkManager::GetNetworkAttrDefinition(const char* db, const char* name) const {
  const DbListNode* const node = ListFindNode(db);
  if (!node || !name) return nullptr;
  const attr* const own = zelk::find_attribute_value(node->database.attr_values, name);
  return own ? own->def : definition_for(node->database, ZELK_OBJ_NETWORK, name);
}
const attr_def* ZelkManager::GetAttrDefinition(const symblk& node, const char* name,
                                               const char* db) const {
  return Attributes::definition(*this, node, name, db);
}
const attr_def* ZelkManager::GetAttrDefinition(const msgblk& message, const char* name,
                                               const char* db) const {
  return Attributes::definition(*this, message, name, db);
}
const attr_def* ZelkManager::GetAttrDefinition(const env_var_blk& variable, const char* name,
                                               const char* db) const {
  return Attributes::definition(*this, variable, name, db);
}
const attr_def* ZelkManager::GetAttrDefinition(const sigtype& type, const char* name,
                                               const char* db) const {
  return Attributes::definition(*this, type, name, db);
}
const attr_def* ZelkManager::GetAttrDefinition(const sigblk& signal, const char* name,
                                               const char* db) const {
  return Attributes::definition(*this, signal, name, db);
}
const attr_def* ZelkManager::GetAttrDefinition(const rxblk& link, const char* name,
                                               const char* db) const {
  return Attributes::definition(*this, link, name, db);
}

zelk_attr_value_t ZelkManager::GetAttrValue(const symblk& node, const char* name) {
  return Attributes::value(*this, node, name);
}
ZelkStatus ZelkManager::GetAttrValueEx(const symblk& node, const char* name,
                                       zelk_attr_value_t& value, const char* db) {
  return Attributes::value_ex(*this, node, name, value, db);
}
bool ZelkManager::IsAttrValueDefined(const symblk& node, const char* name) const {
  return zelk::find_attribute_value(node.attrs, name) != nullptr;
}

zelk_attr_value_t ZelkManager::GetAttrValue(const msgblk& message, const char* name) {
  return Attributes::value(*this, message, name);
}
ZelkStatus ZelkManager::GetAttrValueEx(const msgblk& message, const char* name,
                                       zelk_attr_value_t& value, const char* db) {
  return Attributes::value_ex(*this, message, name, value, db);
}
bool ZelkManager::IsAttrValueDefined(const msgblk& message, const char* name) const {
  return zelk::find_attribute_value(message.attrs, name) != nullptr;
}

zelk_attr_value_t ZelkManager::GetAttrValue(const env_var_blk& variable, const char* name) {
  return Attributes::value(*this, variable, name);
}
ZelkStatus ZelkManager::GetAttrValueEx(const env_var_blk& variable, const char* name,
                                       zelk_attr_value_t& value, const char* db) {
  return Attributes::value_ex(*this, variable, name, value, db);
}
bool ZelkManager::IsAttrValueDefined(const env_var_blk& variable, const char* name) const {
  return zelk::find_attribute_value(variable.attrs, name) != nullptr;
}

zelk_attr_value_t ZelkManager::GetAttrValue(const sigtype& type, const char* name) {
  return Attributes::value(*this, type, name);
}
ZelkStatus ZelkManager::GetAttrValueEx(const sigtype& type, const char* name,
                                       zelk_attr_value_t& value, const char* db) {
  return Attributes::value_ex(*this, type, name, value, db);
}
bool ZelkManager::IsAttrValueDefined(const sigtype& type, const char* name) const {
  return zelk::find_attribute_value(type.attrs, name) != nullptr;
}

zelk_attr_value_t ZelkManager::GetAttrValue(const sigblk& signal, const char* name) {
  return Attributes::value(*this, signal, name);
}
ZelkStatus ZelkManager::GetAttrValueEx(const sigblk& signal, const char* name,
                                       zelk_attr_value_t& value, const char* db) {
  return Attributes::value_ex(*this, signal, name, value, db);
}
bool ZelkManager::IsAttrValueDefined(const sigblk& signal, const char* name) const {
  return zelk::find_attribute_value(signal.attrs, name) != nullptr;
}

zelk_attr_value_t ZelkManager::GetAttrValue(const rxblk& link, const char* name) {
  return Attributes::value(*this, link, name);
}
ZelkStatus ZelkManager::GetAttrValueEx(const rxblk& link, const char* name,
                                       zelk_attr_value_t& value, const char* db) {
  return Attributes::value_ex(*this, link, name, value, db);
}
bool ZelkManager::IsAttrValueDefined(const rxblk& link, const char* name) const {
  return zelk::find_attribute_value(link.attrs, name) != nullptr;
}

// Lookups of objects across the databases of a manager.

#include <cstdint>

#include "base/list.hpp"
#include "database/lookup.hpp"
#include "model/inline_name.hpp"
#include "zelk/manager.hpp"
#include "zelk/query.h"

namespace {

using zelk::DatabaseLookup;
using Node = ZelkManager::DbListNode;

// What finds an object in one database.

template <typename Record>
auto named(const char* name) {
  return [name](const ZelkDatabase& database) {
    return DatabaseLookup::named<Record>(database, name);
  };
}

auto message(unsigned long id) {
  return [id](const ZelkDatabase& database) {
    return DatabaseLookup::message(database, static_cast<std::uint32_t>(id));
  };
}

auto j1939_message(unsigned long id, unsigned long flags) {
  return [id, flags](const ZelkDatabase& database) {
    return DatabaseLookup::j1939_message(database, static_cast<std::uint32_t>(id),
                                         static_cast<std::uint32_t>(flags));
  };
}

auto bit_timing(unsigned short baudrate) {
  return [baudrate](const ZelkDatabase& database) -> const btlblk* {
    return zelk_get_btlblk(database.bit_timings, baudrate);
  };
}

auto category(const char* name) {
  return [name](const ZelkDatabase& database) -> const cat* {
    return name ? zelk::find_inline_name(database.categories, name) : nullptr;
  };
}

}  // namespace

/// The ways to choose among the databases; the overloads of `look_up` have the last parameters of
/// the lookups. The manager notes which database answered: who may change what was found marks it.
struct zelk::ManagerLookups {
  /// The first answer of the databases that `accepts` takes, in list order.
  template <typename Find, typename Accepts>
  static auto first(ZelkManager& manager, Find find, const char** db_name, Accepts accepts)
      -> decltype(find(manager.databases_->database)) {
    for (const Node& node : each<const Node>(manager.databases_)) {
      const auto found = accepts(node) ? find(node.database) : nullptr;
      if (!found) continue;
      if (db_name) *db_name = node.name;
      manager.answered_ = &node.database;
      return found;
    }
    return nullptr;
  }

  template <typename Find>
  static auto look_up(ZelkManager& manager, Find find, const char** db_name) {
    return first(manager, find, db_name, [](const Node&) { return true; });
  }

  template <typename Find>
  static auto look_up(ZelkManager& manager, Find find, const char* db) {
    if (!db) return look_up(manager, find, static_cast<const char**>(nullptr));
    const Node* const node = manager.ListFindDatabase(db);
    if (node) manager.answered_ = &node->database;
    return node ? find(node->database) : nullptr;
  }

  template <typename Find>
  static auto look_up(ZelkManager& manager, Find find, const ZelkSelection& selection,
                      const char** db_name = nullptr) {
    manager.status_ = ZelkStatusOk;
    auto found = first(manager, find, db_name,
                       [&](const Node& node) { return node.pattern.IsExact(selection); });
    if (found) return found;
    manager.status_ = ZelkStatusNotFound;
    found = first(manager, find, db_name, [&](const Node& node) {
      return !node.pattern.IsExact(selection) && node.pattern.IsPartial(selection);
    });
    if (found) return found;
    return first(manager, find, db_name,
                 [](const Node& node) { return node.pattern.IsCatchAll(); });
  }
};

using Lookups = zelk::ManagerLookups;

const symblk* ZelkManager::GetNode(const char* name, const char* db) {
  return Lookups::look_up(*this, named<symblk>(name), db);
}
const symblk* ZelkManager::GetNode(const char* name, const char** db_name) {
  return Lookups::look_up(*this, named<symblk>(name), db_name);
}
const symblk* ZelkManager::GetNode(const char* name, const ZelkSelection& selection) {
  return Lookups::look_up(*this, named<symblk>(name), selection);
}
const symblk* ZelkManager::GetNode(const char* name, const ZelkSelection& selection,
                                   const char** db_name) {
  return Lookups::look_up(*this, named<symblk>(name), selection, db_name);
}

const msgblk* ZelkManager::GetMessage(const char* name, const char* db) {
  return Lookups::look_up(*this, named<msgblk>(name), db);
}
const msgblk* ZelkManager::GetMessage(const char* name, const char** db_name) {
  return Lookups::look_up(*this, named<msgblk>(name), db_name);
}
const msgblk* ZelkManager::GetMessage(const char* name, const ZelkSelection& selection) {
  return Lookups::look_up(*this, named<msgblk>(name), selection);
}
const msgblk* ZelkManager::GetMessage(const char* name, const ZelkSelection& selection,
                                      const char** db_name) {
  return Lookups::look_up(*this, named<msgblk>(name), selection, db_name);
}

const msgblk* ZelkManager::GetMessage(unsigned long id, const char* db) {
  return Lookups::look_up(*this, message(id), db);
}
const msgblk* ZelkManager::GetMessage(unsigned long id, const char** db_name) {
  return Lookups::look_up(*this, message(id), db_name);
}
const msgblk* ZelkManager::GetMessage(unsigned long id, const ZelkSelection& selection) {
  return Lookups::look_up(*this, message(id), selection);
}
const msgblk* ZelkManager::GetMessage(unsigned long id, const ZelkSelection& selection,
                                      const char** db_name) {
  return Lookups::look_up(*this, message(id), selection, db_name);
}

const msgblk* ZelkManager::GetJ1939Message(unsigned long id, unsigned long flags, const char* db) {
  return Lookups::look_up(*this, j1939_message(id, flags), db);
}
const msgblk* ZelkManager::GetJ1939Message(unsigned long id, unsigned long flags,
                                           const char** db_name) {
  return Lookups::look_up(*this, j1939_message(id, flags), db_name);
}
const msgblk* ZelkManager::GetJ1939Message(unsigned long id, unsigned long flags,
                                           const ZelkSelection& selection) {
  return Lookups::look_up(*this, j1939_message(id, flags), selection);
}
const msgblk* ZelkManager::GetJ1939Message(unsigned long id, unsigned long flags,
                                           const ZelkSelection& selection, const char** db_name) {
  return Lookups::look_up(*this, j1939_message(id, flags), selection, db_name);
}

const env_var_blk* ZelkManager::GetEnvvar(const char* name, const char* db) {
  return Lookups::look_up(*this, named<env_var_blk>(name), db);
}
const env_var_blk* ZelkManager::GetEnvvar(const char* name, const char** db_name) {
  return Lookups::look_up(*this, named<env_var_blk>(name), db_name);
}
const env_var_blk* ZelkManager::GetEnvvar(const char* name, const ZelkSelection& selection) {
  return Lookups::look_up(*this, named<env_var_blk>(name), selection);
}
const env_var_blk* ZelkManager::GetEnvvar(const char* name, const ZelkSelection& selection,
                                          const char** db_name) {
  return Lookups::look_up(*this, named<env_var_blk>(name), selection, db_name);
}

const btlblk* ZelkManager::GetBitTiming(unsigned short baudrate, const char* db) {
  return Lookups::look_up(*this, bit_timing(baudrate), db);
}
const btlblk* ZelkManager::GetBitTiming(unsigned short baudrate, const char** db_name) {
  return Lookups::look_up(*this, bit_timing(baudrate), db_name);
}
const btlblk* ZelkManager::GetBitTiming(unsigned short baudrate, const ZelkSelection& selection) {
  return Lookups::look_up(*this, bit_timing(baudrate), selection);
}
const btlblk* ZelkManager::GetBitTiming(unsigned short baudrate, const ZelkSelection& selection,
                                        const char** db_name) {
  return Lookups::look_up(*this, bit_timing(baudrate), selection, db_name);
}

const cat* ZelkManager::GetCategory(const char* name, const char* db) {
  return Lookups::look_up(*this, category(name), db);
}
const cat* ZelkManager::GetCategory(const char* name, const char** db_name) {
  return Lookups::look_up(*this, category(name), db_name);
}

const sigtype* ZelkManager::GetSignalType(const char* name, const char* db) {
  return Lookups::look_up(*this, named<sigtype>(name), db);
}
const sigtype* ZelkManager::GetSignalType(const char* name, const char** db_name) {
  return Lookups::look_up(*this, named<sigtype>(name), db_name);
}
const sigtype* ZelkManager::GetSignalType(const char* name, const ZelkSelection& selection) {
  return Lookups::look_up(*this, named<sigtype>(name), selection);
}
const sigtype* ZelkManager::GetSignalType(const char* name, const ZelkSelection& selection,
                                          const char** db_name) {
  return Lookups::look_up(*this, named<sigtype>(name), selection, db_name);
}

const valtable* ZelkManager::GetValueTable(const char* name, const char* db) {
  return Lookups::look_up(*this, named<valtable>(name), db);
}
const valtable* ZelkManager::GetValueTable(const char* name, const char** db_name) {
  return Lookups::look_up(*this, named<valtable>(name), db_name);
}
const valtable* ZelkManager::GetValueTable(const char* name, const ZelkSelection& selection) {
  return Lookups::look_up(*this, named<valtable>(name), selection);
}
const valtable* ZelkManager::GetValueTable(const char* name, const ZelkSelection& selection,
                                           const char** db_name) {
  return Lookups::look_up(*this, named<valtable>(name), selection, db_name);
}

const attr_def* ZelkManager::GetAttrDefinition(const char* name, const char* db) {
  return Lookups::look_up(*this, named<attr_def>(name), db);
}
const attr_def* ZelkManager::GetAttrDefinition(const char* name, const char** db_name) {
  return Lookups::look_up(*this, named<attr_def>(name), db_name);
}

// --- In one object ---

const sigblk* ZelkManager::GetSignal(const msgblk& message, const char* name) const {
  return name ? zelk::find_name(static_cast<const sigblk*>(message.signals), name) : nullptr;
}

const siggroupblk* ZelkManager::GetSignalGroup(const msgblk& message, const char* name) const {
  return name ? zelk::find_name(static_cast<const siggroupblk*>(message.siggroups), name) : nullptr;
}

const sigblk* ZelkManager::GetSignal(const siggroupblk& group, const char* name) const {
  if (!name) return nullptr;
  const siglistblk* const member = zelk::find_first(
      static_cast<const siglistblk*>(group.signals), [name](const siglistblk& entry) {
        return entry.signal && zelk::same_text(entry.signal->name, name);
      });
  return member ? member->signal : nullptr;
}

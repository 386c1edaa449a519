// Names and settings of open databases, and what else is asked about one by its name.

#include <string_view>
#include <utility>

#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "database/process_guard.hpp"
#include "manager/manager_tables.hpp"
#include "model/memory.hpp"
#include "model/without_raising.hpp"
#include "zelk/manager.hpp"

namespace {

constexpr int kExtendedMultiplexing = 1;

}  // namespace

const char* ZelkManager::GetUniqueDatabaseName(const char* text) {
  const DbListNode* const node = ListFindName(text);
  status_ = node ? ZelkStatusOk : ZelkStatusNotFound;
  return node ? node->name : nullptr;
}

const char* ZelkManager::GetDatabasePath(const char* text) {
  const DbListNode* const node = ListFindName(text);
  status_ = node ? ZelkStatusOk : ZelkStatusNotFound;
  return node ? node->database.path : nullptr;
}

bool ZelkManager::IsDatabaseName(const char* db) { return ListFindDatabase(db) != nullptr; }

ZelkDatabase* ZelkManager::GetDatabase(const char* db) {
  const ZelkDatabase* const database = FindDatabase(db);
  return database ? database->HandOut(database) : nullptr;
}

const ZelkDatabase* ZelkManager::GetConstDatabase(const char* db) { return FindDatabase(db); }

const ZelkDatabase* ZelkManager::GetDatabase(const char* db) const {
  const DbListNode* const node = ListFindNode(db);
  return node ? &node->database : nullptr;
}

ZelkDatabase* ZelkManager::FindDatabase(const char* db) {
  const DbListNode* const node = ListFindDatabase(db);
  return node ? &Changeable(*node) : nullptr;
}

const char* ZelkManager::GetDatabaseName(const char* path) {
  const char* name = nullptr;
  const bool is_found = zelk::without_raising(false, [&] {
    if (const DbListNode* const open = ListFindPath(path)) {
      name = open->name;
      return true;
    }
    if (GetDatabaseFileInfo(path) != ZelkErrorOk) return false;
    ZelkDatabase& database = AssignDatabase(path);
    name = database.GetDefaultName();
    ReleaseDatabase(database, true);
    return name != nullptr;
  });
  status_ = is_found ? ZelkStatusOk : ZelkStatusNotFound;
  return name;
}

ZelkError ZelkManager::SetDatabaseName(const char* db, const char** name, const char* new_name) {
  DbListNode* const node = ListFindDatabase(db);
  if (!node) return ZelkErrorNoDatabase;
  if (!ZelkVerifyDatabaseName(new_name)) return ZelkErrorInvalidName;
  const DbListNode* const holder = ListFindName(new_name);
  if (holder && holder != node) return ZelkErrorNameUsed;
  if (!holder && !Rename(*node, new_name)) return ZelkErrorNoDatabase;
  if (name) *name = node->name;
  return ZelkErrorOk;
}

/// @return false when memory runs out
bool ZelkManager::Rename(DbListNode& node, const char* name) {
  return zelk::without_raising([&] {
    zelk::OwnedText copy = zelk::copy_text(name);
    const zelk::ProcessGuard guard;
    tables_->rename(node, copy.get());
    zelk::assign_text(node.name, std::move(copy));
  });
}

bool ZelkManager::GetDefaultDatabaseName(const char* db, char* buffer, std::size_t size) {
  const ZelkDatabase* const database = FindDatabase(db);
  if (!database) return false;
  const zelk::OwnedText name(database->GetDefaultName());
  if (!name || !buffer || size == 0) return false;
  const std::string_view whole = name.get();
  buffer[whole.copy(buffer, size - 1)] = '\0';
  return whole.size() < size;
}

bool ZelkManager::AssignSelectionPattern(const ZelkSelectionPattern& pattern, const char* db) {
  DbListNode* const node = ListFindDatabase(db);
  if (node) node->pattern = pattern;
  return node != nullptr;
}

const ZelkSelectionPattern& ZelkManager::GetSelectionPattern(const char* db) {
  static constexpr ZelkSelectionPattern kNone = {0, 0};
  const DbListNode* const node = ListFindDatabase(db);
  return node ? node->pattern : kNone;
}

const char* ZelkManager::GetDbNameBySelectionPattern(const ZelkSelection& selection) {
  status_ = ZelkStatusOk;
  const DbListNode* partial = nullptr;
  const DbListNode* any = nullptr;
  for (const DbListNode& node : zelk::each(databases_)) {
    if (node.pattern.IsExact(selection)) return node.name;
    if (node.pattern.IsPartial(selection)) partial = &node;
    if (node.pattern.IsCatchAll()) any = &node;
  }
  status_ = ZelkStatusNotFound;
  const DbListNode* const best = partial ? partial : any;
  return best ? best->name : nullptr;
}

unsigned ZelkManager::GetPriority(const char* db) {
  const DbListNode* const node = ListFindDatabase(db);
  return node ? node->priority : 0;
}

bool ZelkManager::AssignDatabaseInfo(void* info, const char* db) {
  DbListNode* const node = ListFindDatabase(db);
  if (node) node->info = info;
  return node != nullptr;
}

void* ZelkManager::GetDatabaseInfo(const char* db) {
  const DbListNode* const node = ListFindDatabase(db);
  return node ? node->info : nullptr;
}

unsigned ZelkManager::DatabaseCount() const {
  return static_cast<unsigned>(zelk::each(databases_).size());
}

bool ZelkManager::SymbolsShortenedOnRead(const char* db) {
  const ZelkDatabase* const database = FindDatabase(db);
  return database && database->SymbolsShortenedOnRead();
}

// --- Features ---

namespace {

bool uses_extended_multiplexing(const msgblk& message) {
  const sigblk* multiplexor = nullptr;
  for (const sigblk& signal : zelk::each(message.signals)) {
    if (zelk::has_several_values(signal)) return true;
    if (!signal.mux_signal) continue;
    if (zelk::is_multiplexor(signal)) return true;
    if (multiplexor && multiplexor != signal.mux_signal) return true;
    multiplexor = signal.mux_signal;
  }
  return false;
}

}  // namespace

int ZelkManager::IsNewFeatureUsed(int feature, const char* db) {
  if (!IsSavingOfNewFeaturePossible(feature)) return -1;
  const ZelkDatabase* const database = FindDatabase(db);
  const msgblk* const messages = database ? database->messages : nullptr;
  return zelk::find_first(messages, uses_extended_multiplexing) ? 1 : 0;
}

bool ZelkManager::IsSavingOfNewFeaturePossible(int feature) const {
  return feature == kExtendedMultiplexing;
}

// Sharing databases: managers that open one unchanged file get one database.

#include <memory>

#include "database/process_guard.hpp"
#include "database/registry.hpp"
#include "zelk/manager.hpp"

/// Another thread may read the same file at the same time: the first one lists its database, and
/// the other one takes that.
ZelkDatabase& ZelkDatabase::CreateDatabase(const char* file) {
  ZelkDatabase* const found = file ? HoldListed(file) : nullptr;
  if (found) return *found;
  std::unique_ptr<ZelkDatabase, void (*)(ZelkDatabase*)> database(
      new ZelkDatabase(file), [](ZelkDatabase* own) { delete own; });
  const zelk::ProcessGuard guard;
  ZelkDatabase* const earlier = file ? HoldListed(file) : nullptr;
  if (earlier) return *earlier;
  ListInsertDb(*database);
  return *database.release();
}

/// The listed database of a file, with one more hold and one mark less; null when there is none, or
/// only a part of it has been read, so that it is read again.
ZelkDatabase* ZelkDatabase::HoldListed(const char* file) {
  const zelk::ProcessGuard guard;
  ZelkDatabase* const found = ListFindDb(file);
  if (!found || found->is_incomplete_) return nullptr;
  ++found->ref_count;
  if (found->cache_count > 0) --found->cache_count;
  return found;
}

void ZelkDatabase::DestroyDatabase(ZelkDatabase& database, bool keep_in_cache) {
  const zelk::ProcessGuard guard;
  --database.ref_count;
  if (keep_in_cache) {
    ++database.cache_count;
  } else if (database.ref_count == 0 && database.cache_count == 0) {
    Destroy(database);
  }
}

void ZelkDatabase::Destroy(ZelkDatabase& database) {
  ZelkManager::ForgetCached(database);
  ListRemoveDb(database);
  delete &database;
}

void ZelkDatabase::ReleaseCache() {
  const zelk::ProcessGuard guard;
  const auto& list = zelk::registry().all();
  for (auto entry = list.begin(); entry != list.end();) {
    ZelkDatabase& database = **entry++;
    if (database.ref_count == 0) Destroy(database);
  }
}

void ZelkDatabase::ListInsertDb(ZelkDatabase& database) {
  const zelk::ProcessGuard guard;
  zelk::registry().insert(database);
}

void ZelkDatabase::ListRemoveDb(ZelkDatabase& database) {
  const zelk::ProcessGuard guard;
  zelk::registry().remove(database);
}

ZelkDatabase* ZelkDatabase::ListFindDb(const char* file) {
  if (!file) return nullptr;
  const zelk::platform::FilePath path(file);
  const zelk::ProcessGuard guard;
  return zelk::registry().find(path);
}

/// Whether a write would replace another instance of its target. Of the own file that is what a
/// write is for, unless a write manager, which may be the own one, edits some instance of it.
bool ZelkDatabase::BelongsToAnother(const char* target) const {
  const zelk::ProcessGuard guard;
  if (target) {
    const ZelkDatabase* const owner = ListFindDb(target);
    return owner && owner != this;
  }
  const std::string own_file = OwnFile();
  const auto is_edited_elsewhere = [&](const ZelkDatabase& other) {
    return &other != this && ZelkManager::IsEdited(other, own_file.c_str());
  };
  return !zelk::registry().of(own_file.c_str(), is_edited_elsewhere).empty();
}

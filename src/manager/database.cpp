#include "zelk/database.hpp"

#include <algorithm>
#include <forward_list>
#include <new>
#include <utility>

#include "manager/copier.hpp"
#include "manager/database_index.hpp"
#include "manager/database_list.hpp"
#include "manager/list_ends.hpp"
#include "model/errors.hpp"
#include "model/memory.hpp"
#include "platform/platform.hpp"
#include "writer/write.hpp"
#include "zelk/dbc.h"
#include "zelk/exception.hpp"
#include "zelk/manager.hpp"

namespace zelk {

std::forward_list<ZelkDatabase*>& database_list() {
  static std::forward_list<ZelkDatabase*> list;
  return list;
}

bool is_file_of(const ZelkDatabase& database, const char* path) {
  if (!database.path || !path || !platform::is_same_path(database.path, path)) return false;
  const auto status = platform::file_status(path);
  return status && status->modified.ticks == database.file_time;
}

ZelkError writability(const char* path) {
  const auto status = platform::file_status(path);
  if (!status) return ZelkErrorFileNotFound;
  return status->owner_may_write ? ZelkErrorOk : ZelkErrorReadOnly;
}

namespace {

/// @return 0 when there is no file
/// @throws std::bad_alloc
std::int64_t modification_time(const char* path) {
  const auto status = platform::file_status(path);
  return status ? status->modified.ticks : 0;
}

/// 0 also when there is no memory to ask: a file that has been saved is saved, only that nobody
/// finds its database by it.
std::int64_t time_of_saved(const char* path) try {
  return modification_time(path);
} catch (const std::bad_alloc&) {
  return 0;
}

}  // namespace
}  // namespace zelk

ZelkDatabase::ZelkDatabase() { zelk::assign_text(user_data, zelk::copy_text("")); }

ZelkDatabase::ZelkDatabase(const char* file) : ZelkDatabase() {
  if (!file) return;
  zelk::assign_text(path, zelk::copy_text(file));
  file_time = zelk::modification_time(path);
  ReadFile();
}

ZelkDatabase::ZelkDatabase(const ZelkDatabase& other) : ZelkDatabase() {
  zelk::DatabaseCopier(other, *this).copy();
  symbols_shortened = other.symbols_shortened;
  write_ext_mux = other.write_ext_mux;
}

ZelkDatabase& ZelkDatabase::operator=(const ZelkDatabase& other) {
  if (this == &other) return *this;
  const std::uint8_t own_symbols_shortened = symbols_shortened;
  Clear();
  zelk::DatabaseCopier(other, *this).copy();
  symbols_shortened = own_symbols_shortened;
  return *this;
}

ZelkDatabase::~ZelkDatabase() {
  Clear();
  zelk_mfree(path);
}

/// The reader's mark for shortened names belongs to the process; it becomes the database's also
/// when the file turns out to be faulty.
void ZelkDatabase::ReadFile() {
  zelk_reset_symbols_shortened();
  const auto keep_mark = [this] {
    symbols_shortened = static_cast<std::uint8_t>(zelk_symbols_shortened());
  };
  try {
    zelk_read(path, &nodes, &messages, &env_vars, &bit_timings, &attr_defs, &attr_values,
              &categories, &filter, &comment, &user_data, &signal_types, &value_tables,
              predefined.slots);
  } catch (...) {
    keep_mark();
    throw;
  }
  keep_mark();
}

bool ZelkDatabase::operator==(const ZelkDatabase& other) const {
  return this == &other || IsPathEqual(other.path);
}

bool ZelkDatabase::IsPathEqual(const char* file) const try {
  return zelk::is_file_of(*this, file);
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return false;
}

ZelkError ZelkDatabase::ReopenDatabaseFile() {
  if (!path) return ZelkErrorFileNotFound;
  Clear();
  try {
    zelk::assign_text(user_data, zelk::copy_text(""));
    ReadFile();
  } catch (const ZelkException&) {
    return ZelkErrorNoDatabase;
  }
  return ZelkErrorOk;
}

ZelkError ZelkDatabase::Write(const char* file) {
  if (!file && !path) return ZelkErrorFileNotFound;
  try {
    const ZelkDatabase* owner = file ? ListFindDb(file) : nullptr;
    if (owner && owner != this) return ZelkErrorFileBelongs;
    return WriteOwn(file ? file : path);
  } catch (const std::bad_alloc&) {
    zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  } catch (const ZelkException&) {  // has told of itself in the error text
  }
  return ZelkErrorNotWritten;
}

/// Writes to `target`, which becomes the database's own file when it can be written.
ZelkError ZelkDatabase::WriteOwn(const char* target) {
  const ZelkError found = zelk::writability(target);
  if (found != ZelkErrorOk && found != ZelkErrorFileNotFound) return found;
  if (target != path) zelk::assign_text(path, zelk::copy_text(target));
  if (symbols_shortened) {
    zelk_note(ZELK_ERR_SHORTENED, zelk::kNoLine, nullptr);
    return ZelkErrorNotWritten;
  }
  const zelk::ModelView model = {nodes,     messages,    env_vars,     bit_timings,
                                 attr_defs, attr_values, categories,   filter,
                                 comment,   user_data,   signal_types, value_tables};
  // Saving changes the time of the file, by which another instance of it is found.
  ZelkDatabase* const listed = FindListed();
  if (!zelk::save(path, model, write_ext_mux != 0)) return ZelkErrorNotWritten;
  file_time = zelk::time_of_saved(path);
  if (listed) {
    *listed = *this;
    listed->file_time = file_time;
  }
  return ZelkErrorOk;
}

void ZelkDatabase::Commit() try {
  ZelkDatabase* const listed = FindListed();
  if (listed) *listed = *this;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
}

/// Another instance of this database's file, which the process's list has; null when there is none.
ZelkDatabase* ZelkDatabase::FindListed() const {
  ZelkDatabase* const listed = path ? ListFindDb(path) : nullptr;
  return listed == this ? nullptr : listed;
}

void ZelkDatabase::Clear() {
  DropIndex();
  zelk_free(std::exchange(nodes, nullptr), std::exchange(messages, nullptr),
            std::exchange(env_vars, nullptr), std::exchange(bit_timings, nullptr),
            std::exchange(attr_defs, nullptr), std::exchange(attr_values, nullptr),
            std::exchange(categories, nullptr), &filter, std::exchange(comment, nullptr),
            std::exchange(user_data, nullptr), std::exchange(signal_types, nullptr),
            std::exchange(value_tables, nullptr));
  filter = {};
  symbols_shortened = 0;
  predefined.ClearAll();
}

// --- The process-wide list ---

ZelkDatabase& ZelkDatabase::CreateDatabase(const char* file) {
  ZelkDatabase* const found = file ? ListFindDb(file) : nullptr;
  if (found) {
    ++found->ref_count;
    if (found->cache_count > 0) --found->cache_count;
    return *found;
  }
  auto* const database = new ZelkDatabase(file);
  try {
    ListInsertDb(*database);
  } catch (...) {
    delete database;
    throw;
  }
  return *database;
}

void ZelkDatabase::DestroyDatabase(ZelkDatabase& database, bool keep_in_cache) {
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
  auto& list = zelk::database_list();
  for (auto entry = list.begin(); entry != list.end();) {
    ZelkDatabase& database = **entry++;
    if (database.ref_count == 0) Destroy(database);
  }
}

void ZelkDatabase::ListInsertDb(ZelkDatabase& database) {
  zelk::database_list().push_front(&database);
}

void ZelkDatabase::ListRemoveDb(ZelkDatabase& database) { zelk::database_list().remove(&database); }

ZelkDatabase* ZelkDatabase::ListFindDb(const char* file) {
  auto& list = zelk::database_list();
  const auto found = std::find_if(list.begin(), list.end(), [file](const ZelkDatabase* database) {
    return zelk::is_file_of(*database, file);
  });
  return found == list.end() ? nullptr : *found;
}

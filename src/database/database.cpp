#include "zelk/database.hpp"

#include <memory>
#include <new>
#include <string>
#include <utility>

#include "database/copier.hpp"
#include "database/database_index.hpp"
#include "database/list_ends.hpp"
#include "database/process_lists.hpp"
#include "model/errors.hpp"
#include "model/memory.hpp"
#include "writer/write.hpp"
#include "zelk/dbc.h"
#include "zelk/exception.hpp"
#include "zelk/manager.hpp"

namespace zelk {
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

/// A hold on a database, given back when this goes.
class Hold {
 public:
  explicit Hold(ZelkDatabase* database) : database_(database) {
    if (database_) ++database_->ref_count;
  }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;
  ~Hold() { DatabaseFile::release(database_); }

  ZelkDatabase* database() const { return database_; }

 private:
  ZelkDatabase* database_;
};

/// Takes a mark away when this goes.
class Unmarking {
 public:
  explicit Unmarking(bool& mark) : mark_(mark) {}
  Unmarking(const Unmarking&) = delete;
  Unmarking& operator=(const Unmarking&) = delete;
  ~Unmarking() {
    const ListGuard guard;
    mark_ = false;
  }

 private:
  bool& mark_;
};

}  // namespace

void DatabaseFile::release(ZelkDatabase* database) {
  constexpr bool kKeepInCache = false;
  if (database) ZelkDatabase::DestroyDatabase(*database, kKeepInCache);
}

}  // namespace zelk

ZelkDatabase::ZelkDatabase() { zelk::assign_text(user_data, zelk::copy_text("")); }

ZelkDatabase::ZelkDatabase(const char* file) : ZelkDatabase() {
  if (!file) return;
  SetFile(file);
  file_time = zelk::modification_time(file);
  ReadFile();
}

ZelkDatabase::ZelkDatabase(const ZelkDatabase& other) : ZelkDatabase() {
  CopyFrom(other);
  symbols_shortened = other.symbols_shortened;
  write_ext_mux = other.write_ext_mux;
}

ZelkDatabase& ZelkDatabase::operator=(const ZelkDatabase& other) {
  if (this == &other) return *this;
  const std::uint8_t own_symbols_shortened = symbols_shortened;
  Clear();
  CopyFrom(other);
  symbols_shortened = own_symbols_shortened;
  return *this;
}

/// A copy that lacks a list is as incomplete as one that was not read whole.
void ZelkDatabase::CopyFrom(const ZelkDatabase& other) {
  const bool has_lists = zelk::DatabaseCopier(other, *this).copy();
  is_incomplete_ = other.is_incomplete_;
  if (!TakeFileOf(other) || !has_lists) is_incomplete_ = true;
}

ZelkDatabase::~ZelkDatabase() {
  Clear();
  zelk_mfree(path);
}

// --- Which file it is ---

void ZelkDatabase::SetFile(const char* file) {
  auto identity = std::make_shared<const zelk::platform::FilePath>(file);
  SetFile(zelk::copy_text(file).release(), std::move(identity));
}

/// @param text  taken over
void ZelkDatabase::SetFile(char* text, std::shared_ptr<const zelk::platform::FilePath> file) {
  zelk::OwnedText owned(text);
  const zelk::ListGuard guard;
  zelk::process_lists().databases.rekey(*this, file ? file->key : "");
  zelk::assign_text(path, std::move(owned));
  file_ = std::move(file);
}

/// @return false, with the own file as it was, when memory runs out
bool ZelkDatabase::TakeFileOf(const ZelkDatabase& other) try {
  SetFile(other.path ? zelk::copy_text(other.path).release() : nullptr,
          zelk::DatabaseFile::of(other));
  is_file_new_ = other.is_file_new_;
  return true;
} catch (const ZelkException&) {  // already reported: raising appends to the error text
  return false;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return false;
}

/// The own file's path, which leads to it wherever the working folder has moved.
std::string ZelkDatabase::OwnFile() const {
  const auto file = zelk::DatabaseFile::of(*this);
  const bool has_moved = zelk::platform::FilePath(path).absolute != file->absolute;
  return has_moved ? file->absolute : path;
}

// --- Reading and writing ---

/// The reader's mark for shortened names becomes the database's also when the file turns out to be
/// faulty.
void ZelkDatabase::ReadFile() {
  const auto keep_mark = [this] {
    symbols_shortened = static_cast<std::uint8_t>(zelk_symbols_shortened());
  };
  is_incomplete_ = true;
  zelk_reset_symbols_shortened();
  std::uint32_t error = ZELK_OK;
  try {
    error = zelk_read(OwnFile().c_str(), &nodes, &messages, &env_vars, &bit_timings, &attr_defs,
                      &attr_values, &categories, &filter, &comment, &user_data, &signal_types,
                      &value_tables, predefined.slots);
  } catch (...) {
    keep_mark();
    throw;
  }
  keep_mark();
  // Only where memory runs out does the reader give up without raising.
  if (error != ZELK_OK) zelk_report(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr, 1);
  is_incomplete_ = is_file_new_ = false;
}

bool ZelkDatabase::operator==(const ZelkDatabase& other) const try {
  if (this == &other) return true;
  const auto file = zelk::DatabaseFile::of(other);
  return file && zelk::is_file_of(*this, *file);
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return false;
}

bool ZelkDatabase::IsPathEqual(const char* file) const try {
  return file && zelk::is_file_of(*this, file);
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return false;
}

ZelkError ZelkDatabase::ReopenDatabaseFile() {
  if (!path) return ZelkErrorFileNotFound;
  Clear();
  is_incomplete_ = true;
  try {
    zelk::assign_text(user_data, zelk::copy_text(""));
    ReadFile();
    return ZelkErrorOk;
  } catch (const std::bad_alloc&) {
    zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  } catch (const ZelkException&) {  // already reported: raising appends to the error text
  }
  return ZelkErrorNoDatabase;
}

ZelkError ZelkDatabase::Write(const char* file) {
  if (!file && !path) return ZelkErrorFileNotFound;
  try {
    return BelongsToAnother(file) ? ZelkErrorFileBelongs : WriteOwn(file);
  } catch (const std::bad_alloc&) {
    zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  } catch (const ZelkException&) {  // already reported: raising appends to the error text
  }
  return ZelkErrorNotWritten;
}

/// Whether a write would replace another instance of its target. Of the own file that is what a
/// write is for, unless a write manager, which may be the own one, edits that instance.
bool ZelkDatabase::BelongsToAnother(const char* target) const {
  const zelk::ListGuard guard;
  if (target) {
    const ZelkDatabase* const owner = ListFindDb(target);
    return owner && owner != this;
  }
  const ZelkDatabase* const listed = FindListed();
  return listed && ZelkManager::IsEdited(*listed, OwnFile().c_str());
}

/// Writes to `file`, which becomes the database's own when it can be written; null: to its own.
ZelkError ZelkDatabase::WriteOwn(const char* file) {
  const bool is_own =
      path && (!file || zelk::platform::is_same_path(*zelk::DatabaseFile::of(*this), file));
  const std::string target = file ? file : OwnFile();
  const ZelkError found = zelk::writability(target.c_str());
  const bool is_there = found != ZelkErrorFileNotFound;
  if (is_own && is_file_new_ && is_there) return ZelkErrorFileBelongs;
  if (is_there && found != ZelkErrorOk) return found;
  if (file) SetFile(file);
  if (!is_own) is_file_new_ = !is_there;
  return MayBeSaved() ? Save(target.c_str()) : ZelkErrorNotWritten;
}

bool ZelkDatabase::MayBeSaved() const {
  if (symbols_shortened) zelk_note(ZELK_ERR_SHORTENED, zelk::kNoLine, nullptr);
  if (is_incomplete_) {
    zelk_note(ZELK_ERR_WRITE, zelk::kNoLine, "only a part of it has been read or copied");
  }
  return !symbols_shortened && !is_incomplete_;
}

ZelkError ZelkDatabase::Save(const char* target) {
  const zelk::ModelView model = {nodes,     messages,    env_vars,     bit_timings,
                                 attr_defs, attr_values, categories,   filter,
                                 comment,   user_data,   signal_types, value_tables};
  // Saving changes the time of the file, by which another instance of it is found.
  const zelk::Unmarking unmarking(is_being_saved_);
  const zelk::Hold listed(StartSaving());
  if (!zelk::save(target, model, write_ext_mux != 0)) return ZelkErrorNotWritten;
  is_file_new_ = false;
  const zelk::ListGuard guard;
  file_time = zelk::time_of_saved(target);
  if (listed.database()) {
    *listed.database() = *this;
    listed.database()->file_time = file_time;
  }
  return ZelkErrorOk;
}

/// Lets other threads find the database by its file alone until it is saved: they must not take it
/// for another one while its time is not known.
///
/// @return `FindListed`
ZelkDatabase* ZelkDatabase::StartSaving() {
  const zelk::ListGuard guard;
  ZelkDatabase* const listed = FindListed();
  is_being_saved_ = true;
  return listed;
}

void ZelkDatabase::Commit() try {
  const zelk::ListGuard guard;
  ZelkDatabase* const listed = FindListed();
  if (!listed) return;
  *listed = *this;
  listed->symbols_shortened |= symbols_shortened;  // or the cut names could be saved from there
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
}

/// Another instance of this database's file, which the process's list has; null when there is none.
ZelkDatabase* ZelkDatabase::FindListed() const {
  const auto file = zelk::DatabaseFile::of(*this);
  const zelk::ListGuard guard;
  ZelkDatabase* const listed = file ? zelk::process_lists().databases.find(*file) : nullptr;
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
  is_incomplete_ = false;
  predefined.ClearAll();
}

// --- The process-wide list ---

/// Another thread may read the same file meanwhile: who is first lists it, and the other takes
/// that.
ZelkDatabase& ZelkDatabase::CreateDatabase(const char* file) {
  ZelkDatabase* const found = file ? HoldListed(file) : nullptr;
  if (found) return *found;
  std::unique_ptr<ZelkDatabase, void (*)(ZelkDatabase*)> database(
      new ZelkDatabase(file), [](ZelkDatabase* own) { delete own; });
  const zelk::ListGuard guard;
  ZelkDatabase* const earlier = file ? HoldListed(file) : nullptr;
  if (earlier) return *earlier;
  ListInsertDb(*database);
  return *database.release();
}

/// The listed database of a file, with one more hold and one mark less; null when there is none, or
/// only a part of it has been read: who opens the file gets it whole.
ZelkDatabase* ZelkDatabase::HoldListed(const char* file) {
  const zelk::ListGuard guard;
  ZelkDatabase* const found = ListFindDb(file);
  if (!found || found->is_incomplete_) return nullptr;
  ++found->ref_count;
  if (found->cache_count > 0) --found->cache_count;
  return found;
}

void ZelkDatabase::DestroyDatabase(ZelkDatabase& database, bool keep_in_cache) {
  const zelk::ListGuard guard;
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
  const zelk::ListGuard guard;
  const auto& list = zelk::database_list();
  for (auto entry = list.begin(); entry != list.end();) {
    ZelkDatabase& database = **entry++;
    if (database.ref_count == 0) Destroy(database);
  }
}

void ZelkDatabase::ListInsertDb(ZelkDatabase& database) {
  const zelk::ListGuard guard;
  zelk::process_lists().databases.insert(database);
}

void ZelkDatabase::ListRemoveDb(ZelkDatabase& database) {
  const zelk::ListGuard guard;
  zelk::process_lists().databases.remove(database);
}

ZelkDatabase* ZelkDatabase::ListFindDb(const char* file) {
  if (!file) return nullptr;
  const zelk::platform::FilePath path(file);
  const zelk::ListGuard guard;
  return zelk::process_lists().databases.find(path);
}

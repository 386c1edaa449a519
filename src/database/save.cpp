// Writing a database to its file, and committing it to another instance of that file.

#include <memory>
#include <new>
#include <string>

#include "database/file.hpp"
#include "database/heads.hpp"
#include "database/process_guard.hpp"
#include "database/registry.hpp"
#include "model/without_raising.hpp"
#include "writer/write.hpp"
#include "zelk/database.hpp"

namespace {

/// 0 when memory runs out: the file is saved then, but its database is not found by it.
std::int64_t time_of_saved(const char* path) try {
  return zelk::modification_time(path);
} catch (const std::bad_alloc&) {
  return 0;
}

/// Clears a mark at the end of a scope.
class Unmarking {
 public:
  explicit Unmarking(bool& mark) : mark_(mark) {}
  Unmarking(const Unmarking&) = delete;
  Unmarking& operator=(const Unmarking&) = delete;
  ~Unmarking() {
    const zelk::ProcessGuard guard;
    mark_ = false;
  }

 private:
  bool& mark_;
};

}  // namespace

ZelkError ZelkDatabase::Write(const char* file) {
  if (!file && !path) return ZelkErrorFileNotFound;
  return zelk::without_raising(ZelkErrorNotWritten, [&] {
    return BelongsToAnother(file) ? ZelkErrorFileBelongs : WriteOwn(file);
  });
}

/// Writes to `file`, which becomes the database's own when it can be written; null: to its own.
ZelkError ZelkDatabase::WriteOwn(const char* file) {
  const bool is_own = !file || zelk::DatabaseFile::has_path(*this, file);
  const std::string target = file ? file : OwnFile();
  const ZelkError found = zelk::writability(target.c_str());
  const bool exists = found != ZelkErrorFileNotFound;
  if (exists && is_own && is_file_new_) return ZelkErrorFileBelongs;  // somebody else has made it
  if (found == ZelkErrorReadOnly) return found;
  if (file) SetFile(file);
  if (!is_own) is_file_new_ = !exists;
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
  // Saving changes the time of the file, by which another instance of it is found.
  const Unmarking unmarking(is_being_saved_);
  const auto release = [](ZelkDatabase* held) { DestroyDatabase(*held, false); };
  const std::unique_ptr<ZelkDatabase, void (*)(ZelkDatabase*)> listed(StartSaving(), release);
  if (!zelk::save(target, zelk::view_of(*this), write_ext_mux != 0)) return ZelkErrorNotWritten;
  is_file_new_ = false;
  const zelk::ProcessGuard guard;
  file_time = time_of_saved(target);
  if (listed) {
    *listed = *this;
    listed->file_time = file_time;
  }
  return ZelkErrorOk;
}

/// Until the database is saved, other threads find it by its path alone: the time of its file is
/// about to change.
///
/// @return `FindListed`, with one more hold
ZelkDatabase* ZelkDatabase::StartSaving() {
  const zelk::ProcessGuard guard;
  ZelkDatabase* const listed = FindListed();
  if (listed) ++listed->ref_count;
  is_being_saved_ = true;
  return listed;
}

void ZelkDatabase::Commit() {
  zelk::without_raising([this] {
    const zelk::ProcessGuard guard;
    ZelkDatabase* const listed = FindListed();
    if (!listed) return;
    *listed = *this;
    listed->symbols_shortened |= symbols_shortened;  // or the cut names could be saved from there
  });
}

/// Another instance of this database's file, which the process's list has; null when there is none.
ZelkDatabase* ZelkDatabase::FindListed() const {
  const auto file = zelk::DatabaseFile::of(*this);
  const zelk::ProcessGuard guard;
  ZelkDatabase* const listed = file ? zelk::registry().find(*file) : nullptr;
  return listed == this ? nullptr : listed;
}

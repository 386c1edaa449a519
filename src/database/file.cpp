#include "database/file.hpp"

#include "database/process_guard.hpp"

namespace zelk {

DatabaseFile::Path DatabaseFile::of(const ZelkDatabase& database) {
  if (!database.path) return nullptr;
  if (database.file_ && database.file_->text == database.path) return database.file_;
  return std::make_shared<const platform::FilePath>(database.path);
}

bool DatabaseFile::has_path(const ZelkDatabase& database, const platform::FilePath& file) {
  const Path own = of(database);
  return own && platform::is_same_path(*own, file);
}

bool DatabaseFile::is(const ZelkDatabase& database, const platform::FilePath& file) {
  const ProcessGuard guard;
  if (!has_path(database, file)) return false;
  const auto status = platform::file_status(file.absolute.c_str());
  if (!status) return false;
  return database.is_being_saved_ || status->modified.ticks == database.file_time;
}

std::int64_t modification_time(const char* path) {
  const auto status = platform::file_status(path);
  return status ? status->modified.ticks : 0;
}

ZelkError writability(const char* path) {
  const auto status = platform::file_status(path);
  if (!status) return ZelkErrorFileNotFound;
  return status->owner_may_write ? ZelkErrorOk : ZelkErrorReadOnly;
}

}  // namespace zelk

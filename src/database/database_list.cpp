#include "database/database_list.hpp"

#include <algorithm>
#include <iterator>

#include "database/process_lists.hpp"

namespace zelk {

DatabaseFile::Path DatabaseFile::of(const ZelkDatabase& database) {
  if (!database.path) return nullptr;
  if (database.file_ && database.file_->text == database.path) return database.file_;
  return std::make_shared<const platform::FilePath>(database.path);
}

bool is_file_of(const ZelkDatabase& database, const platform::FilePath& file) {
  return DatabaseFile::is(database, file);
}

bool DatabaseFile::is(const ZelkDatabase& database, const platform::FilePath& file) {
  const ListGuard guard;
  const Path own = of(database);
  if (!own || !platform::is_same_path(*own, file)) return false;
  const auto status = platform::file_status(file.absolute.c_str());
  if (!status) return false;
  return database.is_being_saved_ || status->modified.ticks == database.file_time;
}

ZelkError writability(const char* path) {
  const auto status = platform::file_status(path);
  if (!status) return ZelkErrorFileNotFound;
  return status->owner_may_write ? ZelkErrorOk : ZelkErrorReadOnly;
}

const std::list<ZelkDatabase*>& database_list() { return process_lists().databases.all(); }

void DatabaseList::insert(ZelkDatabase& database) {
  const DatabaseFile::Path file = DatabaseFile::of(database);
  all_.push_front(&database);
  try {
    places_.emplace(&database, Place{all_.begin(), "", next_number_++});
    rekey(database, file ? file->key : "");
  } catch (...) {
    places_.erase(&database);
    all_.pop_front();
    throw;
  }
}

void DatabaseList::remove(const ZelkDatabase& database) noexcept {
  const auto place = places_.find(&database);
  if (place == places_.end()) return;
  remove_key(place->second.key, database);
  all_.erase(place->second.entry);
  places_.erase(place);
}

void DatabaseList::rekey(ZelkDatabase& database, const std::string& key) {
  const auto place = places_.find(&database);
  if (place == places_.end() || place->second.key == key) return;
  std::string copy = key;
  if (!key.empty()) by_key_[key].push_back(&database);
  remove_key(place->second.key, database);
  place->second.key.swap(copy);
}

void DatabaseList::remove_key(const std::string& key, const ZelkDatabase& database) noexcept {
  const auto found = by_key_.find(key);
  if (found == by_key_.end()) return;
  std::erase(found->second, &database);
  if (found->second.empty()) by_key_.erase(found);
}

std::vector<ZelkDatabase*> DatabaseList::of(const platform::FilePath& file) const {
  std::vector<ZelkDatabase*> found;
  const auto candidates = by_key_.find(file.key);
  if (candidates == by_key_.end()) return found;
  std::copy_if(candidates->second.begin(), candidates->second.end(), std::back_inserter(found),
               [&file](const ZelkDatabase* database) { return is_file_of(*database, file); });
  std::sort(found.begin(), found.end(), [this](const ZelkDatabase* a, const ZelkDatabase* b) {
    return places_.at(a).number > places_.at(b).number;
  });
  return found;
}

ZelkDatabase* DatabaseList::find(const platform::FilePath& file) const {
  const std::vector<ZelkDatabase*> found = of(file);
  return found.empty() ? nullptr : found.front();
}

std::vector<const ZelkDatabase*> DatabaseList::equal_to(const ZelkDatabase& database) const {
  std::vector<const ZelkDatabase*> equal = {&database};
  const DatabaseFile::Path file = DatabaseFile::of(database);
  if (!file) return equal;
  for (const ZelkDatabase* const other : of(*file)) {
    if (other != &database) equal.push_back(other);
  }
  return equal;
}

}  // namespace zelk

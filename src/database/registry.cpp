#include "database/registry.hpp"

#include <algorithm>
#include <iterator>

#include "database/file.hpp"
#include "platform/immortal.hpp"

namespace zelk {

DatabaseRegistry& registry() {
  static Immortal<DatabaseRegistry> databases;
  return databases.get();
}

void DatabaseRegistry::insert(ZelkDatabase& database) {
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

void DatabaseRegistry::remove(const ZelkDatabase& database) noexcept {
  const auto place = places_.find(&database);
  if (place == places_.end()) return;
  remove_key(place->second.key, database);
  all_.erase(place->second.entry);
  places_.erase(place);
}

void DatabaseRegistry::rekey(ZelkDatabase& database, const std::string& key) {
  const auto place = places_.find(&database);
  if (place == places_.end() || place->second.key == key) return;
  std::string copy = key;
  if (!key.empty()) by_key_[key].push_back(&database);
  remove_key(place->second.key, database);
  place->second.key.swap(copy);
}

void DatabaseRegistry::remove_key(const std::string& key, const ZelkDatabase& database) noexcept {
  const auto found = by_key_.find(key);
  if (found == by_key_.end()) return;
  std::erase(found->second, &database);
  if (found->second.empty()) by_key_.erase(found);
}

std::vector<ZelkDatabase*> DatabaseRegistry::of(const platform::FilePath& file,
                                                const Choice& is_wanted) const {
  std::vector<ZelkDatabase*> found;
  const auto candidates = by_key_.find(file.key);
  if (candidates == by_key_.end()) return found;
  std::copy_if(candidates->second.begin(), candidates->second.end(), std::back_inserter(found),
               [&](const ZelkDatabase* database) {
                 return (!is_wanted || is_wanted(*database)) && DatabaseFile::is(*database, file);
               });
  std::sort(found.begin(), found.end(), [this](const ZelkDatabase* a, const ZelkDatabase* b) {
    return places_.at(a).number > places_.at(b).number;
  });
  return found;
}

ZelkDatabase* DatabaseRegistry::find(const platform::FilePath& file) const {
  const std::vector<ZelkDatabase*> found = of(file);
  return found.empty() ? nullptr : found.front();
}

std::vector<const ZelkDatabase*> DatabaseRegistry::equal_to(const ZelkDatabase& database,
                                                            const Choice& is_wanted) const {
  std::vector<const ZelkDatabase*> equal = {&database};
  const DatabaseFile::Path file = DatabaseFile::of(database);
  if (!file) return equal;
  const auto others = of(*file, [&](const ZelkDatabase& other) {
    return &other != &database && (!is_wanted || is_wanted(other));
  });
  equal.insert(equal.end(), others.begin(), others.end());
  return equal;
}

}  // namespace zelk

#include "calls/world.hpp"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "calls/content.hpp"
#include "expect.hpp"
#include "zelk/lock.hpp"

const Held* Side::find(const char* handle) const {
  const auto found = std::find_if(held.begin(), held.end(),
                                  [handle](const Held& one) { return one.handle == handle; });
  return handle && found != held.end() ? &*found : nullptr;
}

bool Side::has_name(const char* name) const {
  return std::any_of(held.begin(), held.end(),
                     [name](const Held& one) { return one.name == name; });
}

const Held* Side::find_path(const std::string& path) const {
  const auto found = std::find_if(held.begin(), held.end(), [&path](const Held& one) {
    return one.database->IsPathEqual(path.c_str());
  });
  return found != held.end() ? &*found : nullptr;
}

World::World(const Files& files) : files_(files) {
  files_.clear();
  for (unsigned i = 0; i < kSides; ++i) restart(i);
}

void World::restart(unsigned index) {
  Side& side = sides_[index];
  while (!side.held.empty()) close(side, side.held.front());
  side.manager.reset();
  side.writer = nullptr;
  void* const nobody = nullptr;
  if (index < kWriters) {
    auto writer = std::make_unique<ZelkWriteManager>(nobody);
    side.writer = writer.get();
    side.manager = std::move(writer);
  } else {
    side.manager = std::make_unique<ZelkManager>(nobody);
  }
}

bool World::is_held(const ZelkDatabase& database) const {
  return std::any_of(sides_.begin(), sides_.end(), [&database](const Side& side) {
    return std::any_of(side.held.begin(), side.held.end(),
                       [&database](const Held& one) { return one.database == &database; });
  });
}

const ZelkDatabase* World::shared(const std::string& path) const {
  for (const Side& side : sides_) {
    if (const Held* const held = side.find_path(path)) return held->database;
  }
  return nullptr;
}

bool World::is_open_for_writing(const std::string& path) const {
  return std::any_of(sides_.begin(), sides_.end(),
                     [&path](const Side& side) { return side.writer && side.find_path(path); });
}

bool World::is_refused(const Side& side, const ZelkDatabase& database, bool by_any_lock) const {
  return std::any_of(locks_.begin(), locks_.end(), [&](const HeldLock& lock) {
    return lock.owner != &side && (lock.is_write || by_any_lock) && *lock.database == database;
  });
}

void World::add_lock(const Side& side, const ZelkDatabase& database) {
  locks_.push_back({&side, &database, side.writer != nullptr});
}

void World::free_locks(const Side& side, const ZelkDatabase* database) {
  std::erase_if(locks_, [&](const HeldLock& lock) {
    return lock.owner == &side && (!database || lock.database == database);
  });
}

void World::close(Side& side, const Held& held) {
  free_locks(side, held.database);
  if (held.database->path && is_kept(held.database->path)) keep(*held.database);
  side.held.erase(side.held.begin() + (&held - side.held.data()));
}

std::string World::folded(std::string path) {
  std::transform(path.begin(), path.end(), path.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return path;
}

void World::keep(const ZelkDatabase& database) {
  if (database.path) kept_[folded(database.path)].insert(fingerprint(database));
}

bool World::is_kept(const ZelkDatabase& database) const {
  const auto kept = kept_.find(folded(database.path));
  return kept != kept_.end() && kept->second.count(fingerprint(database)) != 0;
}

void World::may_change_path(const char* path) {
  for (const Side& side : sides_) {
    for (const Held& held : side.held) {
      const char* const own = held.database->path;
      if (own && path && std::strcmp(own, path) == 0) may_change(*held.database);
    }
  }
}

void World::check() {
  for (const Side& side : sides_) {
    expect(side.manager->DatabaseCount() == side.held.size(), "databases are counted wrongly");
    for (const Held& held : side.held) check_held(side, held);
    check_locks(side);
  }
  check_contents();
  const Files::Stamps stamps = files_.stamps();
  for (unsigned i = 0; i < Files::kCount; ++i)
    expect(is_file_changed_[i] || stamps[i] == stamps_[i], "a file has changed", files_.path(i));
  stamps_ = stamps;
  changed_.clear();
  is_file_changed_ = {};
}

void World::check_held(const Side& side, const Held& held) const {
  ZelkManager& manager = *side.manager;
  expect(manager.GetConstDatabase(held.handle) == held.database, "another database");
  expect(manager.GetUniqueDatabaseName(held.name.c_str()) == held.handle, "another name");
  expect(held.name == held.handle, "another text of a name", held.name);
  expect(manager.GetPriority(held.handle) == held.priority, "another priority", held.name);
  unsigned holders = 0;
  for (const Side& other : sides_) {
    holders += static_cast<unsigned>(
        std::count_if(other.held.begin(), other.held.end(),
                      [&held](const Held& one) { return one.database == held.database; }));
  }
  expect(held.database->ref_count == holders, "holders are counted wrongly", held.name);
}

void World::check_locks(const Side& side) const {
  for (const Held& held : side.held) {
    auto& database = const_cast<ZelkDatabase&>(*held.database);
    const bool refuses_reading = ZelkReadLock::GetLock(*side.manager, database) != nullptr;
    const bool refuses_writing = ZelkWriteLock::GetLock(*side.manager, database) != nullptr;
    expect(refuses_reading == is_refused(side, database, false), "a lock for reading", held.name);
    expect(refuses_writing == is_refused(side, database, true), "a lock for writing", held.name);
  }
}

void World::check_contents() {
  std::map<const ZelkDatabase*, std::uint64_t> contents;
  for (const Side& side : sides_) {
    for (const Held& held : side.held) contents[held.database] = fingerprint(*held.database);
  }
  for (const auto& [database, content] : contents) {
    const auto before = contents_.find(database);
    const bool may = std::find(changed_.begin(), changed_.end(), database) != changed_.end();
    expect(may || before == contents_.end() || before->second == content, "a database has changed");
  }
  contents_ = std::move(contents);
}

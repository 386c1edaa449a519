/// Some managers, what they must hold, and what must have changed after each call.
#ifndef ZELK_FUZZ_CALLS_WORLD_HPP
#define ZELK_FUZZ_CALLS_WORLD_HPP

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "calls/files.hpp"
#include "zelk/write_manager.hpp"

/// A database that a manager has open.
struct Held {
  const char* handle;
  std::string name;
  unsigned priority;
  const ZelkDatabase* database;
};

/// A manager, and what it must hold.
struct Side {
  std::unique_ptr<ZelkManager> manager;
  ZelkWriteManager* writer;  ///< null for a manager that only reads
  std::vector<Held> held;

  const Held* find(const char* handle) const;
  bool has_name(const char* name) const;
  /// The database of a file, unchanged since it was read; null for none.
  const Held* find_path(const std::string& path) const;
};

struct HeldLock {
  const Side* owner;
  const ZelkDatabase* database;
  bool is_write;
};

class World {
 public:
  static constexpr unsigned kSides = 4;
  static constexpr unsigned kWriters = 2;  ///< the first ones

  explicit World(const Files& files);

  Side& side(unsigned index) { return sides_[index]; }
  std::array<Side, kSides>& sides() { return sides_; }
  /// Makes the manager anew.
  void restart(unsigned index);

  bool is_held(const ZelkDatabase& database) const;
  /// A database of that path which any side holds; null for none.
  const ZelkDatabase* shared(const std::string& path) const;
  bool is_open_for_writing(const std::string& path) const;
  /// Whether another side's lock on the file refuses one of this side.
  bool is_refused(const Side& side, const ZelkDatabase& database, bool by_any_lock) const;
  bool is_refused(const Side& side, const ZelkDatabase& database) const {
    return is_refused(side, database, side.writer != nullptr);
  }
  void add_lock(const Side& side, const ZelkDatabase& database);
  void free_locks(const Side& side, const ZelkDatabase* database = nullptr);

  /// Comes before the manager closes it.
  void close(Side& side, const Held& held);
  /// From now on a database of that path may be in the cache, whoever closes it.
  void keep(const std::string& path) { kept_[folded(path)]; }
  /// Remembers the content of a database, which whoever opens that path next may find in the cache.
  void keep(const ZelkDatabase& database);
  bool is_kept(const std::string& path) const { return kept_.count(folded(path)) != 0; }
  bool is_kept(const ZelkDatabase& database) const;

  // What the present call may change; nothing, unless it is said.

  void may_change(const ZelkDatabase& database) { changed_.push_back(&database); }
  /// All databases that have the path of this one, too.
  void may_change_path(const char* path);
  void may_change_file(unsigned index) { is_file_changed_[index] = true; }

  /// Tests all sides after a call.
  void check();

 private:
  /// Where one of two files that differ in case alone is missing, the other one is found by both.
  static std::string folded(std::string path);
  void check_held(const Side& side, const Held& held) const;
  void check_locks(const Side& side) const;
  void check_contents();

  const Files& files_;
  std::array<Side, kSides> sides_;
  std::vector<HeldLock> locks_;
  std::map<const ZelkDatabase*, std::uint64_t> contents_;
  std::map<std::string, std::set<std::uint64_t>> kept_;
  Files::Stamps stamps_;
  std::vector<const ZelkDatabase*> changed_;
  std::array<bool, Files::kCount + 1> is_file_changed_{};
};

#endif

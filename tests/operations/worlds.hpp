/// What operations work on.
#ifndef ZELK_TESTS_OPERATIONS_WORLDS_HPP
#define ZELK_TESTS_OPERATIONS_WORLDS_HPP

#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "database/heads.hpp"
#include "operations/operation.hpp"
#include "support/database.hpp"
#include "support/files.hpp"
#include "support/folder.hpp"
#include "support/host.hpp"
#include "support/paths.hpp"
#include "support/threads.hpp"
#include "zelk/lock.hpp"
#include "zelk/write_manager.hpp"

inline constexpr char kEveryStatement[] = ZELK_SOURCE_DIR "/tests/data/ok_every_statement.dbc";

/// Names and contents of all files in a folder.
inline std::string files_of(const std::string& folder) {
  std::set<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    files.insert(entry.path().filename().string() + "\n" + bytes_of(entry.path()));
  }
  std::string all;
  for (const std::string& file : files) all += file;
  return all;
}

/// What stands in a database; after `Clear` its user data is null.
inline std::string content_of(const ZelkDatabase& database) {
  return database.user_data ? describe(zelk::view_of(database)) : "cleared";
}

/// Lists as hosts of the C interface hold them.
struct Records : World {
  Records() : Records(read_lists()) {}
  explicit Records(std::shared_ptr<Lists> owner) : lists_owner(std::move(owner)) {
    message = zelk_get_message(lists.messages, 1);
    signal = message->signals;
  }
  ~Records() override { std::remove(written.c_str()); }
  static std::shared_ptr<Lists> read_lists() {
    auto lists = std::make_shared<Lists>();
    lists->try_read(kEveryStatement);
    return lists;
  }
  std::string state() const override {
    const bool is_read = read && read->version;
    return describe(lists) + (is_read ? "\nread: " + describe(*read) : "") + bytes_of(written);
  }

  const std::string written = "Operations.written" + suffix_of_thread() + ".dbc";
  const std::shared_ptr<Lists> lists_owner;
  Lists& lists = *lists_owner;
  std::optional<Lists> read;
  msgblk* message;
  sigblk* signal;
};

/// Lists that all worlds of this kind share, and nobody edits.
struct SharedRecords : Records {
  SharedRecords() : Records(the_lists()) {}
  static std::shared_ptr<Lists> the_lists() {
    static const std::shared_ptr<Lists> lists = read_lists();
    return lists;
  }
};

/// A database with every kind of object, as a manager has it open.
struct Opened {
  void find_objects(ZelkManager& opener) {
    manager = &opener;
    // Found without a lookup: an index is made by the operation that needs it.
    const ZelkDatabase& d = *opener.GetConstDatabase(db);
    node = d.nodes, message = d.messages, signal = message->signals, variable = d.env_vars;
    group = message->siggroups, type = d.signal_types, table = d.value_tables;
    definition = d.attr_defs, category = d.categories, timing = d.bit_timings;
  }

  ZelkManager* manager = nullptr;
  const char* db = nullptr;
  symblk* node = nullptr;
  msgblk* message = nullptr;
  sigblk* signal = nullptr;
  env_var_blk* variable = nullptr;
  siggroupblk* group = nullptr;
  sigtype* type = nullptr;
  valtable* table = nullptr;
  attr_def* definition = nullptr;
  cat* category = nullptr;
  btlblk* timing = nullptr;
  unsigned char frame[8] = {1, 2, 3, 4, 5, 6, 7, 8};
};

/// A write manager with a database of its own, beside another manager with a second one.
struct Databases : World, Opened {
  Databases() : Databases(bytes_of(kEveryStatement)) {}
  explicit Databases(const std::string& content) {
    folder.write("every.dbc", content);
    folder.write("other.dbc", "BS_:\nBU_: A\n");
    writer.OpenDatabase(path.c_str(), &db, "every", 0);
    find_objects(writer);
    database = const_cast<ZelkDatabase*>(writer.GetConstDatabase(db));
  }
  std::string state() const override {
    std::string all = files_of(folder.path(""));
    for (const ZelkManager* each : {static_cast<const ZelkManager*>(&writer), &reader}) {
      for (ZelkDatabaseNameIterator at(*each); at; ++at) {
        all += at.Name() + (" " + content_of((*at)->database));
      }
    }
    return all;
  }

  const Folder folder;
  const std::string path = folder.path("every.dbc"), other = folder.path("other.dbc");
  const std::string fresh = folder.path("new.dbc");
  ZelkWriteManager writer{HWND{}};
  ZelkManager reader{HWND{}};
  ZelkDatabase* database;
};

/// A database that all worlds of this kind share, and nobody edits.
struct SharedDatabase : World, Opened {
  SharedDatabase() {
    reader.OpenDatabase(kEveryStatement, &db, "every", 0);
    find_objects(reader);
  }

  ZelkManager reader{HWND{}};
};

#endif

/// What operations work on.
#ifndef ZELK_TESTS_EXHAUSTED_WORLDS_HPP
#define ZELK_TESTS_EXHAUSTED_WORLDS_HPP

#include <filesystem>
#include <optional>
#include <string>

#include "database/heads.hpp"
#include "support/database.hpp"
#include "support/files.hpp"
#include "support/folder.hpp"
#include "support/host.hpp"
#include "support/paths.hpp"
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
struct Records {
  Records() {
    lists.try_read(kEveryStatement);
    message = zelk_get_message(lists.messages, 1);
    signal = message->signals;
  }
  Records(const Records&) = delete;
  Records& operator=(const Records&) = delete;
  ~Records() { std::remove(written); }
  std::string state() const {
    const bool is_read = read && read->version;
    return describe(lists) + (is_read ? "\nread: " + describe(*read) : "") + bytes_of(written);
  }

  const char* const written = "Exhausted.written.dbc";
  Lists lists;
  std::optional<Lists> read;
  msgblk* message;
  sigblk* signal;
};

/// A write manager with a database of every kind of object, beside another manager with a database
/// of its own.
struct Databases {
  Databases() : Databases(bytes_of(kEveryStatement)) {}
  explicit Databases(const std::string& content) {
    folder.write("every.dbc", content);
    folder.write("other.dbc", "BS_:\nBU_: A\n");
    writer.OpenDatabase(path.c_str(), &db, "every", 0);
    // Found without a lookup: an index is made by the operation that needs it.
    const ZelkDatabase& d = *writer.GetConstDatabase(db);
    node = d.nodes, message = d.messages, signal = message->signals, variable = d.env_vars;
    group = message->siggroups, type = d.signal_types, table = d.value_tables;
    definition = d.attr_defs, category = d.categories, timing = d.bit_timings;
    database = const_cast<ZelkDatabase*>(&d);
  }
  std::string state() const {
    std::string all = files_of(folder.path(""));
    for (const ZelkManager* manager : {static_cast<const ZelkManager*>(&writer), &reader}) {
      for (ZelkDatabaseNameIterator at(*manager); at; ++at) {
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
  const char* db = nullptr;
  ZelkDatabase* database;
  symblk* node;
  msgblk* message;
  sigblk* signal;
  env_var_blk* variable;
  siggroupblk* group;
  sigtype* type;
  valtable* table;
  attr_def* definition;
  cat* category;
  btlblk* timing;
  unsigned char frame[8] = {1, 2, 3, 4, 5, 6, 7, 8};
};

#endif

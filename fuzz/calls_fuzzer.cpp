// Calls managers and write managers in any order: open, edit, delete, lock, write, commit, reopen,
// close and convert, while files change behind their back. A model knows what each call must return
// and what it may change; what was saved is read back.

#include <dlfcn.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string>

#include "calls/content.hpp"
#include "calls/files.hpp"
#include "calls/world.hpp"
#include "choices.hpp"
#include "expect.hpp"
#include "zelk/converter.hpp"
#include "zelk/zelk.h"

namespace {

constexpr unsigned kMostCalls = 30;

/// One sequence of calls.
class Sequence {
 public:
  Sequence(const Files& files, Choices choices) : files_(files), choices_(choices), world_(files) {}

  void run() {
    for (unsigned i = 0; i < kMostCalls && !choices_.empty(); ++i) {
      call();
      world_.check();
    }
  }

 private:
  using Call = void (Sequence::*)();

  void call() {
    constexpr Call kCalls[] = {
        &Sequence::open,   &Sequence::open,    &Sequence::change_file, &Sequence::change_file,
        &Sequence::edit,   &Sequence::edit,    &Sequence::edit,        &Sequence::write,
        &Sequence::write,  &Sequence::lock,    &Sequence::unlock,      &Sequence::close,
        &Sequence::create, &Sequence::reopen,  &Sequence::commit,      &Sequence::clear,
        &Sequence::rename, &Sequence::convert, &Sequence::look,        &Sequence::restart,
    };
    (this->*kCalls[choices_.below(std::size(kCalls))])();
  }

  // --- Choosing ---

  Side& any_side() { return world_.side(choices_.below(World::kSides)); }
  Side& any_writer() { return world_.side(choices_.below(World::kWriters)); }
  unsigned any_file() { return choices_.below(Files::kCount); }

  /// A handle; now and then one of another manager, which is none here.
  const char* any_handle(const Side& side) {
    const unsigned choice = choices_.take<std::uint8_t>();
    const Side& owner = choice < 240 ? side : world_.side(choice % World::kSides);
    if (owner.held.empty()) return "none";
    return owner.held[choice % owner.held.size()].handle;
  }

  // --- Opening and closing ---

  void enter(Side& side, const char* handle, unsigned priority) {
    const ZelkDatabase* const database = side.manager->GetConstDatabase(handle);
    expect(database != nullptr, "opened, but not there");
    side.held.push_back({handle, handle, priority, database});
    world_.may_change(*database);
  }

  /// Several new databases may be meant for one file: the name may be that of any.
  static bool is_name_of(const Side& side, const char* handle, const std::string& path) {
    const Held* const held = side.find(handle);
    return held && held->database->IsPathEqual(path.c_str());
  }

  ZelkError expected_of_open(const Side& side, const std::string& path, const char* wanted) {
    if (wanted && !ZelkVerifyDatabaseName(wanted)) return ZelkErrorInvalidName;
    if (wanted && side.has_name(wanted)) return ZelkErrorNameUsed;
    if (!files_.exists(files_.index_of(path.c_str()))) return ZelkErrorFileNotFound;
    if (side.find_path(path)) return ZelkErrorAlreadyOpen;
    const bool is_taken = side.writer && world_.is_open_for_writing(path);
    return is_taken ? ZelkErrorOpenForWrite : ZelkErrorOk;
  }

  void open() {
    Side& side = any_side();
    const std::string path = files_.path(any_file());
    const char* const wanted = choices_.flag() ? name_from(choices_) : nullptr;
    const unsigned priority = choices_.below(3);
    const ZelkError expected = expected_of_open(side, path, wanted);
    const ZelkDatabase* const shared = world_.shared(path);
    const char* handle = nullptr;
    const ZelkError error = side.manager->OpenDatabase(path.c_str(), &handle, wanted, priority);
    if (expected == ZelkErrorAlreadyOpen)
      expect(is_name_of(side, handle, path), "open under another name");
    if (expected != ZelkErrorOk) return expect(error == expected, "another result of opening");
    std::string words;
    const bool is_readable = read_words(path, words) || shared;
    const bool is_refused = error == ZelkErrorNoDatabase;
    expect(is_refused == !is_readable || world_.is_kept(path), "opened or not");
    expect(!is_refused || *side.manager->GetLastOpenError() != '\0', "refused without a reason");
    if (error != ZelkErrorOk) return expect(is_refused || !wanted, "the name is used");
    const ZelkDatabase* const database = side.manager->GetConstDatabase(handle);
    const bool is_held = database && world_.is_held(*database);
    // One in the cache, which a save refreshes, may be newer than the one that was saved.
    expect(!shared || is_held || world_.is_kept(path), "not shared");
    enter(side, handle, wanted ? 0 : priority);
    if (is_held || world_.is_kept(*database) || has_lost_names(*database)) return;
    const std::string opened = words_of(*database);
    expect(opened == words, "opened with another content than the file's",
           opened + "---\n" + words);
  }

  void create() {
    Side& side = any_writer();
    const char* const name = name_from(choices_);
    const unsigned file = any_file();
    const char* const path = choices_.flag() ? files_.path(file).c_str() : nullptr;
    const char* handle = nullptr;
    ZelkError expected = ZelkErrorOk;
    if (path && files_.exists(file)) expected = ZelkErrorFileBelongs;
    if (name && side.has_name(name)) expected = ZelkErrorNameUsed;
    if (!ZelkVerifyDatabaseName(name)) expected = ZelkErrorInvalidName;
    expect(side.writer->CreateDatabase(name, &handle, path) == expected, "created or not");
    if (expected == ZelkErrorOk) enter(side, handle, 0);
  }

  void close() {
    Side& side = any_side();
    const char* const handle = choices_.below(8) != 0 ? any_handle(side) : nullptr;
    const bool is_kept = choices_.flag();
    for (const Held& held : side.held) {
      if (is_kept && (!handle || handle == held.handle)) world_.keep(*held.database);
    }
    if (!handle) {
      while (!side.held.empty()) world_.close(side, side.held.front());
    } else if (const Held* const held = side.find(handle)) {
      world_.close(side, *held);
    }
    side.manager->CloseDatabase(handle, is_kept);
  }

  void restart() { world_.restart(choices_.below(World::kSides)); }

  ZelkError expected_of_reopen(const ZelkDatabase& database) {
    const unsigned file = files_.index_of(database.path);
    if (!database.path || !files_.exists(file)) return ZelkErrorFileNotFound;
    std::string words;
    return read_words(files_.path(file), words) ? ZelkErrorOk : ZelkErrorNoDatabase;
  }

  void reopen() {
    Side& side = any_side();
    const char* const handle = choices_.below(8) != 0 ? any_handle(side) : nullptr;
    const Held* const held = side.find(handle);
    ZelkError expected = handle && !held ? ZelkErrorNoDatabase : ZelkErrorOk;
    for (const Held& one : side.held) {
      if (handle && held != &one) continue;
      const ZelkError error = expected_of_reopen(*one.database);
      if (error != ZelkErrorOk) expected = error;
      if (error != ZelkErrorFileNotFound) world_.may_change(*one.database);
    }
    expect(side.manager->ReopenDatabase(handle) == expected, "reopened or not");
    if (held && expected == ZelkErrorOk) expect_as_file(*held->database, held->database->path);
  }

  // --- Changing ---

  void edit() {
    const Side& side = any_writer();
    const char* const handle = any_handle(side);
    if (const Held* const held = side.find(handle)) world_.may_change(*held->database);
    ::edit(*side.writer, handle, choices_);
  }

  void clear() {
    const Side& side = any_writer();
    const char* const handle = any_handle(side);
    const Held* const held = side.find(handle);
    if (held) world_.may_change(*held->database);
    side.writer->ClearDatabase(handle);
    if (held) expect(!held->database->nodes && !held->database->messages, "not cleared");
  }

  void rename() {
    Side& side = any_side();
    const char* const handle = any_handle(side);
    const char* const name = name_from(choices_);
    const auto held = std::find_if(side.held.begin(), side.held.end(),
                                   [handle](const Held& one) { return one.handle == handle; });
    ZelkError expected = ZelkErrorOk;
    if (name && side.has_name(name) && held != side.held.end() && held->name != name)
      expected = ZelkErrorNameUsed;
    if (!ZelkVerifyDatabaseName(name)) expected = ZelkErrorInvalidName;
    if (held == side.held.end()) expected = ZelkErrorNoDatabase;
    const char* renamed = nullptr;
    expect(side.manager->SetDatabaseName(handle, &renamed, name) == expected, "renamed or not");
    if (expected != ZelkErrorOk) return;
    held->handle = renamed;
    held->name = name;
  }

  /// What somebody else does.
  void change_file() {
    const unsigned file = any_file();
    world_.may_change_file(file);
    const unsigned kind = choices_.below(8);
    if (kind < 6) return files_.put(file, content_from(choices_));
    if (kind == 6) return files_.remove(file);
    files_.set_read_only(file, choices_.flag());
  }

  // --- Locks ---

  void lock() {
    Side& side = any_side();
    if (choices_.below(4) == 0) return lock_all(side);
    const char* const handle = any_handle(side);
    const Held* const held = side.find(handle);
    const bool expected = held && !world_.is_refused(side, *held->database);
    expect(side.manager->LockDatabase(handle, "reason") == expected, "locked or not");
    if (expected) world_.add_lock(side, *held->database);
  }

  void lock_all(const Side& side) {
    bool expected = true;
    for (const Held& held : side.held) expected &= !world_.is_refused(side, *held.database);
    expect(side.manager->LockAllDatabases(nullptr) == expected, "all locked or not");
    if (!expected) return world_.free_locks(side);
    for (const Held& held : side.held) world_.add_lock(side, *held.database);
  }

  void unlock() {
    const Side& side = any_side();
    const char* const handle = choices_.below(4) != 0 ? any_handle(side) : nullptr;
    side.manager->UnlockDatabase(handle);
    if (!handle) return world_.free_locks(side);
    if (const Held* const held = side.find(handle)) world_.free_locks(side, held->database);
  }

  // --- Saving ---

  static void expect_as_file(const ZelkDatabase& database, const std::string& path) {
    std::string words;
    expect(read_words(path, words), "a saved file cannot be read", zelk_get_error_text());
    const std::string own = words_of(database);
    expect(own == words || has_lost_names(database), "a file has another content",
           own + "---\n" + words);
  }

  void write() {
    const Side& side = any_writer();
    if (choices_.below(8) == 0) return write_all(side);
    const char* const handle = any_handle(side);
    const Held* const held = side.find(handle);
    const unsigned file = any_file();
    const char* const path = choices_.below(3) == 0 ? files_.path(file).c_str() : nullptr;
    if (!held) return expect_refused(side, handle, path, ZelkErrorNotWritten);
    const ZelkDatabase& database = *held->database;
    if (world_.is_refused(side, database, true))
      return expect_refused(side, handle, path, ZelkErrorLocked);
    const std::string target = path ? path : database.path ? database.path : "";
    if (target.empty()) return expect_refused(side, handle, path, ZelkErrorFileNotFound);
    zelk_clear_error_text();
    const Files::Stamps before = files_.stamps();
    world_.may_change_path(target.c_str());
    world_.may_change_file(files_.index_of(target.c_str()));
    // A mark for a cache stays with the database, which has the new path from now on.
    if (database.path && world_.is_kept(database.path)) world_.keep(target);
    const ZelkError error = side.writer->WriteDatabase(handle, path);
    if (error != ZelkErrorOk) {
      expect(files_.stamps() == before, "a refused write has changed the file");
      const bool has_reason = *zelk_get_error_text() != '\0';
      return expect(error != ZelkErrorNotWritten || has_reason, "not written without a reason");
    }
    expect(database.IsPathEqual(target.c_str()), "saved to a file that is not its own");
    expect_as_file(database, target);
  }

  static void expect_refused(const Side& side, const char* handle, const char* path,
                             ZelkError expected) {
    expect(side.writer->WriteDatabase(handle, path) == expected, "another result of writing");
  }

  void write_all(const Side& side) {
    bool is_locked = false;
    for (const Held& held : side.held) is_locked |= world_.is_refused(side, *held.database, true);
    for (const Held& held : side.held) {
      if (is_locked) continue;
      world_.may_change_path(held.database->path);
      world_.may_change_file(files_.index_of(held.database->path));
    }
    const ZelkError error = side.writer->WriteDatabase(nullptr, nullptr);
    expect((error == ZelkErrorLocked) == is_locked, "locked or not");
    if (error != ZelkErrorOk) return;
    for (const Held& held : side.held) expect_as_file(*held.database, held.database->path);
  }

  void commit() {
    const Side& side = any_writer();
    const char* const handle = any_handle(side);
    const Held* const held = side.find(handle);
    if (held) world_.may_change_path(held->database->path);
    if (held) world_.keep(*held->database);
    side.writer->CommitDatabase(handle);
  }

  /// Exports a database, and imports that into another manager.
  void convert() {
    const Side& from = any_side();
    Side& to = any_writer();
    const char* const source = any_handle(from);
    const Held* const held = from.find(source);
    const std::string& file = files_.json();
    std::remove(file.c_str());
    ZelkExporter exporter(*from.manager, ZELK_JSON_MODULE, "zelk_export");
    const ZelkError exported = exporter.Export(source, file.c_str());
    if (!held) return expect(exported == ZelkErrorNotWritten, "exported out of nothing");
    if (exported != ZelkErrorOk) return;
    const std::string words = words_of(*held->database);
    const char* const name = name_from(choices_);
    const char* handle = nullptr;
    ZelkImporter importer(*to.writer, ZELK_JSON_MODULE, "zelk_import");
    const ZelkError error = importer.Import(name, &handle, file.c_str());
    ZelkError expected = ZelkErrorOk;
    if (files_.exists(Files::kImported)) expected = ZelkErrorFileBelongs;
    if (!ZelkVerifyDatabaseName(name)) expected = ZelkErrorInvalidName;
    if (name && to.has_name(name)) expected = ZelkErrorNameUsed;
    expect(error == expected, "imported or not", zelk_get_error_text());
    if (error != ZelkErrorOk) return;
    enter(to, handle, 0);
    const std::string imported = words_of(*to.held.back().database);
    expect(imported == words, "converted into something else", imported + "---\n" + words);
  }

  // --- What changes nothing ---

  void look() {
    const Side& side = any_side();
    const std::string path = files_.path(any_file());
    if (choices_.flag()) side.manager->FlushDatabaseCache();
    world_.keep(path);
    const Held* const held = side.find_path(path);
    const char* const name = side.manager->GetDatabaseName(path.c_str());
    if (held) return expect(is_name_of(side, name, path), "another name of a file");
    if (!name) return;
    expect(*name == '\0' || ZelkVerifyDatabaseName(name), "a name that is none", name);
    zelk_mfree(const_cast<char*>(name));
  }

  const Files& files_;
  Choices choices_;
  World world_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Files files;
  // Converters unload the module, which has counters of libFuzzer's, and would load it each time.
  static void* const module = dlopen(ZELK_JSON_MODULE, RTLD_NOW);
  expect(module != nullptr, "no module");
  zelk_set_message_box([](const char*, const char*, std::uint32_t, void*) {}, nullptr);
  zelk_clear_error_text();
  Sequence(files, Choices(data, size)).run();
  return 0;
}

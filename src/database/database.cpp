#include "zelk/database.hpp"

#include <memory>
#include <string>
#include <utility>

#include "database/copier.hpp"
#include "database/file.hpp"
#include "database/heads.hpp"
#include "database/index.hpp"
#include "database/list_ends.hpp"
#include "database/process_guard.hpp"
#include "database/registry.hpp"
#include "model/memory.hpp"
#include "model/release.hpp"
#include "model/without_raising.hpp"
#include "reader/read.hpp"

namespace {

/// `Clear`, which leaves the user data empty: no later exhaustion of memory can make it null.
void clear_for_new_content(ZelkDatabase& database) {
  zelk::OwnedText user_data(std::exchange(database.user_data, nullptr));
  database.Clear();
  if (user_data) *user_data = '\0';
  zelk::assign_text(database.user_data, std::move(user_data));
}

}  // namespace

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
  clear_for_new_content(*this);
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
  const zelk::ProcessGuard guard;
  zelk::registry().rekey(*this, file ? file->key : "");
  zelk::assign_text(path, std::move(owned));
  file_ = std::move(file);
}

/// @return false, with the own file as it was, when memory runs out
bool ZelkDatabase::TakeFileOf(const ZelkDatabase& other) {
  return zelk::without_raising([&] {
    auto file = zelk::DatabaseFile::of(other);
    SetFile(zelk::copy_of(other.path).release(), std::move(file));
    is_file_new_ = other.is_file_new_;
  });
}

/// The path of the own file, usable whatever the working folder is now.
std::string ZelkDatabase::OwnFile() const {
  const auto file = zelk::DatabaseFile::of(*this);
  const bool has_moved = zelk::platform::FilePath(path).absolute != file->absolute;
  return has_moved ? file->absolute : path;
}

// --- Reading and writing ---

/// Takes over the reader's mark for shortened names, also from a file with a fault.
void ZelkDatabase::ReadFile() {
  const auto keep_mark = [this] {
    symbols_shortened = static_cast<std::uint8_t>(zelk_symbols_shortened());
  };
  is_incomplete_ = true;
  zelk_reset_symbols_shortened();
  std::uint32_t error = ZELK_OK;
  try {
    error = zelk::read_file(OwnFile().c_str(), {zelk::heads_of(*this), predefined.slots});
  } catch (...) {
    keep_mark();
    throw;
  }
  keep_mark();
  // Only where memory runs out does the reader give up without raising.
  if (error != ZELK_OK) zelk_report(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr, 1);
  is_incomplete_ = is_file_new_ = false;
}

bool ZelkDatabase::operator==(const ZelkDatabase& other) const {
  if (this == &other) return true;
  return zelk::without_raising(false, [&] {
    const auto file = zelk::DatabaseFile::of(other);
    return file && zelk::DatabaseFile::is(*this, *file);
  });
}

bool ZelkDatabase::IsPathEqual(const char* file) const {
  return zelk::without_raising(false, [&] { return file && zelk::DatabaseFile::is(*this, file); });
}

ZelkError ZelkDatabase::ReopenDatabaseFile() {
  if (!path) return ZelkErrorFileNotFound;
  clear_for_new_content(*this);
  is_incomplete_ = true;
  return zelk::without_raising(ZelkErrorNoDatabase, [this] {
    if (!user_data) zelk::assign_text(user_data, zelk::copy_text(""));
    ReadFile();
    return ZelkErrorOk;
  });
}

void ZelkDatabase::Clear() {
  DropIndex();
  zelk::release(zelk::heads_of(*this));
  symbols_shortened = 0;
  is_incomplete_ = false;
  predefined.ClearAll();
}

// --- Texts ---

void ZelkDatabase::SetComment(const char* text) {
  zelk::without_raising([&] { zelk::assign_text(comment, zelk::copy_of(text)); });
}

void ZelkDatabase::SetUserData(const char* text) {
  zelk::without_raising([&] { zelk::assign_text(user_data, zelk::copy_text(text ? text : "")); });
}

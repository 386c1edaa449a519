#include "zelk/database.hpp"

#include <memory>
#include <new>
#include <string>
#include <utility>

#include "database/copier.hpp"
#include "database/file.hpp"
#include "database/heads.hpp"
#include "database/index.hpp"
#include "database/list_ends.hpp"
#include "database/process_guard.hpp"
#include "database/registry.hpp"
#include "model/errors.hpp"
#include "model/memory.hpp"
#include "model/release.hpp"
#include "reader/read.hpp"
#include "zelk/exception.hpp"

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
  Clear();
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
bool ZelkDatabase::TakeFileOf(const ZelkDatabase& other) try {
  SetFile(zelk::copy_of(other.path).release(), zelk::DatabaseFile::of(other));
  is_file_new_ = other.is_file_new_;
  return true;
} catch (const ZelkException&) {  // already reported: raising appends to the error text
  return false;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return false;
}

/// The own file's path, which leads to it wherever the working folder has moved.
std::string ZelkDatabase::OwnFile() const {
  const auto file = zelk::DatabaseFile::of(*this);
  const bool has_moved = zelk::platform::FilePath(path).absolute != file->absolute;
  return has_moved ? file->absolute : path;
}

// --- Reading and writing ---

/// The reader's mark for shortened names becomes the database's also when the file turns out to be
/// faulty.
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

bool ZelkDatabase::operator==(const ZelkDatabase& other) const try {
  if (this == &other) return true;
  const auto file = zelk::DatabaseFile::of(other);
  return file && zelk::DatabaseFile::is(*this, *file);
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return false;
}

bool ZelkDatabase::IsPathEqual(const char* file) const try {
  return file && zelk::DatabaseFile::is(*this, file);
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  return false;
}

ZelkError ZelkDatabase::ReopenDatabaseFile() {
  if (!path) return ZelkErrorFileNotFound;
  Clear();
  is_incomplete_ = true;
  try {
    zelk::assign_text(user_data, zelk::copy_text(""));
    ReadFile();
    return ZelkErrorOk;
  } catch (const std::bad_alloc&) {
    zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  } catch (const ZelkException&) {  // already reported: raising appends to the error text
  }
  return ZelkErrorNoDatabase;
}

void ZelkDatabase::Clear() {
  DropIndex();
  zelk::release(zelk::heads_of(*this));
  symbols_shortened = 0;
  is_incomplete_ = false;
  predefined.ClearAll();
}

// --- Texts ---

void ZelkDatabase::SetComment(const char* text) try {
  zelk::assign_text(comment, zelk::copy_of(text));
} catch (const ZelkException&) {  // already reported; the old comment stays
}

void ZelkDatabase::SetUserData(const char* text) try {
  zelk::assign_text(user_data, zelk::copy_text(text ? text : ""));
} catch (const ZelkException&) {  // already reported; the old text stays
}

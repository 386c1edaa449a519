#include "log/table_folder.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <set>
#include <system_error>

#include "base/encoding.hpp"
#include "base/quoting.hpp"
#include "files/files.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "term/output.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kMostHeld = 32'000'000;  // bytes, of all files
constexpr int kMostRuns = 32;                  // into one folder at a time

std::filesystem::path path_of(const std::string& utf8_path) {
  return std::u8string(utf8_path.begin(), utf8_path.end());
}

/// Names that Windows takes for devices, whatever their extension.
bool is_device(std::string_view name) {
  const std::string stem = lowered(name.substr(0, name.find('.')));
  constexpr std::array<std::string_view, 4> kDevices = {"con", "prn", "aux", "nul"};
  if (std::ranges::find(kDevices, stem) != kDevices.end()) return true;
  return stem.size() == 4 && (stem.starts_with("com") || stem.starts_with("lpt")) &&
         stem[3] >= '0' && stem[3] <= '9';
}

/// A name that every system takes for a file, without its extension.
std::string file_name_of(std::string name) {
  constexpr std::size_t kMostBytes = 200;
  for (char& c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || std::string_view("/\\:*?\"<>|").find(c) < 9) c = '_';
  }
  if (name.size() > kMostBytes) name.resize(kMostBytes);
  while (!is_utf8(name)) name.pop_back();  // a character that was cut
  if (name.empty() || name[0] == '.' || is_device(name)) name.insert(0, "_");
  return name;
}

/// Names that are equal but for case are one file on some systems.
std::string unique_name(const std::string& table, std::set<std::string>& taken) {
  const std::string stem = file_name_of(table);
  std::string name = stem;
  for (int i = 2; !taken.insert(lowered(name)).second; ++i) name = fmt::format("{}_{}", stem, i);
  return name + ".csv";
}

std::string system_text(int error) { return std::generic_category().message(error); }

}  // namespace

TableFolder::TableFolder(const std::string& path, const std::vector<ZelkWideTable>& tables)
    : path_(path), folder_(path_of(path)), tables_(tables) {
  std::set<std::string> taken;
  for (const ZelkWideTable& table : tables) files_.push_back({unique_name(table.name, taken)});
  if (!folder_.has_filename()) folder_ = folder_.parent_path();  // "DIR/"
  make_folders();
}

TableFolder::~TableFolder() {
  fresh_.reset();
  std::error_code ignored;
  if (is_made_) std::filesystem::remove(folder_, ignored);  // if it is empty
}

void TableFolder::fail(const std::filesystem::path& path, const std::string& reason) const {
  const std::u8string shown = path.u8string();
  throw RequestError(behind_path(std::string(shown.begin(), shown.end()),
                                 "could not be written: " + escaped(utf8(reason))));
}

void TableFolder::make_folders() {
  std::error_code error;
  is_made_ = std::filesystem::create_directory(folder_, error);
  if (error) fail(folder_, error.message());
  if (!std::filesystem::is_directory(folder_, error)) fail(folder_, "it is no folder");
  for (int i = 0; i < kMostRuns && !error; ++i) {
    const std::filesystem::path path = folder_ / fmt::format(".zelk-tables-{}", i);
    std::error_code ignored;
    if (fresh_ && !std::filesystem::exists(path, ignored)) continue;
    auto held = files::HeldFolder::make(path, error);
    if (!fresh_) fresh_ = std::move(held);  // further ones, which killed runs left, go here
  }
  if (fresh_) return;
  if (is_made_) std::filesystem::remove(folder_);
  fail(folder_,
       error ? error.message() : "others write into it, or their folders .zelk-tables-* are there");
}

void TableFolder::add(std::size_t table, std::string_view line) {
  files_[table].held += line;
  held_ += line.size();
  if (held_ >= kMostHeld) write_all();
}

void TableFolder::write_all() {
  for (std::size_t i = 0; i < files_.size(); ++i)
    if (!files_[i].held.empty()) write(tables_[i], files_[i]);
  held_ = 0;
}

void TableFolder::write(const ZelkWideTable& table, File& file) {
  const std::filesystem::path path = fresh_->path() / path_of(file.name);
  errno = 0;
  std::ofstream stream(path, std::ios::binary | std::ios::app);
  if (!file.is_there) stream << table.heading;
  stream << file.held;
  stream.close();
  if (!stream) fail(folder_ / path_of(file.name), system_text(errno));
  file.is_there = true;
  file.held.clear();
}

void TableFolder::take_places() {
  write_all();
  std::vector<files::Move> moves;
  for (const File& file : files_) {
    const std::filesystem::path name = path_of(file.name);
    if (file.is_there) moves.push_back({fresh_->path() / name, folder_ / name});
  }
  std::vector<std::filesystem::path> new_folders;
  if (is_made_) new_folders.push_back(folder_);
  if (const auto failed = files::take_places(moves, new_folders))
    fail(failed->place, failed->reason);
  warn_of_older();
}

void TableFolder::warn_of_older() const {
  std::vector<std::string> older;
  for (const File& file : files_) {
    std::error_code ignored;
    if (!file.is_there && std::filesystem::exists(folder_ / path_of(file.name), ignored))
      older.push_back(file.name);
  }
  if (older.empty()) return;
  print_error(behind_path(
      path_,
      fmt::format("warning: {} of messages without frames in this log, from an earlier run: "
                  "{}{}",
                  older.size() == 1 ? "1 file is" : fmt::format("{} files are", older.size()),
                  escaped(older.front()), older.size() == 1 ? "" : ", ...")));
}

}  // namespace zelk::tool

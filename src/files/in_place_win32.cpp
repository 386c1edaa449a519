#include "files/in_place_win32.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#include "files/in_place.hpp"
#include "files/save_failure.hpp"

namespace zelk::files {
namespace {

namespace fs = std::filesystem;

using Block = std::array<char, 16384>;

void go_to_start(const Handle& file) {
  constexpr LARGE_INTEGER kStart = {};
  if (!SetFilePointerEx(file.get(), kStart, nullptr, FILE_BEGIN)) fail_save_of_windows();
}

/// @return bytes read; 0 at the end
DWORD read_block(const Handle& file, DWORD size, Block& block) {
  DWORD count = 0;
  if (!ReadFile(file.get(), block.data(), size, &count, nullptr)) fail_save_of_windows();
  return count;
}

/// Makes `from`'s content that of `to`, and puts it on the disk.
void copy_content(const Handle& from, const Handle& to) {
  go_to_start(from);
  go_to_start(to);
  if (!SetEndOfFile(to.get())) fail_save_of_windows();
  Block block;
  while (const DWORD size = read_block(from, block.size(), block)) {
    DWORD written = 0;
    if (!WriteFile(to.get(), block.data(), size, &written, nullptr)) fail_save_of_windows();
  }
  if (!FlushFileBuffers(to.get())) fail_save_of_windows();
}

/// By the content alone: of a target that has part of the copy's, maybe with zeros in place of some
/// bytes, nothing else is lost.
Progress compare(const Handle& target, const Handle& whole) {
  const auto may_become = [](char now, char wanted) { return now == wanted || now == 0; };
  go_to_start(target);
  go_to_start(whole);
  Progress progress = Progress::kAll;
  Block now;
  Block wanted;
  while (const DWORD size = read_block(whole, wanted.size(), wanted)) {
    const DWORD there = read_block(target, size, now);
    if (!std::equal(now.data(), now.data() + there, wanted.data(), may_become)) {
      return Progress::kUnknown;
    }
    if (there < size || std::memcmp(now.data(), wanted.data(), size) != 0) {
      progress = Progress::kPart;
    }
  }
  return read_block(target, 1, now) == 0 ? progress : Progress::kUnknown;
}

BY_HANDLE_FILE_INFORMATION information_of(const Handle& file) {
  BY_HANDLE_FILE_INFORMATION information = {};
  if (!GetFileInformationByHandle(file.get(), &information)) fail_save_of_windows();
  return information;
}

/// Opens the target so that nobody else writes to it.
Handle open_target(const fs::path& target) {
  Handle file = open_handle(target, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING);
  if (!file) fail_save_of_windows();
  return file;
}

Progress progress_of(const Handle& target, const Handle& whole) {
  // Asked before the content: a write that begins in this moment changes the time.
  const FILETIME now = information_of(target).ftLastWriteTime;
  const FILETIME before = information_of(whole).ftLastWriteTime;
  const Progress progress = compare(target, whole);
  const bool is_old = CompareFileTime(&now, &before) == 0;
  return is_old && progress == Progress::kUnknown ? Progress::kPart : progress;
}

/// Of a write whose writer has gone.
Progress progress_of_unended(const Handle& target, const Handle& whole) {
  const Progress progress = progress_of(target, whole);
  const bool is_on_disk = progress != Progress::kAll || FlushFileBuffers(target.get());
  return is_on_disk ? progress : Progress::kPart;
}

}  // namespace

fs::path whole_copy_of(const fs::path& target) { return beside(target, L"whole"); }

void fail_save_of_windows(const std::string& step) {
  fail_save({static_cast<int>(GetLastError()), std::system_category()}, step);
}

bool has_other_names(const fs::path& target) {
  const Handle file = open_to_ask(target);
  return file && information_of(file).nNumberOfLinks > 1;
}

void write_in_place(const fs::path& target, const Handle& fresh, const fs::path& path) {
  const fs::path copy = whole_copy_of(target);
  const Handle old = open_target(target);
  const FILETIME time = information_of(old).ftLastWriteTime;
  if (!SetFileTime(fresh.get(), nullptr, nullptr, &time) || !FlushFileBuffers(fresh.get()) ||
      !MoveFileExW(path.c_str(), copy.c_str(), MOVEFILE_WRITE_THROUGH)) {
    fail_save_of_windows("no copy can be kept beside it");
  }
  overwrite(copy, [&] { copy_content(fresh, old); });
}

bool end_write_in_place(const fs::path& target) {
  const fs::path copy = whole_copy_of(target);
  // A writer holds the copy open, and does not share it with this.
  const Handle whole = open_handle(copy, GENERIC_READ, FILE_SHARE_DELETE, OPEN_EXISTING);
  const DWORD error = whole ? ERROR_SUCCESS : GetLastError();
  if (GetFileAttributesW(copy.c_str()) == INVALID_FILE_ATTRIBUTES) return false;
  if (error == ERROR_SHARING_VIOLATION) throw SaveFailure(kBusy);
  if (!whole) {
    fail_save_of_windows("a write did not end, and " + copy.filename().string() +
                         " cannot be opened");
  }
  const Handle old = open_target(target);
  return end_write(progress_of_unended(old, whole), copy, [&] { copy_content(whole, old); });
}

Handle open_whole_copy(const fs::path& target) {
  Handle whole = open_handle(whole_copy_of(target), GENERIC_READ, kShareAll, OPEN_EXISTING);
  if (!whole) return nullptr;
  const Handle file = open_handle(target, GENERIC_READ, kShareAll, OPEN_EXISTING);
  if (!file || progress_of(file, whole) != Progress::kPart) return nullptr;
  go_to_start(whole);
  return whole;
}

void remove_copy(const fs::path& copy) { DeleteFileW(copy.c_str()); }

}  // namespace zelk::files

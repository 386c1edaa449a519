#include <fcntl.h>
#include <io.h>

#include <utility>

#include "platform/in_place_win32.hpp"
#include "platform/platform.hpp"
#include "platform/save_failure.hpp"

namespace zelk::platform {
namespace {

namespace fs = std::filesystem;

constexpr int kMostWriters = 32;  ///< of one target at a time

/// A file beside "a.dbc": ".a.dbc.zelk-0" to ".a.dbc.zelk-31" are being written, each held open by
/// its writer; ".a.dbc.zelk-whole" is the whole new content of a target that is written in place.
fs::path beside(const fs::path& target, const std::wstring& ending) {
  constexpr std::size_t kLongestName = 200;  // leaves room for the rest of the name
  const std::wstring name = target.filename().wstring().substr(0, kLongestName);
  return target.parent_path() / (L"." + name + L".zelk-" + ending);
}

/// Removes what killed processes left. Who opens a file for himself alone shares it with no writer.
void clear_leftovers(const fs::path& target) {
  for (int number = 0; number < kMostWriters; ++number) {
    open_handle(beside(target, std::to_wstring(number)), DELETE, 0, OPEN_EXISTING,
                FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT);
  }
}

/// Whether a path names a device, such as "NUL" or a pipe, and no place on a disk.
bool is_device(const fs::path& path) {
  const Handle handle = open_to_ask(path);
  return handle && GetFileType(handle.get()) != FILE_TYPE_DISK;
}

bool is_there(const fs::path& path) {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

/// A text stream for the file of a handle that stays open.
File stream_of(const Handle& file) {
  HANDLE own = nullptr;
  const HANDLE process = GetCurrentProcess();
  if (!DuplicateHandle(process, file.get(), process, &own, 0, FALSE, DUPLICATE_SAME_ACCESS)) {
    fail_save_of_windows();
  }
  const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(own), _O_TEXT);
  File stream(descriptor < 0 ? nullptr : _fdopen(descriptor, "wt"));
  if (stream) {
    std::setvbuf(stream.get(), nullptr, _IONBF, 0);
    return stream;
  }
  const std::error_code reason(errno, std::generic_category());
  if (descriptor < 0) CloseHandle(own);
  if (descriptor >= 0) _close(descriptor);
  fail_save(reason);
}

}  // namespace

struct Replacement::State {
  State() = default;
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State();
  void open(const char* name, std::string& notice);
  void take_place();
  void check_target() const;
  void create();
  void replace();

  fs::path target;    ///< behind a link
  std::wstring path;  ///< of the file to remove; empty when there is none
  Handle fresh;       ///< held until it has taken its place; none when the target is a device
  File stream;        ///< into `fresh`, or else into the target
};

void Replacement::State::open(const char* name, std::string& notice) {
  target = system_path(name);
  std::error_code error;
  const fs::path linked = fs::canonical(target, error);
  if (!error && fs::is_symlink(target, error)) target = linked;
  if (is_device(target)) {
    stream = open_for_writing(name);
    if (!stream) fail_save({errno, std::generic_category()});
    return;
  }
  check_target();
  if (end_write_in_place(target, beside(target, L"whole"))) {
    notice = "an earlier write did not end, and was ended now";
  }
  // Without a target, what is left may be all there is of it: see `replace`.
  if (is_there(target)) clear_leftovers(target);
  create();
  stream = stream_of(fresh);
}

/// Refuses what this process may not write. That another one uses the file now says nothing.
void Replacement::State::check_target() const {
  if (target.filename().empty())
    fail_save(std::make_error_code(std::errc::no_such_file_or_directory));
  if (is_there(target) && !open_handle(target, GENERIC_WRITE, kShareAll, OPEN_EXISTING) &&
      GetLastError() != ERROR_SHARING_VIOLATION) {
    fail_save_of_windows();
  }
}

void Replacement::State::create() {
  constexpr DWORD kAccess = GENERIC_READ | GENERIC_WRITE;
  for (int number = 0; number < kMostWriters && !fresh; ++number) {
    std::wstring name = beside(target, std::to_wstring(number)).wstring();
    fresh = open_handle(name, kAccess, kShareAll, CREATE_NEW);
    if (fresh) path = std::move(name);
    if (!fresh && GetLastError() != ERROR_FILE_EXISTS) break;
  }
  if (!fresh) fail_save_of_windows("no file can be created beside it");
}

void Replacement::State::take_place() {
  const bool is_written = !fresh || _commit(_fileno(stream.get())) == 0;
  if (!is_written || std::fclose(stream.release()) != 0) {
    fail_save({errno, std::generic_category()});
  }
  if (!fresh) return;
  if (has_other_names(target)) {
    write_in_place(target, beside(target, L"whole"), fresh, path);
    path.clear();
  } else {
    replace();
  }
  fresh.reset();  // the next save cannot replace a file that is held
}

void Replacement::State::replace() {
  const bool was_there = is_there(target);
  // The first way keeps what Windows knows about the old file, such as who may use it; it wants one
  // to be there, and a file system that can do it.
  const bool is_in_place = ReplaceFileW(target.c_str(), path.c_str(), nullptr,
                                        REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0 ||
                           MoveFileExW(path.c_str(), target.c_str(),
                                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
  const DWORD error = is_in_place ? ERROR_SUCCESS : GetLastError();
  // The first way can fail after it has removed the old file: the new one is all there is then.
  if (is_in_place || (was_there && !is_there(target))) path.clear();
  SetLastError(error);
  if (!is_in_place) fail_save_of_windows("it cannot be replaced");
}

Replacement::State::~State() {
  stream.reset();
  fresh.reset();
  if (!path.empty()) DeleteFileW(path.c_str());
}

Replacement::Replacement(const char* path) : state_(std::make_unique<State>()) {
  try {
    state_->open(path, notice_);
  } catch (const SaveFailure& failure) {
    failure_ = failure.what();
  }
}

Replacement::~Replacement() = default;

std::FILE* Replacement::file() const { return state_->stream.get(); }

bool Replacement::take_place() try {
  state_->take_place();
  return true;
} catch (const SaveFailure& failure) {
  failure_ = failure.what();
  return false;
}

}  // namespace zelk::platform

#include <fcntl.h>
#include <io.h>

#include <utility>

#include "files/in_place_win32.hpp"
#include "files/save.hpp"
#include "files/save_failure.hpp"

namespace zelk::files {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kMoveOver = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;

/// Removes what killed processes left. To open a file without sharing it fails while its writer
/// holds it.
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

/// A stream for the file of a handle that stays open.
File stream_of(const Handle& file, Content content) {
  const bool is_text = content == Content::kText;
  HANDLE own = nullptr;
  const HANDLE process = GetCurrentProcess();
  if (!DuplicateHandle(process, file.get(), process, &own, 0, FALSE, DUPLICATE_SAME_ACCESS)) {
    fail_save_of_windows();
  }
  const int descriptor =
      _open_osfhandle(reinterpret_cast<intptr_t>(own), is_text ? _O_TEXT : _O_BINARY);
  File stream(descriptor < 0 ? nullptr : _fdopen(descriptor, is_text ? "wt" : "wb"));
  if (stream) {
    std::setvbuf(stream.get(), nullptr, _IONBF, 0);
    return stream;
  }
  const std::error_code reason(errno, std::generic_category());
  if (descriptor < 0) CloseHandle(own);
  if (descriptor >= 0) _close(descriptor);
  fail_save(reason);
}

/// Refuses what this process may not write. A file that another one uses now is not refused.
void check_writable(const fs::path& file) {
  if (is_there(file) && !open_handle(file, GENERIC_WRITE, kShareAll, OPEN_EXISTING) &&
      GetLastError() != ERROR_SHARING_VIOLATION) {
    fail_save_of_windows();
  }
}

class WindowsSave : public Save {
 public:
  explicit WindowsSave(Content content) : content_(content) {}
  WindowsSave(const WindowsSave&) = delete;
  WindowsSave& operator=(const WindowsSave&) = delete;
  ~WindowsSave() override;
  void open(const char* name, std::string& notice);
  std::FILE* file() const override { return stream_.get(); }
  void take_place() override;

 private:
  void check_target() const;
  void create();
  void replace();

  Content content_;
  fs::path target_;    ///< behind a link
  std::wstring path_;  ///< of the file to remove; empty when there is none
  Handle fresh_;       ///< held until it has taken its place; none when the target is a device
  File stream_;        ///< into `fresh_`, or else into the target
};

void WindowsSave::open(const char* name, std::string& notice) {
  target_ = behind_link(name);
  if (is_device(target_)) {
    stream_ = open_for_writing(name, content_);
    if (!stream_) fail_save({errno, std::generic_category()});
    return;
  }
  check_target();
  if (end_write_in_place(target_)) notice = kEarlierWriteEnded;
  // Without a target, what is left may be all there is of it: see `replace`.
  if (is_there(target_)) clear_leftovers(target_);
  create();
  stream_ = stream_of(fresh_, content_);
}

void WindowsSave::check_target() const {
  if (target_.filename().empty())
    fail_save(std::make_error_code(std::errc::no_such_file_or_directory));
  check_writable(target_);
}

void WindowsSave::create() {
  constexpr DWORD kAccess = GENERIC_READ | GENERIC_WRITE;
  for (int number = 0; number < kMostWriters && !fresh_; ++number) {
    std::wstring name = beside(target_, std::to_wstring(number)).wstring();
    fresh_ = open_handle(name, kAccess, kShareAll, CREATE_NEW);
    if (fresh_) path_ = std::move(name);
    if (!fresh_ && GetLastError() != ERROR_FILE_EXISTS) break;
  }
  if (!fresh_) fail_save_of_windows("no file can be created beside it");
}

void WindowsSave::take_place() {
  const bool is_written = !fresh_ || _commit(_fileno(stream_.get())) == 0;
  if (!is_written || std::fclose(stream_.release()) != 0) {
    fail_save({errno, std::generic_category()});
  }
  if (!fresh_) return;
  if (has_other_names(target_)) {
    write_in_place(target_, fresh_, path_);
    path_.clear();
  } else {
    replace();
  }
  fresh_.reset();  // the next save cannot replace a file that is held
}

void WindowsSave::replace() {
  const bool was_there = is_there(target_);
  // The first way keeps what Windows knows about the old file, such as who may use it; it wants one
  // to be there, and a file system that can do it.
  const bool is_in_place = ReplaceFileW(target_.c_str(), path_.c_str(), nullptr,
                                        REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0 ||
                           MoveFileExW(path_.c_str(), target_.c_str(), kMoveOver) != 0;
  const DWORD error = is_in_place ? ERROR_SUCCESS : GetLastError();
  // The first way can fail after it has removed the old file: the new one is all there is then.
  if (is_in_place || (was_there && !is_there(target_))) path_.clear();
  SetLastError(error);
  if (!is_in_place) fail_save_of_windows("it cannot be replaced");
}

WindowsSave::~WindowsSave() {
  stream_.reset();
  fresh_.reset();
  if (!path_.empty()) DeleteFileW(path_.c_str());
}

}  // namespace

// Who may use a file is inherited from its folder.
void make_ready(const fs::path& fresh, const fs::path& place) {
  check_writable(place);
  const Handle file = open_handle(fresh, GENERIC_WRITE, kShareAll, OPEN_EXISTING);
  if (!file || !FlushFileBuffers(file.get())) fail_save_of_windows();
}

void move_over(const fs::path& fresh, const fs::path& place) {
  if (!MoveFileExW(fresh.c_str(), place.c_str(), kMoveOver)) fail_save_of_windows();
}

void sync_folder(const fs::path& /*folder*/) {}

std::unique_ptr<Save> start_save(const char* path, Content content, std::string& notice) {
  auto save = std::make_unique<WindowsSave>(content);
  save->open(path, notice);
  return save;
}

}  // namespace zelk::files

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "files/files.hpp"
#include "logs/input/byte_stream.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::logs {

namespace {

constexpr std::size_t kMostAtOnce = 1 << 30;  // a read takes no more than 2 GiB

[[noreturn]] void fail(const char* what, const std::string& name, const std::string& why) {
  throw ZelkLogError(std::string(what) + ' ' + name + ": " + why);
}

}  // namespace

struct FileStream::File {
  files::File opened;
  HANDLE handle;
};

FileStream::FileStream(const std::optional<std::string>& path, const std::atomic<bool>* stop)
    : name_(path.value_or("standard input")),
      file_(std::make_unique<File>(File{nullptr, GetStdHandle(STD_INPUT_HANDLE)})),
      stop_(stop) {
  if (path) {
    file_->opened = files::open_for_reading(path->c_str());
    if (!file_->opened) fail("cannot open", name_, std::generic_category().message(errno));
    file_->handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file_->opened.get())));
  }
  LARGE_INTEGER size;
  if (GetFileType(file_->handle) == FILE_TYPE_DISK && GetFileSizeEx(file_->handle, &size))
    size_ = static_cast<std::uint64_t>(size.QuadPart);
}

FileStream::~FileStream() = default;

std::size_t FileStream::read(char* buffer, std::size_t size) {
  if (stop_ && *stop_) return 0;
  DWORD count = 0;
  const auto most = static_cast<DWORD>(std::min(size, kMostAtOnce));
  if (ReadFile(file_->handle, buffer, most, &count, nullptr)) {
    bytes_read_ += count;
    return count;
  }
  const DWORD error = GetLastError();
  const bool is_stopped = stop_ && *stop_ && error == ERROR_OPERATION_ABORTED;
  const bool is_end = error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF;
  if (is_stopped || is_end) return 0;
  fail("cannot read", name_, std::system_category().message(static_cast<int>(error)));
}

void FileStream::seek(std::uint64_t offset_bytes) {
  LARGE_INTEGER offset;
  offset.QuadPart = static_cast<LONGLONG>(std::min<std::uint64_t>(offset_bytes, INT64_MAX));
  if (!SetFilePointerEx(file_->handle, offset, nullptr, FILE_BEGIN))
    fail("cannot read", name_, std::system_category().message(static_cast<int>(GetLastError())));
}

}  // namespace zelk::logs

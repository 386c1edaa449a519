#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>

#include "files/files.hpp"
#include "logs/input/byte_stream.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::logs {

namespace {

constexpr int kStopInterval = 50;  // milliseconds in which a stop is noticed

[[noreturn]] void fail(const char* what, const std::string& name) {
  throw ZelkLogError(std::string(what) + ' ' + name + ": " +
                     std::generic_category().message(errno));
}

/// Waits until there is something to read, or the file has ended; false when it is to stop.
bool wait_for_bytes(int file, const std::atomic<bool>& stop) {
  pollfd waited{file, POLLIN, 0};
  while (!stop && poll(&waited, 1, kStopInterval) <= 0) {
  }
  return !stop;
}

}  // namespace

struct FileStream::File {
  files::File opened;
  int number;
};

FileStream::FileStream(const std::optional<std::string>& path, const std::atomic<bool>* stop)
    : name_(path.value_or("standard input")),
      file_(std::make_unique<File>(File{nullptr, STDIN_FILENO})),
      stop_(stop) {
  if (path) {
    file_->opened = files::open_for_reading(path->c_str());
    if (!file_->opened) fail("cannot open", name_);
    file_->number = fileno(file_->opened.get());
  }
  struct stat status;
  if (fstat(file_->number, &status) == 0 && S_ISREG(status.st_mode))
    size_ = static_cast<std::uint64_t>(status.st_size);
}

FileStream::~FileStream() = default;

std::size_t FileStream::read(char* buffer, std::size_t size) {
  for (;;) {
    if (stop_ && !wait_for_bytes(file_->number, *stop_)) return 0;
    const ssize_t count = ::read(file_->number, buffer, size);
    if (count >= 0) {
      bytes_read_ += static_cast<std::uint64_t>(count);
      return static_cast<std::size_t>(count);
    }
    if (errno != EINTR) fail("cannot read", name_);
  }
}

void FileStream::seek(std::uint64_t offset_bytes) {
  constexpr std::uint64_t kMost = std::numeric_limits<off_t>::max();
  if (lseek(file_->number, static_cast<off_t>(std::min(offset_bytes, kMost)), SEEK_SET) < 0)
    fail("cannot read", name_);
}

}  // namespace zelk::logs

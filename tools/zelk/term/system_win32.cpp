#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <mutex>
#include <system_error>

#include "term/system.hpp"

namespace zelk::tool {

const char* const kModuleExtension = ".dll";

void prepare_process() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
}

// What Windows ends a program for comes on a thread of its own and leaves no time to hold it back.
HeldSignals::HeldSignals() = default;
HeldSignals::~HeldSignals() = default;

namespace {

std::atomic<bool> is_stop_noted = false;
std::mutex reader_mutex;
HANDLE reader = nullptr;  // the thread inside `read_some`; guarded by reader_mutex

/// Ends the read under way; false when there is none.
bool cancel_read() {
  const std::lock_guard lock(reader_mutex);
  if (reader) CancelSynchronousIo(reader);
  return reader;
}

/// Runs on a thread of its own. A thread that is about to read does not notice a cancellation,
/// which is why this repeats it.
BOOL WINAPI note_stop(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
  if (is_stop_noted.exchange(true)) return FALSE;
  while (cancel_read()) Sleep(10);
  return TRUE;
}

/// Names the calling thread as the one that reads.
class NamedReader {
 public:
  NamedReader() {
    const std::lock_guard lock(reader_mutex);
    reader = OpenThread(THREAD_TERMINATE, FALSE, GetCurrentThreadId());
  }
  NamedReader(const NamedReader&) = delete;
  NamedReader& operator=(const NamedReader&) = delete;
  ~NamedReader() {
    const std::lock_guard lock(reader_mutex);
    if (reader) CloseHandle(reader);
    reader = nullptr;
  }
};

}  // namespace

NotedStop::NotedStop() { SetConsoleCtrlHandler(note_stop, TRUE); }
NotedStop::~NotedStop() { SetConsoleCtrlHandler(note_stop, FALSE); }

bool NotedStop::is_requested() { return is_stop_noted; }

std::size_t read_some(std::FILE* file, char* buffer, std::size_t size) {
  const NamedReader named;
  if (NotedStop::is_requested()) return 0;
  const auto most = static_cast<unsigned>(std::min<std::size_t>(size, INT_MAX));
  const int count = _read(_fileno(file), buffer, most);
  if (NotedStop::is_requested()) return 0;
  if (count < 0) throw std::system_error(errno, std::generic_category(), "cannot read");
  return static_cast<std::size_t>(count);
}

std::optional<std::uint64_t> size_of_regular_file(std::FILE* file) {
  struct _stat64 status;
  if (_fstat64(_fileno(file), &status) != 0 || !(status.st_mode & _S_IFREG)) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

bool is_terminal(std::FILE* file) { return _isatty(_fileno(file)); }

}  // namespace zelk::tool

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <atomic>
#include <mutex>

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
HANDLE reader = nullptr;  // the thread that waits for input; guarded by reader_mutex

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

}  // namespace

NotedStop::NotedStop() { SetConsoleCtrlHandler(note_stop, TRUE); }
NotedStop::~NotedStop() { SetConsoleCtrlHandler(note_stop, FALSE); }

const std::atomic<bool>& NotedStop::is_requested() { return is_stop_noted; }

WaitingReader::WaitingReader() {
  const std::lock_guard lock(reader_mutex);
  reader = OpenThread(THREAD_TERMINATE, FALSE, GetCurrentThreadId());
}

WaitingReader::~WaitingReader() {
  const std::lock_guard lock(reader_mutex);
  if (reader) CloseHandle(reader);
  reader = nullptr;
}

bool is_terminal(std::FILE* file) { return _isatty(_fileno(file)); }

}  // namespace zelk::tool

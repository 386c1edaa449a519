#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <mutex>

#include "files/files.hpp"
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

/// Names the calling thread as the one that waits for input.
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

const std::atomic<bool>& NotedStop::is_requested() { return is_stop_noted; }

void NotedStop::request() {
  is_stop_noted = true;
  while (cancel_read()) Sleep(10);
}

bool read_until_stop(const std::function<bool()>& read) {
  const NamedReader named;
  return read();
}

namespace {

std::optional<FileIdentity> identity_of(HANDLE file) {
  BY_HANDLE_FILE_INFORMATION information = {};
  if (GetFileType(file) != FILE_TYPE_DISK || !GetFileInformationByHandle(file, &information))
    return std::nullopt;
  const std::uint64_t high = information.nFileIndexHigh;
  return FileIdentity{information.dwVolumeSerialNumber, high << 32 | information.nFileIndexLow};
}

}  // namespace

std::optional<FileIdentity> identity_of(const std::string& path) {
  const files::File file = files::open_for_reading(path.c_str());
  if (!file) return std::nullopt;
  return identity_of(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file.get()))));
}

std::optional<FileIdentity> identity_of_input() {
  return identity_of(GetStdHandle(STD_INPUT_HANDLE));
}

std::optional<FileIdentity> identity_of_output() {
  return identity_of(GetStdHandle(STD_OUTPUT_HANDLE));
}

// Other devices, such as NUL, are terminals to _isatty.
bool is_terminal(std::FILE* file) {
  DWORD mode = 0;
  return GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file))), &mode) != 0;
}

TerminalForm terminal_form(std::FILE* file) {
  TerminalForm form;
  if (!is_terminal(file)) return form;
  const auto console = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
  CONSOLE_SCREEN_BUFFER_INFO screen = {};
  if (GetConsoleScreenBufferInfo(console, &screen)) {
    form.columns = static_cast<std::size_t>(screen.srWindow.Right - screen.srWindow.Left + 1);
    form.lines = static_cast<std::size_t>(screen.srWindow.Bottom - screen.srWindow.Top + 1);
  }
  DWORD mode = 0;
  const char* const no_color = std::getenv("NO_COLOR");
  const bool wants_colors = !no_color || *no_color == '\0';
  form.has_colors = wants_colors && GetConsoleMode(console, &mode) &&
                    SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  form.has_unicode = GetConsoleOutputCP() == CP_UTF8;
  return form;
}

}  // namespace zelk::tool

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "term/system.hpp"

namespace zelk::tool {

const char* const kModuleExtension = ".so";

/// A write that a pipe or a limit of the file's size refuses then fails, with its reason.
void prepare_process() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

namespace {

constexpr std::array kEndingSignals = {SIGHUP, SIGINT, SIGTERM};

sigset_t ending_signals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kEndingSignals) sigaddset(&set, signal);
  return set;
}

std::atomic<int> noted_signal = 0;
std::array<int, 2> stop_pipe = {-1, -1};  // a byte in it ends the wait of `read_some`

void note_signal(int signal) {
  const int kept = errno;
  noted_signal = signal;
  static_cast<void>(!write(stop_pipe[1], "", 1));
  errno = kept;
}

/// An interrupted write goes on, and a second signal has its usual effect.
void note_unless_ignored(int signal) {
  struct sigaction action = {};
  sigaction(signal, nullptr, &action);
  if (action.sa_handler == SIG_IGN) return;
  action = {};
  action.sa_handler = note_signal;
  action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
  sigaction(signal, &action, nullptr);
}

void restore(int signal) {
  struct sigaction action = {};
  sigaction(signal, nullptr, &action);
  if (action.sa_handler == note_signal) std::signal(signal, SIG_DFL);
}

/// Waits until `file` has something to read, or has ended; false when the program is to stop.
bool wait_for_input(int file) {
  if (stop_pipe[0] < 0) return true;
  std::array<pollfd, 2> waited = {{{file, POLLIN, 0}, {stop_pipe[0], POLLIN, 0}}};
  while (poll(waited.data(), waited.size(), -1) < 0 && errno == EINTR) {
  }
  return !NotedStop::is_requested();
}

}  // namespace

NotedStop::NotedStop() {
  if (pipe2(stop_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
    throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
  std::ranges::for_each(kEndingSignals, note_unless_ignored);
}

NotedStop::~NotedStop() {
  std::ranges::for_each(kEndingSignals, restore);
  for (int& end : stop_pipe) close(std::exchange(end, -1));
  if (noted_signal != 0) std::raise(noted_signal);
}

bool NotedStop::is_requested() { return noted_signal != 0; }

HeldSignals::HeldSignals() {
  const sigset_t set = ending_signals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

HeldSignals::~HeldSignals() {
  const sigset_t set = ending_signals();
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

std::size_t read_some(std::FILE* file, char* buffer, std::size_t size) {
  for (;;) {
    if (!wait_for_input(fileno(file))) return 0;
    const ssize_t count = read(fileno(file), buffer, size);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "cannot read");
  }
}

std::optional<std::uint64_t> size_of_regular_file(std::FILE* file) {
  struct stat status;
  if (fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

bool is_terminal(std::FILE* file) { return isatty(fileno(file)); }

}  // namespace zelk::tool

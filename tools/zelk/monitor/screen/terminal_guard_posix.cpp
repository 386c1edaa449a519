#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>

#include "monitor/screen/terminal_guard.hpp"

namespace zelk::tool {

namespace {

constexpr std::array kCrashes = {SIGQUIT, SIGILL,  SIGABRT, SIGBUS,
                                 SIGFPE,  SIGSEGV, SIGTRAP, SIGXCPU};
constexpr std::array kNoted = {SIGTSTP, SIGCONT, SIGWINCH};

// Signal handlers reach nothing but these.
int terminal = -1;
termios settings = {};
std::array<char, 512> farewell = {};
std::atomic<std::size_t> farewell_size = 0;
std::array<struct sigaction, kCrashes.size()> before_crashes = {};
std::array<struct sigaction, kNoted.size()> before_noted = {};
std::array<std::atomic<bool>, kNoted.size()> noted = {};

/// The signal has its old effect when the handler returns, which unblocks it.
void restore_and_raise(int signal) {
  const int saved_error = errno;
  const std::size_t size = farewell_size.exchange(0);
  if (size > 0) {
    // Nobody is left to tell of a failure.
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, farewell.data(), size);
    tcsetattr(terminal, TCSADRAIN, &settings);
  }
  const auto* const place = std::find(kCrashes.begin(), kCrashes.end(), signal);
  sigaction(signal, &before_crashes[static_cast<std::size_t>(place - kCrashes.begin())], nullptr);
  errno = saved_error;
  static_cast<void>(raise(signal));
}

void note(int signal) {
  const auto* const place = std::find(kNoted.begin(), kNoted.end(), signal);
  noted[static_cast<std::size_t>(place - kNoted.begin())] = true;
}

/// Reads and writes of other threads go on.
struct sigaction action_of(void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  return action;
}

template <std::size_t kSize>
void install(const std::array<int, kSize>& signals, void (*handler)(int),
             std::array<struct sigaction, kSize>& before) {
  const struct sigaction action = action_of(handler);
  for (std::size_t i = 0; i < kSize; ++i) sigaction(signals[i], &action, &before[i]);
}

template <std::size_t kSize>
void uninstall(const std::array<int, kSize>& signals,
               const std::array<struct sigaction, kSize>& before) {
  for (std::size_t i = 0; i < kSize; ++i) sigaction(signals[i], &before[i], nullptr);
}

}  // namespace

TerminalGuard::TerminalGuard(int descriptor) {
  terminal = descriptor;
  tcgetattr(terminal, &settings);
  install(kCrashes, restore_and_raise, before_crashes);
  install(kNoted, note, before_noted);
}

TerminalGuard::~TerminalGuard() {
  farewell_size = 0;
  uninstall(kNoted, before_noted);
  uninstall(kCrashes, before_crashes);
}

void TerminalGuard::set_farewell(std::string_view sequences) {
  farewell_size = 0;
  farewell_size = sequences.copy(farewell.data(), farewell.size());
}

bool TerminalGuard::take_suspension() { return noted[0].exchange(false); }
bool TerminalGuard::take_continuation() { return noted[1].exchange(false); }
bool TerminalGuard::take_resize() { return noted[2].exchange(false); }

void TerminalGuard::suspend() {
  sigaction(SIGTSTP, &before_noted[0], nullptr);
  static_cast<void>(raise(SIGTSTP));
  const struct sigaction action = action_of(note);
  sigaction(SIGTSTP, &action, nullptr);
}

}  // namespace zelk::tool

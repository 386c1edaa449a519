#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

#include "term/system.hpp"

namespace zelk::tool {

const char* const kModuleExtension = ".so";

/// A write that a pipe or a limit of the file's size refuses then fails, with its reason.
void prepare_process() {
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
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
std::atomic<bool> is_stop_noted = false;

void note_signal(int signal) {
  noted_signal = signal;
  is_stop_noted = true;
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
  if (action.sa_handler == note_signal) static_cast<void>(std::signal(signal, SIG_DFL));
}

}  // namespace

NotedStop::NotedStop() { std::ranges::for_each(kEndingSignals, note_unless_ignored); }

NotedStop::~NotedStop() {
  std::ranges::for_each(kEndingSignals, restore);
  if (noted_signal != 0) static_cast<void>(std::raise(noted_signal));
}

const std::atomic<bool>& NotedStop::is_requested() { return is_stop_noted; }
void NotedStop::request() { is_stop_noted = true; }

// Whoever waits looks for a stop in between.
bool read_until_stop(const std::function<bool()>& read) { return read(); }

HeldSignals::HeldSignals() {
  const sigset_t set = ending_signals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

HeldSignals::~HeldSignals() {
  const sigset_t set = ending_signals();
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

namespace {

/// @param result  of the call that filled in `file`
std::optional<FileIdentity> identity_if_told(int result, const struct stat& file) {
  if (result != 0 || !(S_ISREG(file.st_mode) || S_ISFIFO(file.st_mode))) return std::nullopt;
  return FileIdentity{file.st_dev, file.st_ino};
}

std::optional<FileIdentity> identity_of(int descriptor) {
  struct stat file = {};
  return identity_if_told(fstat(descriptor, &file), file);
}

}  // namespace

std::optional<FileIdentity> identity_of(const std::string& path) {
  struct stat file = {};
  return identity_if_told(stat(path.c_str(), &file), file);
}

std::optional<FileIdentity> identity_of_input() { return identity_of(STDIN_FILENO); }
std::optional<FileIdentity> identity_of_output() { return identity_of(STDOUT_FILENO); }

bool is_terminal(std::FILE* file) { return isatty(fileno(file)); }

namespace {

/// A variable of the environment; empty also when there is none.
std::string_view variable(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

bool is_locale_utf8() {
  for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const std::string_view locale = variable(name);
    if (locale.empty()) continue;
    return locale.find("UTF-8") != std::string_view::npos ||
           locale.find("utf8") != std::string_view::npos;
  }
  return false;
}

}  // namespace

TerminalForm terminal_form(std::FILE* file) {
  TerminalForm form;
  if (!is_terminal(file)) return form;
  winsize size = {};
  if (ioctl(fileno(file), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0) {
    form.columns = size.ws_col;
    form.lines = size.ws_row;
  }
  form.has_colors = variable("NO_COLOR").empty() && variable("TERM") != "dumb";
  form.has_unicode = is_locale_utf8();
  return form;
}

}  // namespace zelk::tool

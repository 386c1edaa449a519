#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "system.hpp"

namespace zelk::tool {

const char* const kModuleExtension = ".so";

void prepare_process() { std::signal(SIGPIPE, SIG_IGN); }

namespace {

sigset_t ending_signals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) sigaddset(&set, signal);
  return set;
}

}  // namespace

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

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <exception>
#include <stdexcept>
#include <system_error>

#include "growth/measuring.hpp"

namespace zelk::bench {
namespace {

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

double used_seconds(const rusage& usage) {
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// In the child: drops what it prints, and ends it in time.
void restrict_child() {
  const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(null, STDOUT_FILENO);
  dup2(null, STDERR_FILENO);
  const rlimit limit{kMostSeconds, kMostSeconds};
  setrlimit(RLIMIT_CPU, &limit);
}

/// Runs `work` in a child process, whose exit code it returns.
///
/// @return processor seconds of the whole child
template <typename Work>
double run_child(const Work& work) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (child == 0) {
    restrict_child();
    _exit(work());
  }
  int status = 0;
  rusage usage{};
  while (wait4(child, &status, 0, &usage) < 0) {
    if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "wait4");
  }
  if (WIFEXITED(status)) {
    // Faults of the input are measured; a command line that is none would be quick for any input.
    const int code = WEXITSTATUS(status);
    if (code > 1) throw std::runtime_error("ended with exit code " + std::to_string(code));
    return used_seconds(usage);
  }
  if (WTERMSIG(status) == SIGXCPU || WTERMSIG(status) == SIGKILL) return kNoEnd;
  throw std::runtime_error("ended by signal " + std::to_string(WTERMSIG(status)));
}

double own_seconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// Runs `work`; the processor seconds since its start go through the pipe.
int work_and_tell(const std::function<void(const Start&)>& work, int pipe) {
  try {
    double start = own_seconds();
    work([&start] { start = own_seconds(); });
    const double taken = own_seconds() - start;
    return write(pipe, &taken, sizeof taken) == sizeof taken ? 0 : 1;
  } catch (const std::exception&) {
    return 1;
  }
}

}  // namespace

double seconds_of(const std::function<void(const Start&)>& work) {
  int ends[2];
  if (pipe(ends) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  const double whole = run_child([&] { return work_and_tell(work, ends[1]); });
  close(ends[1]);
  double taken = 0;
  const bool is_told = read(ends[0], &taken, sizeof taken) == sizeof taken;
  close(ends[0]);
  if (whole == kNoEnd) return kNoEnd;
  if (!is_told) throw std::runtime_error("has failed");
  return taken;
}

double seconds_of(const std::vector<std::string>& program) {
  std::vector<char*> arguments;
  for (const std::string& argument : program)
    arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  return run_child([&] {
    execv(arguments.front(), arguments.data());
    return 127;
  });
}

int process_id() { return getpid(); }

}  // namespace zelk::bench

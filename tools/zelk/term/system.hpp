/// \file
/// What the program needs of the operating system it runs on.

#ifndef ZELK_TOOL_TERM_SYSTEM_HPP
#define ZELK_TOOL_TERM_SYSTEM_HPP

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>

namespace zelk::tool {

/// What the names of modules end in.
extern const char* const kModuleExtension;

/// Sees to it that a closed pipe is a failed write and not the end of the process, and that every
/// system gets the same bytes on standard input and output.
void prepare_process();

/// Reads what is there, and waits only while nothing is; past the buffer of `file`.
///
/// @return number of bytes put into `buffer`, at most `size`; 0 at the end
/// @throws std::system_error
std::size_t read_some(std::FILE* file, char* buffer, std::size_t size);

/// Bytes of a regular file; none for a pipe, a device or anything else.
std::optional<std::uint64_t> size_of_regular_file(std::FILE* file);

/// Holds back the signals by which a user ends a program, so that no half-written file is left
/// behind: they take effect when this goes.
class HeldSignals {
 public:
  HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;
  ~HeldSignals();
};

/// While it lives, the first signal by which a user ends a program (an interrupt, a termination or
/// a closed terminal) makes `read_some` report the end of its file, so that what has been read can
/// be finished. The next one ends the program at once. Signals that were ignored stay ignored.
///
/// One at a time.
class NotedStop {
 public:
  NotedStop();
  NotedStop(const NotedStop&) = delete;
  NotedStop& operator=(const NotedStop&) = delete;
  /// Ends the process by the signal that was noted, where the system knows signals; a shell sees
  /// `kExitInterrupted` for an interrupt.
  ~NotedStop();

  /// Whether there was a signal; false without an object. Any thread may ask.
  static bool is_requested();
};

/// Whether a user watches.
bool is_terminal(std::FILE* file);

}  // namespace zelk::tool

#endif

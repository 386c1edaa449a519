/// \file
/// What the program needs of the operating system it runs on.

#ifndef ZELK_TOOL_TERM_SYSTEM_HPP
#define ZELK_TOOL_TERM_SYSTEM_HPP

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <system_error>

namespace zelk::tool {

/// What the names of modules end in.
extern const char* const kModuleExtension;

/// Sees to it that a closed pipe is a failed write and not the end of the process, and that every
/// system gets the same bytes on standard input and output.
void prepare_process();

/// Holds back the signals by which a user ends a program, so that no half-written file is left
/// behind. They take effect when this is destroyed.
class HeldSignals {
 public:
  HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;
  ~HeldSignals();
};

/// While it lives, the first signal by which a user ends a program (an interrupt, a termination or
/// a closed terminal) is noted, so that the program finishes what it has read. The next one ends
/// the program at once. Signals that were ignored stay ignored.
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

  /// Whether there was a signal. Any thread may ask; it lives as long as the process.
  static const std::atomic<bool>& is_requested();
  /// Ends what a signal would end, without one: the process goes on when this is destroyed. Ends
  /// waits in `read_until_stop`, of any thread.
  static void request();
};

/// Runs `read`, which may wait for input, in the calling thread. A wait that does not end by itself
/// when a stop is noted, is ended. One thread at a time.
///
/// @return what `read` returns
bool read_until_stop(const std::function<bool()>& read);

/// Type of the file that `path`, in UTF-8, leads to; `not_found` or `none` when there is none.
inline std::filesystem::file_type file_type(const std::string& path) {
  std::error_code ignored;
  const std::filesystem::path native(std::u8string(path.begin(), path.end()));
  return std::filesystem::status(native, ignored).type();
}

inline bool exists(const std::string& path) {
  const std::filesystem::file_type type = file_type(path);
  return type != std::filesystem::file_type::not_found && type != std::filesystem::file_type::none;
}

/// What tells a file from all others, by whatever name it is reached.
using FileIdentity = std::array<std::uint64_t, 2>;

/// Of the regular file or pipe that `path`, in the system's encoding, leads to; none for others,
/// such as a terminal, which may well be read and written at once.
std::optional<FileIdentity> identity_of(const std::string& path);

/// Likewise of standard input and standard output.
std::optional<FileIdentity> identity_of_input();
std::optional<FileIdentity> identity_of_output();

/// Whether a user sees what is written to `file`.
bool is_terminal(std::FILE* file);

/// What can be shown to the reader of an output.
struct TerminalForm {
  std::size_t columns = 80;
  std::size_t lines = 24;
  bool has_colors = false;
  bool has_unicode = true;
};

/// Of `file`: where it is no terminal, the defaults. The variable NO_COLOR, when it is not empty,
/// and the terminal "dumb" mean no colours; Unicode asks for a locale, or console, in UTF-8.
TerminalForm terminal_form(std::FILE* file);

}  // namespace zelk::tool

#endif

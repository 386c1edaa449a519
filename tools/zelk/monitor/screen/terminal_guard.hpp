/// \file
/// A terminal that is left as it was, also by a crash.

#ifndef ZELK_TOOL_MONITOR_SCREEN_TERMINAL_GUARD_HPP
#define ZELK_TOOL_MONITOR_SCREEN_TERMINAL_GUARD_HPP

#include <string_view>

namespace zelk::tool {

/// While it lives, a signal that ends the process at once (a fault of the program, a quit key)
/// restores the terminal's settings and screen first, and then has the effect that it had before.
/// What ends the program in order is left to destructors.
///
/// Signals that stop and continue the process, and those of a new size, are noted.
///
/// One at a time.
class TerminalGuard {
 public:
  /// Remembers the settings of a terminal.
  ///
  /// @param descriptor  of the terminal; open as long as the object lives
  explicit TerminalGuard(int descriptor);
  TerminalGuard(const TerminalGuard&) = delete;
  TerminalGuard& operator=(const TerminalGuard&) = delete;
  ~TerminalGuard();

  /// What brings the old screen back, once another one is shown; cut when it is absurdly long.
  static void set_farewell(std::string_view sequences);

  /// Whether there was such a signal since the last call.
  static bool take_suspension();
  static bool take_continuation();
  static bool take_resize();
  /// Stops the process, as its user wants; returns when it goes on.
  static void suspend();
};

}  // namespace zelk::tool

#endif

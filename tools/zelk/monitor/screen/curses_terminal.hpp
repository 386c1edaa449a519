/// \file
/// A terminal with a full screen, by curses.

#ifndef ZELK_TOOL_MONITOR_SCREEN_CURSES_TERMINAL_HPP
#define ZELK_TOOL_MONITOR_SCREEN_CURSES_TERMINAL_HPP

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "monitor/screen/view.hpp"

namespace zelk::tool {

/// What the user did.
struct TerminalEvent {
  enum class Kind : std::uint8_t { kKey, kClick, kRedraw, kGone };
  Kind kind;  ///< `kGone`: the terminal is no longer there
  KeyPress press{};
  std::size_t column = 0;
  std::size_t line = 0;
};

class CursesTerminal {
 public:
  /// Takes over the terminal.
  ///
  /// @param why_not  receives the reason when there is none that can be used
  static std::unique_ptr<CursesTerminal> open(std::string& why_not);
  virtual ~CursesTerminal() = default;
  CursesTerminal(const CursesTerminal&) = delete;
  CursesTerminal& operator=(const CursesTerminal&) = delete;

  virtual const CharacterSet& characters() const = 0;
  virtual std::size_t columns() const = 0;
  virtual std::size_t lines() const = 0;
  /// Shows lines; what has not changed is not sent.
  virtual void paint(const std::vector<ScreenLine>& lines) = 0;
  /// Waits for the user. Also suspends the program when that is wanted.
  virtual std::optional<TerminalEvent> wait(std::chrono::milliseconds time) = 0;

 protected:
  CursesTerminal() = default;
};

}  // namespace zelk::tool

#endif

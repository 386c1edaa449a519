#define NCURSES_NOMACROS 1
#define NCURSES_WIDECHAR 1
#include <curses.h>
#include <fcntl.h>
#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <term.h>
#include <unistd.h>

// term.h names capabilities by macros.
#undef columns
#undef lines

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <map>

#include "base/encoding.hpp"
#include "monitor/screen/curses_terminal.hpp"
#include "monitor/screen/terminal_guard.hpp"

namespace zelk::tool {

namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

CharacterSet characters_of_locale() {
  static_cast<void>(std::setlocale(LC_CTYPE, ""));
  const bool is_utf8 = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
  return {is_utf8, [](char32_t c) { return wcwidth(static_cast<wchar_t>(c)); }};
}

/// A capability of the terminal; null when it has it not.
const char* capability(const char* name) {
  const char* const text = tigetstr(name);
  return reinterpret_cast<std::intptr_t>(text) == -1 ? nullptr : text;
}

std::string restoring_sequences;

int append_sequence(int byte) {
  restoring_sequences += static_cast<char>(byte);
  return byte;
}

/// Colours, keypad, mouse, cursor and the other screen, as curses leaves them too.
const std::string& make_restoring_sequences() {
  restoring_sequences.clear();
  if (capability("kmous") != nullptr) restoring_sequences = "\033[?1006;1000l";
  for (const char* name : {"sgr0", "op", "rmkx", "cnorm", "rmcup"})
    if (const char* const text = capability(name)) tputs(text, 1, append_sequence);
  return restoring_sequences;
}

/// Whether a terminal can move its cursor about.
std::string why_not_usable() {
  const char* const name = std::getenv("TERM");
  int error = 0;
  if (setupterm(nullptr, STDOUT_FILENO, &error) != OK) {
    if (name == nullptr) return "TERM is not set";
    return "terminals of the kind TERM=" + std::string(name) + " are unknown";
  }
  if (capability("cup") != nullptr && capability("clear") != nullptr) return "";
  return "a terminal of the kind TERM=" + std::string(name == nullptr ? "" : name) +
         " cannot move its cursor";
}

/// What roles look like. A selected line is reversed once more.
class Looks {
 public:
  Looks() {
    const char* const refused = std::getenv("NO_COLOR");
    const bool has_colors = (refused == nullptr || *refused == '\0') && ::has_colors();
    if (has_colors) start();
    set(Role::kPlain, A_NORMAL);
    set(Role::kFaint, A_DIM);
    set(Role::kBar, A_REVERSE);
    set(Role::kHeading, A_BOLD | A_UNDERLINE);
    set(Role::kKey, A_BOLD);
    set(Role::kFresh, has_colors ? color(1) : A_REVERSE);
    set(Role::kFading, has_colors ? color(2) : A_BOLD);
    set(Role::kUnknown, has_colors ? color(3) : A_NORMAL);
    set(Role::kAlert, has_colors ? color(4) | A_BOLD : A_BOLD | A_UNDERLINE);
    set(Role::kText, has_colors ? color(5) : A_NORMAL);
    set(Role::kCurve, has_colors ? color(6) : A_NORMAL);
  }

  attr_t of(Role role, const ScreenLine& line) const {
    attr_t look = looks_[static_cast<std::size_t>(role)];
    if (line.background == Role::kBar) look |= A_REVERSE;
    if (line.is_selected) look ^= A_REVERSE;
    return look;
  }

 private:
  static void start() {
    start_color();
    use_default_colors();
    init_pair(1, COLOR_BLACK, COLOR_YELLOW);
    init_pair(2, COLOR_YELLOW, -1);
    init_pair(3, COLOR_MAGENTA, -1);
    init_pair(4, COLOR_RED, -1);
    init_pair(5, COLOR_CYAN, -1);
    init_pair(6, COLOR_GREEN, -1);
  }

  static attr_t color(int pair) { return static_cast<attr_t>(COLOR_PAIR(pair)); }
  void set(Role role, attr_t look) { looks_[static_cast<std::size_t>(role)] = look; }

  std::array<attr_t, static_cast<std::size_t>(Role::kCurve) + 1> looks_{};
};

std::wstring wide_of(std::string_view text) {
  std::wstring wide;
  while (!text.empty()) {
    const CodePoint point = first_code_point(text);
    if (point.size > 0) wide += static_cast<wchar_t>(point.value);
    text.remove_prefix(std::max<std::size_t>(point.size, 1));
  }
  return wide;
}

KeyPress press_of_function(wint_t key) {
  static const std::map<wint_t, Key> kKeys = {
      {KEY_UP, Key::kUp},        {KEY_DOWN, Key::kDown},
      {KEY_LEFT, Key::kLeft},    {KEY_RIGHT, Key::kRight},
      {KEY_PPAGE, Key::kPageUp}, {KEY_NPAGE, Key::kPageDown},
      {KEY_HOME, Key::kHome},    {KEY_END, Key::kEnd},
      {KEY_ENTER, Key::kEnter},  {KEY_BACKSPACE, Key::kBackspace}};
  const auto found = kKeys.find(key);
  return found == kKeys.end() ? KeyPress{} : KeyPress{found->second};
}

KeyPress press_of_character(wint_t character) {
  constexpr wint_t kEscape = 27;
  if (character == '\r' || character == '\n') return {Key::kEnter};
  if (character == kEscape) return {Key::kEscape};
  if (character == 8 || character == 127) return {Key::kBackspace};
  return {Key::kCharacter, static_cast<char32_t>(character)};
}

class CursesTerminalPosix : public CursesTerminal {
 public:
  /// @param screen  made by newterm from the files
  CursesTerminalPosix(OpenFile in, OpenFile out, const CharacterSet& characters)
      : in_(std::move(in)),
        out_(std::move(out)),
        characters_(characters),
        guard_(fileno(in_.get())) {}

  bool start() {
    screen_ = newterm(nullptr, out_.get(), in_.get());
    if (screen_ == nullptr) return false;
    set_term(screen_);
    TerminalGuard::set_farewell(make_restoring_sequences());
    cbreak();
    noecho();
    nonl();
    curs_set(0);
    keypad(stdscr, true);
    nodelay(stdscr, true);
    set_escdelay(25);
    mouseinterval(0);
    mousemask(BUTTON1_PRESSED | BUTTON4_PRESSED | BUTTON5_PRESSED, nullptr);
    looks_.emplace();
    return true;
  }

  ~CursesTerminalPosix() override {
    if (screen_ == nullptr) return;
    endwin();
    TerminalGuard::set_farewell("");
    delscreen(screen_);
  }

  const CharacterSet& characters() const override { return characters_; }
  std::size_t columns() const override { return static_cast<std::size_t>(std::max(COLS, 1)); }
  std::size_t lines() const override { return static_cast<std::size_t>(std::max(LINES, 1)); }

  void paint(const std::vector<ScreenLine>& lines) override {
    werase(stdscr);
    for (std::size_t y = 0; y < lines.size(); ++y) {
      wmove(stdscr, static_cast<int>(y), 0);
      for (const ScreenPiece& piece : lines[y].pieces) {
        const std::wstring text = wide_of(piece.text);
        wattrset(stdscr, static_cast<int>(looks_->of(piece.role, lines[y])));
        waddnwstr(stdscr, text.data(), static_cast<int>(text.size()));
      }
    }
    wrefresh(stdscr);
  }

  std::optional<TerminalEvent> wait(std::chrono::milliseconds time) override {
    constexpr TerminalEvent kRedraw = {TerminalEvent::Kind::kRedraw};
    if (follow_signals()) return kRedraw;
    if (auto event = next_event()) return event;
    pollfd keys = {fileno(in_.get()), POLLIN, 0};
    if (poll(&keys, 1, static_cast<int>(time.count())) <= 0) return std::nullopt;
    // One that is gone can be read for ever, and nothing comes.
    constexpr int kMostEmpty = 50;
    if (auto event = next_event()) {
      empty_reads_ = 0;
      return event;
    }
    if ((keys.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0 || ++empty_reads_ > kMostEmpty)
      return TerminalEvent{TerminalEvent::Kind::kGone};
    return std::nullopt;
  }

 private:
  /// @return whether the screen is to be drawn anew
  bool follow_signals() {
    bool is_changed = false;
    if (TerminalGuard::take_suspension()) {
      endwin();
      TerminalGuard::suspend();
      is_changed = true;
    }
    if (TerminalGuard::take_continuation()) is_changed = true;
    if (is_changed) {
      reset_prog_mode();
      clearok(curscr, true);
    }
    if (!TerminalGuard::take_resize() && !is_changed) return false;
    winsize size = {};
    if (ioctl(fileno(out_.get()), TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0)
      resizeterm(size.ws_row, size.ws_col);
    return true;
  }

  std::optional<TerminalEvent> next_event() {
    wint_t character = 0;
    const int kind = wget_wch(stdscr, &character);
    if (kind == ERR) return std::nullopt;
    if (kind != KEY_CODE_YES) return event_of_character(character);
    if (character == KEY_MOUSE) return event_of_mouse();
    if (character == KEY_RESIZE) return TerminalEvent{TerminalEvent::Kind::kRedraw};
    return TerminalEvent{TerminalEvent::Kind::kKey, press_of_function(character)};
  }

  static TerminalEvent event_of_character(wint_t character) {
    constexpr wint_t kControlL = 12;
    if (character != kControlL) return {TerminalEvent::Kind::kKey, press_of_character(character)};
    clearok(curscr, true);
    return {TerminalEvent::Kind::kRedraw};
  }

  static TerminalEvent event_of_mouse() {
    MEVENT mouse = {};
    if (getmouse(&mouse) != OK) return {TerminalEvent::Kind::kRedraw};
    if (mouse.bstate & BUTTON4_PRESSED) return {TerminalEvent::Kind::kKey, {Key::kUp}};
    if (mouse.bstate & BUTTON5_PRESSED) return {TerminalEvent::Kind::kKey, {Key::kDown}};
    return {TerminalEvent::Kind::kClick,
            {},
            static_cast<std::size_t>(std::max(mouse.x, 0)),
            static_cast<std::size_t>(std::max(mouse.y, 0))};
  }

  OpenFile in_;
  OpenFile out_;
  CharacterSet characters_;
  TerminalGuard guard_;
  SCREEN* screen_ = nullptr;
  std::optional<Looks> looks_;
  int empty_reads_ = 0;
};

}  // namespace

std::unique_ptr<CursesTerminal> CursesTerminal::open(std::string& why_not) {
  const CharacterSet characters = characters_of_locale();
  why_not = why_not_usable();
  if (!why_not.empty()) return nullptr;
  OpenFile in(std::fopen("/dev/tty", "re"));
  const int copy = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
  OpenFile out(copy < 0 ? nullptr : fdopen(copy, "w"));
  why_not = "there is no terminal that keys could come from";
  if (!in || !out) return nullptr;
  auto terminal = std::make_unique<CursesTerminalPosix>(std::move(in), std::move(out), characters);
  why_not = "curses cannot use it";
  if (!terminal->start()) return nullptr;
  why_not.clear();
  return terminal;
}

}  // namespace zelk::tool

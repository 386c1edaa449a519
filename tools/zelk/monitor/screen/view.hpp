/// \file
/// The full screen of `zelk monitor`, as lines: what it shows, and what keys change in it. It knows
/// neither the terminal nor where frames come from.

#ifndef ZELK_TOOL_MONITOR_SCREEN_VIEW_HPP
#define ZELK_TOOL_MONITOR_SCREEN_VIEW_HPP

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "monitor/screen/curve.hpp"
#include "monitor/screen/details.hpp"
#include "monitor/screen/rows.hpp"

namespace zelk::tool {

/// What the header tells beside the rows.
struct BusFacts {
  std::string source{};  ///< "standard input"
  std::int64_t now = 0;  ///< as `BusState::now`
  std::uint64_t frame_count = 0;
  double frames_per_second = 0;
  std::uint64_t error_frame_count = 0;
  std::uint64_t unlisted_frame_count = 0;
  bool has_ended = false;
  std::string recording{};  ///< the file that frames are recorded to; empty for none
  ValueTrack watched{};     ///< what came since the last update of the signal that is watched
};

enum class Key : std::uint8_t {
  kCharacter,
  kUp,
  kDown,
  kLeft,
  kRight,
  kPageUp,
  kPageDown,
  kHome,
  kEnd,
  kEnter,
  kEscape,
  kBackspace,
};

struct KeyPress {
  Key key = Key::kCharacter;
  char32_t character = 0;
};

/// What a key asks of the program.
struct Request {
  enum class Kind : std::uint8_t { kNone, kQuit, kRecord, kStopRecording };
  Kind kind = Kind::kNone;
  std::string path{};  ///< of `kRecord`
};

class ScreenView {
 public:
  explicit ScreenView(const CharacterSet& characters) : characters_(characters) {}

  /// Takes the state of the bus.
  ///
  /// @param rows  stay where they are and outlive the object
  void update(const std::deque<RowState>& rows, BusFacts facts);
  Request press(const KeyPress& press);
  /// A click on a place of the lines that were drawn last.
  void click(std::size_t column, std::size_t line);
  /// Shows a text at the bottom until the next key.
  void say(std::string text) { message_ = std::move(text); }

  /// The signal whose curve is shown, which wants the values of every frame.
  WatchedSignal watched() const {
    return watched_ ? WatchedSignal{watched_->key, watched_->signal} : WatchedSignal{};
  }

  /// As many lines as there are, none wider than `columns`.
  std::vector<ScreenLine> draw(std::size_t columns, std::size_t lines);

 private:
  /// A line of the table: a row, or a line of its details.
  struct Item {
    std::size_t row;   // in `shown_`
    std::size_t line;  // 0: the row itself
  };
  enum class Prompt : std::uint8_t { kNone, kFilter, kRecord };
  struct Watched {
    const RowState* key;
    std::size_t signal;
  };

  // Keys
  Request press_in_prompt(const KeyPress& press);
  Request leave_prompt(bool is_accepted);
  Request press_character(char32_t character);
  void press_in_help(const KeyPress& press);
  void move(const KeyPress& press);
  void choose_item(std::size_t item);
  void expand(std::optional<bool> is_wanted);
  void expand_all();
  void sort_by_next();
  void toggle_curve();
  void watch(const ShownRow& row, std::size_t signal);
  void escape();

  // Lines
  void arrange(std::size_t columns);
  void find_chosen();
  void scroll(std::size_t room);
  ScreenLine header(std::size_t columns) const;
  ScreenLine headings(std::size_t columns) const;
  ScreenLine item_line(std::size_t index, std::size_t columns) const;
  void write_row(const RowState& state, const RowState* key, LineWriter& out) const;
  ScreenLine empty_line(std::size_t columns) const;
  ScreenLine footer(std::size_t columns) const;
  std::string choice_text() const;
  void draw_curve(std::vector<ScreenLine>& lines, std::size_t columns) const;
  std::vector<ScreenLine> draw_help(std::size_t columns, std::size_t lines);
  void mark_watched(std::size_t row, std::size_t line, LineWriter& out) const;

  CharacterSet characters_;
  RowList rows_;
  BusFacts facts_;
  RowChoice choice_;
  std::unordered_set<const RowState*> expanded_;
  bool are_all_expanded_ = false;  // those that come later, too

  // The chosen line; none: the first one, whichever it is.
  const RowState* chosen_row_ = nullptr;
  std::size_t chosen_line_ = 0;

  Prompt prompt_ = Prompt::kNone;
  std::string prompt_text_;
  std::string filter_before_;
  std::string message_;
  bool is_helping_ = false;
  std::size_t help_top_ = 0;

  std::optional<Watched> watched_;
  SignalCurve curve_;
  SignalCurve frozen_curve_;
  std::int64_t watched_time_ = kZelkNoTime;  // of the last value in the curve

  // As drawn last
  std::vector<ShownRow> shown_;
  std::vector<Item> items_;
  std::optional<TablePlan> plan_;
  std::size_t columns_ = 0;
  std::size_t chosen_ = 0;  // in `items_`
  std::size_t top_ = 0;     // of `items_`
  std::size_t page_ = 1;    // lines
};

}  // namespace zelk::tool

#endif

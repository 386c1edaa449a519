#include <algorithm>

#include "base/encoding.hpp"
#include "monitor/screen/view.hpp"

namespace zelk::tool {

namespace {

/// Removes the last character of a text in UTF-8.
void drop_last(std::string& text) {
  while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80) text.pop_back();
  if (!text.empty()) text.pop_back();
}

constexpr char32_t kControlU = 0x15;

/// Where a key of movement leads to in a list with a page of lines.
std::size_t moved(std::size_t at, std::size_t count, std::size_t page, Key key) {
  const std::size_t last = std::max<std::size_t>(count, 1) - 1;
  switch (key) {
    case Key::kUp:
      return at - std::min<std::size_t>(at, 1);
    case Key::kPageUp:
      return at - std::min(at, page);
    case Key::kDown:
      return std::min(at + 1, last);
    case Key::kPageDown:
      return at + std::min(page, last - std::min(at, last));
    case Key::kHome:
      return 0;
    case Key::kEnd:
      return last;
    default:
      return at;
  }
}

bool is_movement(Key key) { return moved(1, 3, 1, key) != 1; }

}  // namespace

Request ScreenView::press(const KeyPress& press) {
  message_.clear();
  if (is_helping_) {
    press_in_help(press);
    return {};
  }
  if (prompt_ != Prompt::kNone) return press_in_prompt(press);
  if (press.key == Key::kCharacter) return press_character(press.character);
  if (is_movement(press.key)) move(press);
  if (press.key == Key::kEnter) expand(std::nullopt);
  if (press.key == Key::kRight) expand(true);
  if (press.key == Key::kLeft) expand(false);
  if (press.key == Key::kEscape) escape();
  return {};
}

void ScreenView::press_in_help(const KeyPress& press) {
  if (!is_movement(press.key)) {
    is_helping_ = false;
    return;
  }
  help_top_ = moved(help_top_, SIZE_MAX, page_, press.key);
}

Request ScreenView::press_in_prompt(const KeyPress& press) {
  if (press.key == Key::kEnter) return leave_prompt(true);
  if (press.key == Key::kEscape) return leave_prompt(false);
  if (press.key == Key::kBackspace && prompt_text_.empty()) return leave_prompt(false);
  if (press.key == Key::kBackspace) drop_last(prompt_text_);
  if (press.key == Key::kCharacter && press.character == kControlU) prompt_text_.clear();
  if (press.key == Key::kCharacter && press.character >= ' ' && press.character != 0x7F)
    append_utf8(prompt_text_, press.character);
  if (prompt_ == Prompt::kFilter) choice_.filter = prompt_text_;
  return {};
}

Request ScreenView::leave_prompt(bool is_accepted) {
  const Prompt left = std::exchange(prompt_, Prompt::kNone);
  if (left == Prompt::kFilter && !is_accepted) choice_.filter = filter_before_;
  if (left != Prompt::kRecord || !is_accepted || prompt_text_.empty()) return {};
  return {Request::Kind::kRecord, prompt_text_};
}

Request ScreenView::press_character(char32_t character) {
  switch (character) {
    case 'q':
      return {Request::Kind::kQuit};
    case '?':
    case 'h':
      is_helping_ = true;
      help_top_ = 0;
      break;
    case '/':
      prompt_ = Prompt::kFilter;
      filter_before_ = choice_.filter;
      prompt_text_ = choice_.filter;
      break;
    case 'r':
      if (!facts_.recording.empty()) return {Request::Kind::kStopRecording};
      prompt_ = Prompt::kRecord;
      prompt_text_.clear();
      break;
    case ' ':
      frozen_curve_ = curve_;
      rows_.freeze(!rows_.is_frozen());
      if (plan_) arrange(columns_);  // other rows are shown now
      break;
    case 's':
      sort_by_next();
      break;
    case 'S':
      choice_.is_reversed = !choice_.is_reversed;
      break;
    case 'u':
      choice_.hides_unknown = !choice_.hides_unknown;
      break;
    case 'm':
      choice_.only_missing = !choice_.only_missing;
      break;
    case 'e':
      expand_all();
      break;
    case 'c':
      toggle_curve();
      break;
    case '+':
    case '-':
      curve_.zoom(character == '-');
      frozen_curve_.zoom(character == '-');
      break;
    case 'j':
      move({Key::kDown});
      break;
    case 'k':
      move({Key::kUp});
      break;
    default:
      break;
  }
  return {};
}

void ScreenView::move(const KeyPress& press) {
  if (items_.empty()) return;
  choose_item(moved(chosen_, items_.size(), page_, press.key));
  if (press.key == Key::kHome) chosen_row_ = nullptr;
}

/// The choice stays with the row, wherever it moves.
void ScreenView::choose_item(std::size_t item) {
  chosen_ = item;
  chosen_row_ = shown_[items_[item].row].key;
  chosen_line_ = items_[item].line;
}

/// @param is_wanted  none: the other way round than it is
void ScreenView::expand(std::optional<bool> is_wanted) {
  if (items_.empty()) return;
  choose_item(chosen_);
  const RowState* const row = chosen_row_;
  const bool is_expanded = are_all_expanded_ != expanded_.contains(row);
  if (is_wanted.value_or(!is_expanded) != is_expanded && !expanded_.erase(row))
    expanded_.insert(row);
  if (is_expanded && !is_wanted.value_or(false)) chosen_line_ = 0;
}

void ScreenView::expand_all() {
  are_all_expanded_ = !are_all_expanded_;
  expanded_.clear();
  if (!are_all_expanded_) chosen_line_ = 0;
}

void ScreenView::sort_by_next() {
  auto next = std::ranges::find(kColumns, choice_.order) + 1;
  choice_.order = next == kColumns.end() ? kColumns.front() : *next;
  choice_.is_reversed = false;
}

/// Shows the curve of the chosen signal, or of a chosen row's first one; removes one that is shown.
void ScreenView::toggle_curve() {
  if (items_.empty()) return;
  choose_item(chosen_);
  const ShownRow& row = shown_[items_[chosen_].row];
  const RowDetails details(*row.state, *plan_, columns_);
  const auto signal = chosen_line_ == 0 ? std::nullopt : details.signal_at(chosen_line_ - 1);
  const bool is_watched = watched_ && watched_->key == row.key;
  const std::size_t index = signal.value_or(0);
  if (is_watched && (!signal || index == watched_->signal)) {
    watched_.reset();
    return;
  }
  if (row.state->signals.empty()) return say("this row has no signals to draw");
  watch(row, index);
  if (signal) return;
  expand(true);
  chosen_line_ = 1 + details.line_of_signal(0);
}

void ScreenView::watch(const ShownRow& row, std::size_t signal) {
  const double seconds = curve_.seconds();
  watched_ = Watched{row.key, signal};
  curve_ = SignalCurve();
  while (curve_.seconds() < seconds) curve_.zoom(true);
  while (curve_.seconds() > seconds) curve_.zoom(false);
  const SignalState& state = row.key->signals[signal];
  watched_time_ = row.key->last_time;
  if (state.is_present) curve_.add(watched_time_, state.value);
  frozen_curve_ = curve_;
}

void ScreenView::escape() {
  choice_.filter.clear();
  choice_.hides_unknown = false;
  choice_.only_missing = false;
}

void ScreenView::click(std::size_t column, std::size_t line) {
  message_.clear();
  is_helping_ = false;
  if (!plan_ || line == 0) return;
  if (line == 1) {
    for (const TablePlan::Place& place : plan_->places()) {
      if (column < place.begin || column > place.begin + place.width) continue;
      choice_.is_reversed = choice_.order == place.column && !choice_.is_reversed;
      choice_.order = place.column;
      return;
    }
    return;
  }
  const std::size_t item = top_ + line - 2;
  if (line - 2 >= page_ || item >= items_.size()) return;
  const bool is_again = item == chosen_ && chosen_row_ != nullptr;
  choose_item(item);
  if (items_[item].line == 0 && (is_again || column < 2)) expand(std::nullopt);
}

}  // namespace zelk::tool

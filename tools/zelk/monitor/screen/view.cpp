#include "monitor/screen/view.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "base/encoding.hpp"
#include "base/frame_id.hpp"
#include "monitor/screen/help.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kFirstRowLine = 2;  // below header and headings
constexpr std::size_t kCurveLines = 4;    // below its title
constexpr std::size_t kLinesForCurve = 14;

/// The time of day, UTC, of points in time, and else seconds.
std::string clock_text(std::int64_t now) {
  if (now == kZelkNoTime) return "";
  constexpr std::int64_t kSecond = 1'000'000'000;
  if (now < 100'000'000 * kSecond)
    return fmt::format("{:.1f} s", static_cast<double>(now) / static_cast<double>(kSecond));
  const std::int64_t tenths = now / (kSecond / 10) % 864'000;
  return fmt::format("{:02}:{:02}:{:02}.{} UTC", tenths / 36'000, tenths / 600 % 60,
                     tenths / 10 % 60, tenths % 10);
}

bool is_within_character(std::string_view text) {
  return (static_cast<unsigned char>(text.front()) & 0xC0) == 0x80;
}

/// A number with as many digits as fit: cut, it would lose its exponent.
std::string label_text(double value, std::size_t columns) {
  std::string text;
  for (int digits = 5; digits > 0 && (text.empty() || text.size() > columns); --digits)
    text = fmt::format("{:.{}g}", value, digits);
  return text;
}

}  // namespace

void ScreenView::update(const std::deque<RowState>& rows, BusFacts facts) {
  facts_ = std::move(facts);
  rows_.update(rows, facts_.now);
  if (!watched_ || watched_->signal >= watched_->key->signals.size()) return;
  const SignalState& signal = watched_->key->signals[watched_->signal];
  for (const ValueStretch& values : facts_.watched.stretches()) curve_.add(values);
  facts_.watched.clear();
  if (!signal.is_present || watched_->key->last_time == watched_time_) return;
  watched_time_ = watched_->key->last_time;
  curve_.add(watched_time_, signal.value);
}

std::vector<ScreenLine> ScreenView::draw(std::size_t columns, std::size_t lines) {
  if (columns == 0 || lines == 0) return {};
  if (is_helping_) return draw_help(columns, lines);
  arrange(columns);
  const bool has_curve = watched_ && lines >= kLinesForCurve;
  const std::size_t around = kFirstRowLine + 1 + (has_curve ? 1 + kCurveLines : 0);
  page_ = lines > around ? lines - around : 1;
  scroll(page_);
  std::vector<ScreenLine> result = {header(columns), headings(columns)};
  for (std::size_t i = top_; i < items_.size() && i - top_ < page_; ++i)
    result.push_back(item_line(i, columns));
  if (items_.empty()) result.push_back(empty_line(columns));
  result.resize(kFirstRowLine + page_);
  if (has_curve) draw_curve(result, columns);
  result.push_back(footer(columns));
  if (result.size() > lines) result.resize(lines);
  if (prompt_ != Prompt::kNone) result.back() = footer(columns);
  return result;
}

/// Makes the lines of the table anew, and finds the chosen one among them.
void ScreenView::arrange(std::size_t columns) {
  columns_ = columns;
  shown_ = rows_.choose(choice_);
  plan_.emplace(rows_.widths(shown_, characters_), columns);
  items_.clear();
  for (std::size_t row = 0; row < shown_.size(); ++row) {
    items_.push_back({row, 0});
    if (are_all_expanded_ == expanded_.contains(shown_[row].key)) continue;
    const std::size_t count = RowDetails(*shown_[row].state, *plan_, columns).line_count();
    for (std::size_t line = 1; line <= count; ++line) items_.push_back({row, line});
  }
  find_chosen();
}

/// A chosen line that is no longer shown leaves the choice to the one at its place.
void ScreenView::find_chosen() {
  if (chosen_row_ == nullptr) {
    chosen_ = 0;
    return;
  }
  std::optional<std::size_t> found;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    const bool is_row = shown_[items_[i].row].key == chosen_row_;
    if (is_row && items_[i].line <= chosen_line_) found = i;
  }
  chosen_ = found.value_or(std::min(chosen_, std::max<std::size_t>(items_.size(), 1) - 1));
}

void ScreenView::scroll(std::size_t room) {
  top_ = std::min(top_, items_.size() - std::min(items_.size(), room));
  if (chosen_ < top_) top_ = chosen_;
  if (chosen_ >= top_ + room) top_ = chosen_ - room + 1;
}

ScreenLine ScreenView::header(std::size_t columns) const {
  const auto& rows = rows_.all();
  const auto missing =
      std::ranges::count_if(rows, [](const ShownRow& row) { return row.state->is_missing; });
  std::string alerts;
  if (missing > 0) alerts += fmt::format(" {} MISSING", missing);
  std::string states;
  if (facts_.has_ended) states += " ENDED";
  if (rows_.is_frozen()) states += " FROZEN";
  if (!facts_.recording.empty()) states += " RECORDING " + facts_.recording;

  std::string text = fmt::format(" {}  {:.0f}/s  {}  {}", facts_.source, facts_.frames_per_second,
                                 counted(facts_.frame_count, "frame"), clock_text(rows_.now()));
  if (facts_.error_frame_count > 0) text += "  " + counted(facts_.error_frame_count, "error frame");
  if (facts_.unlisted_frame_count > 0)
    text += fmt::format("  {} not listed", facts_.unlisted_frame_count);

  ScreenLine line;
  line.background = Role::kBar;
  LineWriter out(line, columns, characters_);
  const FittedText alerts_fit = fitted(alerts, columns / 2, characters_);
  const FittedText states_fit = fitted(states, columns - alerts_fit.columns, characters_);
  const std::size_t room = columns - alerts_fit.columns - states_fit.columns;
  out.add(fitted(text, room, characters_).text);
  out.skip_to(room);
  out.add(alerts_fit.text, Role::kAlert);
  out.add(states_fit.text, Role::kKey);
  return line;
}

ScreenLine ScreenView::headings(std::size_t columns) const {
  ScreenLine line;
  line.background = Role::kHeading;
  LineWriter out(line, columns, characters_);
  const char* const arrow =
      choice_.is_reversed ? characters_.sign("↓", "v") : characters_.sign("↑", "^");
  for (const TablePlan::Place& place : plan_->places()) {
    std::string text = heading_of(place.column, characters_);
    const bool goes_right = place.column > Column::kData || place.column == Column::kId;
    const std::size_t arrow_columns = place.column == choice_.order ? 1 : 0;
    if (arrow_columns > 0) text.insert(goes_right ? 0 : text.size(), arrow);
    // The arrow may take the blank beside its column.
    out.skip_to(place.begin - (goes_right ? arrow_columns : 0));
    if (goes_right) {
      out.add_right(text, place.width + arrow_columns, Role::kHeading);
    } else {
      out.add_left(text, place.width + arrow_columns, Role::kHeading);
    }
  }
  out.skip_to(columns);
  return line;
}

ScreenLine ScreenView::item_line(std::size_t index, std::size_t columns) const {
  const Item& item = items_[index];
  const ShownRow& row = shown_[item.row];
  ScreenLine line;
  line.is_selected = index == chosen_;
  LineWriter out(line, columns, characters_);
  if (item.line == 0) {
    write_row(*row.state, row.key, out);
  } else {
    mark_watched(item.row, item.line - 1, out);
    RowDetails(*row.state, *plan_, columns).write(item.line - 1, rows_.now(), characters_, out);
  }
  out.skip_to(columns);
  return line;
}

void ScreenView::write_row(const RowState& state, const RowState* key, LineWriter& out) const {
  const bool is_expanded = are_all_expanded_ != expanded_.contains(key);
  out.add(is_expanded ? characters_.sign("▾", "-") : characters_.sign("▸", "+"), Role::kFaint);
  if (state.is_missing) out.add("!", Role::kAlert);
  for (const TablePlan::Place& place : plan_->places())
    plan_->write(place, state, rows_.now(), characters_, out);
}

void ScreenView::mark_watched(std::size_t row, std::size_t line, LineWriter& out) const {
  const ShownRow& shown = shown_[row];
  if (!watched_ || shown.key != watched_->key) return;
  const RowDetails details(*shown.state, *plan_, columns_);
  if (details.signal_at(line) != watched_->signal) return;
  out.skip_to(2);
  out.add(characters_.sign("●", "*"), Role::kCurve);
}

ScreenLine ScreenView::empty_line(std::size_t columns) const {
  ScreenLine line;
  LineWriter out(line, columns, characters_);
  out.skip_to(2);
  if (rows_.all().empty()) {
    out.add(facts_.has_ended ? "there were no frames" : "waiting for frames ...", Role::kFaint);
  } else if (choice_.only_missing && choice_.filter.empty()) {
    out.add("no message is missing; m shows all", Role::kFaint);
  } else {
    out.add("no row is wanted; Esc shows all", Role::kFaint);
  }
  return line;
}

std::string ScreenView::choice_text() const {
  std::string text = fmt::format("{} of {} by {}", shown_.size(), rows_.all().size(),
                                 heading_of(choice_.order, characters_));
  if (choice_.is_reversed) text += " reversed";
  if (!choice_.filter.empty()) text += ", filter " + choice_.filter;
  if (choice_.only_missing) text += ", missing only";
  if (choice_.hides_unknown) text += ", without unknown";
  return text;
}

/// A prompt with the end of its text in sight, or a message, or what is chosen and the main keys.
ScreenLine ScreenView::footer(std::size_t columns) const {
  ScreenLine line;
  line.background = Role::kBar;
  LineWriter out(line, columns, characters_);
  if (prompt_ != Prompt::kNone) {
    std::string_view shown = prompt_text_;
    out.add(prompt_ == Prompt::kFilter ? " filter: " : " record to: ", Role::kKey);
    const std::size_t room = out.room() - std::min<std::size_t>(out.room(), 1);
    // A pasted text may be long: its last characters are tried, of at most 4 bytes each.
    shown.remove_prefix(shown.size() - std::min(shown.size(), 4 * (room + 1)));
    while (!shown.empty() &&
           (is_within_character(shown) || fitted(shown, SIZE_MAX, characters_).columns > room))
      shown.remove_prefix(std::max<std::size_t>(first_code_point(shown).size, 1));
    out.add(shown);
    out.add("_", Role::kKey);
  } else if (!message_.empty()) {
    out.add(' ' + message_, Role::kKey);
  } else {
    constexpr std::string_view kKeys = "  ? help  q quit ";
    const std::size_t room = columns - std::min(columns, kKeys.size());
    out.add_left(' ' + choice_text(), room, Role::kBar);
    out.add(kKeys, Role::kKey);
  }
  out.skip_to(columns);
  return line;
}

void ScreenView::draw_curve(std::vector<ScreenLine>& lines, std::size_t columns) const {
  const auto& rows = rows_.all();
  const auto shown = std::ranges::find(rows, watched_->key, &ShownRow::key);
  const RowState& row = shown == rows.end() ? *watched_->key : *shown->state;
  const SignalState& signal = row.signals[watched_->signal];
  const SignalCurve& curve = rows_.is_frozen() ? frozen_curve_ : curve_;
  const auto range = curve.range(rows_.now());
  ScreenLine& title = lines.emplace_back();
  title.background = Role::kHeading;
  LineWriter out(title, columns, characters_);
  out.add(fmt::format(" {}.{} = {}", row.name, signal.name, signal.spelled), Role::kHeading);
  if (!signal.unit.empty()) out.add(' ' + signal.unit);
  if (!signal.text.empty()) out.add(" \"" + signal.text + '"');
  out.add(fmt::format("  last {:.0f} s", curve.seconds()));
  out.skip_to(columns);

  constexpr std::size_t kLabelColumns = 9;
  const std::size_t width = columns - std::min(columns, kLabelColumns + 1);
  const std::vector<std::string> picture = curve.draw(width, kCurveLines, rows_.now(), characters_);
  const bool is_flat = range && range->least == range->greatest;  // drawn in the middle
  const std::size_t least_line = is_flat ? kCurveLines / 2 - 1 : kCurveLines - 1;
  for (std::size_t i = 0; i < kCurveLines; ++i) {
    LineWriter line(lines.emplace_back(), columns, characters_);
    if (range && !is_flat && i == 0)
      line.add_right(label_text(range->greatest, kLabelColumns), kLabelColumns, Role::kFaint);
    if (range && i == least_line)
      line.add_right(label_text(range->least, kLabelColumns), kLabelColumns, Role::kFaint);
    line.skip_to(kLabelColumns + 1);
    line.add(picture[i], Role::kCurve);
  }
}

std::vector<ScreenLine> ScreenView::draw_help(std::size_t columns, std::size_t lines) {
  std::vector<ScreenLine> help = help_lines(columns, characters_);
  const std::size_t room = lines - std::min<std::size_t>(lines, 2);
  page_ = std::max<std::size_t>(room, 1);
  help_top_ = std::min(help_top_, help.size() - std::min(help.size(), room));
  std::vector<ScreenLine> result(1);
  result[0].background = Role::kBar;
  LineWriter title(result[0], columns, characters_);
  title.add_left(" keys of zelk monitor", columns, Role::kBar);
  for (std::size_t i = help_top_; i < help.size() && result.size() <= room; ++i)
    result.push_back(std::move(help[i]));
  result.resize(1 + room);
  if (lines == 1) return result;
  result.emplace_back().background = Role::kBar;
  LineWriter end(result.back(), columns, characters_);
  end.add_left(" up and down scroll; any other key goes back", columns, Role::kBar);
  return result;
}

}  // namespace zelk::tool

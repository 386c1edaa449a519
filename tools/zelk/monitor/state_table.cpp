#include "monitor/state_table.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>
#include <tuple>

#include "base/frame_id.hpp"
#include "base/quoting.hpp"
#include "table/json.hpp"
#include "table/rows.hpp"
#include "term/text.hpp"
#include "zelk/logs/times.hpp"

namespace zelk::tool {

namespace {

/// The columns of a row in all formats, with those of CSV behind them.
constexpr auto kRowHeadings = std::to_array<std::string_view>(
    {"interface", "id", "message", "page", "state", "count", "changes", "cycle_ms", "deviation_ms",
     "nominal_ms", "gaps", "age_ms", "data"});
constexpr std::size_t kNameColumns = 4;  // interface, id, message, page
constexpr auto kValueHeadings =
    std::to_array<std::string_view>({"signal", "value", "unit", "text"});

std::string data_text(const RowState& row) {
  std::string text;
  for (const unsigned char byte : row.data) text += fmt::format("{:02X}", byte);
  return text;
}

std::string_view state_of(const RowState& row) {
  if (row.is_missing) return "missing";
  if (row.count == 0) return "expected";
  return row.message ? "" : "unknown";
}

/// A time in milliseconds to the microsecond; nothing for 0.
Cell milliseconds(double time) {
  return time == 0 ? check::none() : check::number(std::round(time * 1000) / 1000);
}

/// Frames of a clock that was set may seem to be still to come: negative.
Cell age_of(const RowState& row, std::int64_t now) {
  if (row.last_time == kZelkNoTime) return check::none();
  const auto age = static_cast<std::int64_t>(static_cast<std::uint64_t>(now) -
                                             static_cast<std::uint64_t>(row.last_time));
  return check::number(std::round(static_cast<double>(age) / 1000) / 1000);
}

std::vector<Cell> cells_of(const RowState& row, std::int64_t now) {
  using check::number;
  return {text(row.channel),
          check::hexadecimal(bare_id(row.id), id_digits(row.id)),
          text(row.name),
          text(row.page),
          text(state_of(row)),
          number(static_cast<double>(row.count)),
          number(static_cast<double>(row.change_count)),
          milliseconds(row.cycle_ms),
          row.cycle_ms == 0 ? check::none() : number(std::round(row.deviation_ms * 1000) / 1000),
          milliseconds(row.nominal_ms),
          number(static_cast<double>(row.gap_count)),
          age_of(row, now),
          text(data_text(row))};
}

bool stands_before(const RowState* a, const RowState* b) {
  const auto key = [](const RowState* row) {
    return std::tuple(row->count == 0, std::string_view(row->channel), row->id);
  };
  return key(a) < key(b);
}

std::string time_text(std::int64_t time) {
  std::string text;
  ZelkAppendTime(time, text);
  return text;
}

/// Adds a line for each value that the row's last frame has.
///
/// @param cells  that stand in front
/// @return whether there is any
bool add_values(const RowState& row, const std::vector<Cell>& cells, RowWriter& table) {
  bool has_values = false;
  for (const SignalState& signal : row.signals) {
    if (!signal.is_present) continue;
    has_values = true;
    std::vector<Cell> line = cells;
    for (const std::string* of : {&signal.name, &signal.spelled, &signal.unit, &signal.text})
      line.push_back(text(*of));
    table.row(line);
  }
  return has_values;
}

/// The number that a text spells; null for none, such as "nan".
Json json_number(const std::string& text) {
  Json number = Json::parse(text, nullptr, false);
  return number.is_discarded() ? Json() : number;
}

std::string totals_of(const BusState& state, const std::deque<RowState>& rows) {
  const auto count = [&](const auto& is_counted) {
    return static_cast<std::size_t>(std::ranges::count_if(rows, is_counted));
  };
  std::string text = state.now() == kZelkNoTime ? "" : '(' + time_text(state.now()) + ") ";
  text += counted(state.frame_count(), "frame");
  const auto add = [&text](std::size_t number, std::string_view what) {
    if (number > 0) text += fmt::format(", {} {}", number, what);
  };
  const auto add_frames = [&text](std::size_t number, std::string_view what) {
    if (number > 0) text += ", " + counted(number, fmt::format("{} frame", what));
  };
  add(count([](const RowState& row) { return row.is_missing; }), "missing");
  add(count([](const RowState& row) { return !row.message; }), "unknown");
  add_frames(state.error_frame_count(), "error");
  add_frames(state.remote_frame_count(), "remote");
  add_frames(state.unlisted_frame_count(), "unlisted");
  return text;
}

}  // namespace

void StateTable::write(BusState& state) {
  const Rows rows = news(state);
  if (format_ == StateFormat::kText) write_text(state, rows);
  if (format_ == StateFormat::kCsv) write_csv(state, rows);
  if (format_ == StateFormat::kJson) write_json(state, rows);
  has_begun_ = true;
}

StateTable::Rows StateTable::news(BusState& state) {
  const std::deque<RowState>& all = state.rows();
  written_.resize(all.size());
  Rows rows;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const RowState& row = all[i];
    const Written& before = written_[i];
    if (before.is_written && before.count == row.count && before.is_missing == row.is_missing)
      continue;
    written_[i] = {true, row.count, row.is_missing};
    rows.push_back(&row);
  }
  std::ranges::stable_sort(rows, stands_before);
  return rows;
}

void StateTable::write_text(BusState& state, const Rows& rows) {
  if (has_begun_) out_.blank();
  out_.line("{}", totals_of(state, state.rows()));
  if (rows.empty()) return;
  const auto table = make_text_rows({kRowHeadings.begin(), kRowHeadings.end()}, out_);
  for (const RowState* row : rows) table->row(cells_of(*row, state.now()));
  table->finish();
  std::vector<std::string> headings(kRowHeadings.begin(), kRowHeadings.begin() + kNameColumns);
  headings.insert(headings.end(), kValueHeadings.begin(), kValueHeadings.end());
  const auto values = make_text_rows(headings, out_);
  bool has_values = false;
  for (const RowState* row : rows) {
    std::vector<Cell> names = cells_of(*row, state.now());
    names.resize(kNameColumns);
    has_values |= add_values(*row, names, *values);
  }
  if (!has_values) return;
  out_.blank();
  values->finish();
}

void StateTable::write_csv(const BusState& state, const Rows& rows) {
  if (!csv_) {
    std::vector<std::string> headings = {"time"};
    headings.insert(headings.end(), kRowHeadings.begin(), kRowHeadings.end());
    headings.insert(headings.end(), kValueHeadings.begin(), kValueHeadings.end());
    csv_ = make_csv_rows(headings, out_);
  }
  for (const RowState* row : rows) {
    std::vector<Cell> cells = cells_of(*row, state.now());
    cells.insert(cells.begin(), text(time_text(state.now())));
    if (add_values(*row, cells, *csv_)) continue;
    cells.resize(cells.size() + kValueHeadings.size());
    csv_->row(cells);
  }
}

void StateTable::write_json(const BusState& state, const Rows& rows) {
  for (const RowState* row : rows) {
    Json object;
    object["time"] = json_number(time_text(state.now()));
    const std::vector<Cell> cells = cells_of(*row, state.now());
    for (std::size_t i = 0; i < cells.size(); ++i) {
      object[std::string(kRowHeadings[i])] = json_of(cells[i]);
      if (kRowHeadings[i] == "id") object["extended"] = (row->id & ZELK_ID_EXTENDED) != 0;
    }
    Json& signals = object["signals"] = Json::object();
    Json texts = Json::object();
    for (const SignalState& signal : row->signals) {
      if (!signal.is_present) continue;
      signals[signal.name] = json_number(signal.spelled);
      if (!signal.text.empty()) texts[signal.name] = signal.text;
    }
    if (!texts.empty()) object["texts"] = std::move(texts);
    out_.line("{}", object.dump());
  }
}

}  // namespace zelk::tool

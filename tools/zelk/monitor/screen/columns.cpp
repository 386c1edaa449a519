#include "monitor/screen/columns.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <optional>

#include "base/frame_id.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kMarkColumns = 2;
constexpr std::size_t kMostChannelColumns = 8;
constexpr std::size_t kMostNameColumns = 40;
constexpr std::size_t kFewNameColumns = 18;  // that a name gets before other columns do

/// What rows are sorted by where a column has numbers; none where a row has nothing there.
std::optional<double> number_in(const RowState& row, Column column) {
  const auto if_any = [](double number) {
    return number > 0 ? std::optional<double>(number) : std::nullopt;
  };
  switch (column) {
    case Column::kCycle:
      return if_any(row.cycle_ms);
    case Column::kDeviation:
      return row.cycle_ms > 0 ? std::optional<double>(row.deviation_ms) : std::nullopt;
    case Column::kNominal:
      return if_any(row.nominal_ms);
    case Column::kCount:
      return static_cast<double>(row.count);
    default:  // the age, the least one first
      if (row.last_time == kZelkNoTime) return std::nullopt;
      return -static_cast<double>(row.last_time);
  }
}

/// Negative, 0 or positive; rows that have nothing in a column are greater.
int compare_texts(const RowState& a, const RowState& b, Column column) {
  if (column == Column::kChannel) return a.channel.compare(b.channel);
  if (column == Column::kData) return a.data < b.data ? -1 : 1;
  const int names = lowered(a.name).compare(lowered(b.name));
  return names != 0 ? names : a.page.compare(b.page);
}

bool is_lacking(const RowState& row, Column column) {
  switch (column) {
    case Column::kChannel:
      return row.channel.empty();
    case Column::kId:
      return false;
    case Column::kName:
      return row.name.empty();
    case Column::kData:
      return row.data.empty();
    default:
      return !number_in(row, column);
  }
}

bool is_less(const RowState& a, const RowState& b, Column column) {
  if (column == Column::kId) return a.id < b.id;  // bit 31 puts extended ones behind
  if (column == Column::kChannel || column == Column::kName || column == Column::kData)
    return compare_texts(a, b, column) < 0;
  return *number_in(a, column) < *number_in(b, column);
}

/// Leaves columns out until the name has room.
class Fitting {
 public:
  Fitting(const CellWidths& widths, std::size_t columns) : widths_(widths), columns_(columns) {
    width(Column::kChannel) = std::min(widths.channel, kMostChannelColumns);
    width(Column::kId) = widths.id;
    width(Column::kName) = std::min(std::max<std::size_t>(widths.name, 4), kFewNameColumns);
    width(Column::kData) = data_columns(8);
    width(Column::kCycle) = 7;
    width(Column::kDeviation) = 6;
    width(Column::kNominal) = 7;
    width(Column::kCount) = std::max<std::size_t>(5, fmt::formatted_size("{}", widths.count));
    width(Column::kAge) = 5;
    shrink();
    grow();
  }

  std::size_t& width(Column column) { return of_column_[static_cast<std::size_t>(column)]; }
  bool is_compact() const { return is_compact_; }

 private:
  std::size_t total() const {
    std::size_t sum = kMarkColumns;
    for (const std::size_t width : of_column_) sum += width > 0 ? width + 1 : 0;
    return sum - 1;
  }

  std::size_t data_columns(std::size_t bytes) const {
    return is_compact_ ? 2 * bytes : 3 * bytes - 1;
  }

  void shrink() {
    if (total() > columns_) {
      is_compact_ = true;
      width(Column::kData) = data_columns(8);
    }
    for (const Column column : {Column::kNominal, Column::kDeviation, Column::kCount,
                                Column::kChannel, Column::kAge, Column::kCycle, Column::kData}) {
      if (total() > columns_) width(column) = 0;
    }
    const std::size_t surplus = std::max(total(), columns_) - columns_;
    width(Column::kName) -= std::min(surplus, width(Column::kName));
  }

  /// Shares out what is left: to names, then to bytes, whole ones.
  void grow() {
    const std::size_t name = std::min(widths_.name, kMostNameColumns);
    if (name > width(Column::kName)) {
      width(Column::kName) +=
          std::min(name - width(Column::kName), columns_ - std::min(total(), columns_));
    }
    if (width(Column::kData) == 0 || widths_.data_bytes <= 8) return;
    const std::size_t room = width(Column::kData) + columns_ - std::min(total(), columns_);
    const std::size_t bytes = is_compact_ ? room / 2 : (room + 1) / 3;
    width(Column::kData) = data_columns(std::clamp<std::size_t>(bytes, 8, widths_.data_bytes));
  }

  const CellWidths& widths_;
  std::size_t columns_;
  std::array<std::size_t, kColumns.size()> of_column_{};
  bool is_compact_ = false;
};

void write_id(const RowState& row, std::size_t width, LineWriter& out) {
  const Role role = row.message == nullptr ? Role::kUnknown : Role::kPlain;
  out.add_right(fmt::format("{:0{}X}", bare_id(row.id), id_digits(row.id)), width, role);
}

/// The page stays to be seen when there is little room: it tells the rows of a message apart.
void write_name(const RowState& row, std::size_t width, const CharacterSet& characters,
                LineWriter& out) {
  if (row.message == nullptr) return out.add_left("(unknown)", width, Role::kUnknown);
  const Role role = row.is_missing ? Role::kAlert : Role::kPlain;
  if (row.page.empty()) return out.add_left(row.name, width, role);
  const std::size_t end = out.column() + std::min(width, out.room());
  const std::size_t name_columns = fitted(row.name, width, characters).columns + 1;
  const std::size_t kept = std::min({width, name_columns, std::size_t{8}});
  const FittedText page = fitted(row.page, width - kept, characters);
  const FittedText name = fitted(row.name, width - std::min(width, page.columns + 1), characters);
  out.add(name.text, role);
  out.add(" ", Role::kPlain);
  out.add_left(page.text, end - std::min(end, out.column()), Role::kFaint);
}

void write_data(const RowState& row, const TablePlan::Place& place, std::int64_t now,
                bool is_compact, const CharacterSet& characters, LineWriter& out) {
  const std::size_t room = is_compact ? place.width / 2 : (place.width + 1) / 3;
  if (row.flags & kZelkFrameRemote)
    return out.add_left("remote request", place.width, Role::kFaint);
  const bool is_cut = row.data.size() > room;
  write_bytes(row, 0, is_cut ? room - 1 : row.data.size(), now, is_compact, out);
  if (is_cut)
    out.add(fmt::format("{}{}", is_compact ? "" : " ", characters.sign("…", "~")), Role::kFaint);
  out.skip_to(place.begin + place.width);
}

std::string deviation_text(const RowState& row) {
  return row.cycle_ms > 0 ? milliseconds_text(row.deviation_ms) : "";
}

}  // namespace

const char* heading_of(Column column, const CharacterSet& characters) {
  switch (column) {
    case Column::kChannel:
      return "channel";
    case Column::kId:
      return "id";
    case Column::kName:
      return "name";
    case Column::kData:
      return "data";
    case Column::kCycle:
      return "cycle";
    case Column::kDeviation:
      return characters.sign("±ms", "+-ms");
    case Column::kNominal:
      return "nominal";
    case Column::kCount:
      return "count";
    case Column::kAge:
      return "age";
  }
  return "";
}

bool goes_before(const RowState& a, const RowState& b, Column column, bool is_reversed) {
  const bool a_lacks = is_lacking(a, column);
  if (a_lacks || is_lacking(b, column)) return !a_lacks && is_lacking(b, column);
  return is_reversed ? is_less(b, a, column) : is_less(a, b, column);
}

void CellWidths::take(const RowState& row, const CharacterSet& characters) {
  const std::size_t width = fitted(row.name, kMostNameColumns, characters).columns;
  const std::size_t page = fitted(row.page, kMostNameColumns, characters).columns;
  name = std::max(name, row.message == nullptr ? 9 : width + (page > 0 ? page + 1 : 0));
  id = std::max(id, static_cast<std::size_t>(id_digits(row.id)));
  data_bytes = std::max(data_bytes, row.data.size());
  count = std::max(count, row.count);
}

TablePlan::TablePlan(const CellWidths& widths, std::size_t columns) {
  Fitting fitting(widths, columns);
  is_compact_ = fitting.is_compact();
  std::size_t begin = kMarkColumns;
  for (const Column column : kColumns) {
    const std::size_t width = fitting.width(column);
    if (width == 0) continue;
    places_.push_back({column, begin, width});
    begin += width + 1;
  }
}

void TablePlan::write(const Place& place, const RowState& row, std::int64_t now,
                      const CharacterSet& characters, LineWriter& out) const {
  out.skip_to(place.begin);
  switch (place.column) {
    case Column::kChannel:
      return out.add_left(row.channel, place.width, Role::kPlain);
    case Column::kId:
      return write_id(row, place.width, out);
    case Column::kName:
      return write_name(row, place.width, characters, out);
    case Column::kData:
      return write_data(row, place, now, is_compact_, characters, out);
    case Column::kCycle:
      if (row.is_missing) return out.add_right("MISSING", place.width, Role::kAlert);
      return out.add_right(row.cycle_ms > 0 ? milliseconds_text(row.cycle_ms) : "", place.width,
                           Role::kPlain);
    case Column::kDeviation:
      return out.add_right(row.is_missing ? "" : deviation_text(row), place.width, Role::kPlain);
    case Column::kNominal:
      return out.add_right(row.nominal_ms > 0 ? milliseconds_text(row.nominal_ms) : "", place.width,
                           Role::kFaint);
    case Column::kCount:
      return out.add_right(fmt::format("{}", row.count), place.width, Role::kPlain);
    case Column::kAge:
      return out.add_right(
          row.last_time == kZelkNoTime ? "never" : age_text(seconds_between(row.last_time, now)),
          place.width, row.is_missing ? Role::kAlert : Role::kPlain);
  }
}

bool TablePlan::cuts_data(const RowState& row) const {
  const auto place = std::ranges::find(places_, Column::kData, &Place::column);
  if (place == places_.end()) return !row.data.empty();
  return row.data.size() > (is_compact_ ? place->width / 2 : (place->width + 1) / 3);
}

double seconds_between(std::int64_t from, std::int64_t to) {
  return std::max(0.0, (static_cast<double>(to) - static_cast<double>(from)) / 1e9);
}

Role role_of_change(std::int64_t changed_at, std::int64_t now, Role otherwise) {
  constexpr double kFreshSeconds = 0.4;
  constexpr double kFadedSeconds = 1.2;
  if (changed_at == kZelkNoTime) return otherwise;
  const double seconds = seconds_between(changed_at, now);
  if (seconds >= kFadedSeconds) return otherwise;
  return seconds < kFreshSeconds ? Role::kFresh : Role::kFading;
}

void write_bytes(const RowState& row, std::size_t begin, std::size_t end, std::int64_t now,
                 bool is_compact, LineWriter& out) {
  for (std::size_t i = begin; i < end; ++i) {
    if (i > begin && !is_compact) out.add(" ");
    const std::int64_t changed_at = i < row.changed_at.size() ? row.changed_at[i] : kZelkNoTime;
    out.add(fmt::format("{:02X}", row.data[i]), role_of_change(changed_at, now, Role::kPlain));
  }
}

std::string age_text(double seconds) {
  if (seconds < 9.995) return fmt::format("{:.2f}", seconds);
  if (seconds < 999.95) return fmt::format("{:.1f}", seconds);
  if (seconds < 360'000) return fmt::format("{:.0f}m", seconds / 60);
  return fmt::format("{:.0f}h", std::min(seconds / 3600, 9999.0));
}

std::string milliseconds_text(double milliseconds) {
  if (milliseconds < 99.995) return fmt::format("{:.2f}", milliseconds);
  if (milliseconds < 9999.95) return fmt::format("{:.1f}", milliseconds);
  return fmt::format("{:.0f}", std::min(milliseconds, 9'999'999.0));
}

}  // namespace zelk::tool

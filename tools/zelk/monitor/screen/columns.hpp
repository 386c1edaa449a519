/// \file
/// The columns of the table: which ones fit, their cells, and the order of rows by them.

#ifndef ZELK_TOOL_MONITOR_SCREEN_COLUMNS_HPP
#define ZELK_TOOL_MONITOR_SCREEN_COLUMNS_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "monitor/bus_state.hpp"
#include "monitor/screen/line.hpp"

namespace zelk::tool {

enum class Column : std::uint8_t {
  kChannel,
  kId,
  kName,
  kData,
  kCycle,
  kDeviation,
  kNominal,
  kCount,
  kAge,
};

/// From left to right.
inline constexpr std::array kColumns = {Column::kChannel, Column::kId,    Column::kName,
                                        Column::kData,    Column::kCycle, Column::kDeviation,
                                        Column::kNominal, Column::kCount, Column::kAge};

/// The heading of a column, which is also what it is called elsewhere.
const char* heading_of(Column column, const CharacterSet& characters);

/// Whether `a` stands in front of `b` when rows are sorted by a column. Rows that have nothing in
/// it stand behind all others, also in reverse.
bool goes_before(const RowState& a, const RowState& b, Column column, bool is_reversed);

/// The most columns that cells take.
struct CellWidths {
  std::size_t channel = 0;  ///< 0: one channel alone, which needs no column
  std::size_t id = 3;
  std::size_t name = 0;
  std::size_t data_bytes = 8;
  std::uint64_t count = 0;

  void take(const RowState& row, const CharacterSet& characters);
};

/// The columns that fit into a width.
class TablePlan {
 public:
  struct Place {
    Column column;
    std::size_t begin;
    std::size_t width;
  };

  /// In narrow tables bytes stand without blanks, and then columns that matter less are missing.
  TablePlan(const CellWidths& widths, std::size_t columns);

  const std::vector<Place>& places() const { return places_; }
  bool is_compact() const { return is_compact_; }

  /// Writes a cell at its place.
  void write(const Place& place, const RowState& row, std::int64_t now,
             const CharacterSet& characters, LineWriter& out) const;
  /// Whether the data of a row is cut.
  bool cuts_data(const RowState& row) const;

 private:
  std::vector<Place> places_;
  bool is_compact_ = false;
};

/// Seconds between two times; never negative.
double seconds_between(std::int64_t from, std::int64_t to);

/// The role of something that changed at a time: highlighted for about a second.
Role role_of_change(std::int64_t changed_at, std::int64_t now, Role otherwise);

/// Bytes `[begin, end)` of a row's data.
void write_bytes(const RowState& row, std::size_t begin, std::size_t end, std::int64_t now,
                 bool is_compact, LineWriter& out);

/// "0.25", "12.5", "12m", "5h": at most five columns.
std::string age_text(double seconds);

/// "9.98", "100.0", "12000": at most seven columns.
std::string milliseconds_text(double milliseconds);

}  // namespace zelk::tool

#endif

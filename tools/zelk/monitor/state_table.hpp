/// \file
/// The state of a bus as text, CSV or lines of JSON.

#ifndef ZELK_TOOL_MONITOR_STATE_TABLE_HPP
#define ZELK_TOOL_MONITOR_STATE_TABLE_HPP

#include <cstdint>
#include <memory>
#include <vector>

#include "monitor/bus_state.hpp"
#include "table/rows.hpp"
#include "term/output.hpp"

namespace zelk::tool {

enum class StateFormat : std::uint8_t {
  kText,  ///< a line of totals, a table of rows, and one of their values
  kCsv,   ///< a line for each value, or for a row without values
  kJson,  ///< an object in a line for each row
};

/// Writes the state of a bus, once or again and again. Rows are sorted by interface, identifier and
/// page; those that never came stand behind the others.
class StateTable {
 public:
  StateTable(StateFormat format, Output& out) : format_(format), out_(out) {}

  /// Writes the state as it is; the next time only rows that had frames or are missing since.
  void write(BusState& state);

 private:
  using Rows = std::vector<const RowState*>;

  Rows news(BusState& state);
  void write_text(BusState& state, const Rows& rows);
  void write_csv(const BusState& state, const Rows& rows);
  void write_json(const BusState& state, const Rows& rows);

  /// What was written of a row.
  struct Written {
    bool is_written = false;
    std::uint64_t count = 0;
    bool is_missing = false;
  };

  StateFormat format_;
  Output& out_;
  bool has_begun_ = false;
  std::unique_ptr<RowWriter> csv_;
  std::vector<Written> written_;  ///< by the numbers of rows
};

}  // namespace zelk::tool

#endif

/// \file
/// The lines below an expanded row: figures of the message, all of its data, its signals.

#ifndef ZELK_TOOL_MONITOR_SCREEN_DETAILS_HPP
#define ZELK_TOOL_MONITOR_SCREEN_DETAILS_HPP

#include <cstddef>
#include <cstdint>

#include "monitor/screen/columns.hpp"

namespace zelk::tool {

class RowDetails {
 public:
  /// @param row  must outlive the object
  RowDetails(const RowState& row, const TablePlan& plan, std::size_t columns);

  std::size_t line_count() const { return 1 + data_lines_ + row_.signals.size(); }
  /// Index of the signal in a line; none for the others.
  std::optional<std::size_t> signal_at(std::size_t line) const;
  std::size_t line_of_signal(std::size_t index) const { return 1 + data_lines_ + index; }

  void write(std::size_t line, std::int64_t now, const CharacterSet& characters,
             LineWriter& out) const;

 private:
  void write_figures(const CharacterSet& characters, LineWriter& out) const;
  void write_signal(const SignalState& signal, std::int64_t now, LineWriter& out) const;

  const RowState& row_;
  std::size_t bytes_in_line_;
  std::size_t data_lines_;
  std::size_t name_columns_;
};

}  // namespace zelk::tool

#endif

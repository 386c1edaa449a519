/// \file
/// Decodes frames of one message into rows of its table.

#ifndef ZELK_LOGS_COLUMNS_TABLE_DECODER_HPP
#define ZELK_LOGS_COLUMNS_TABLE_DECODER_HPP

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "logs/columns/strip.hpp"
#include "logs/columns/table_rows.hpp"

namespace zelk::logs {

/// Holds the memory that decoding needs, for one thread.
class TableDecoder {
 public:
  /// Gets the memory that `decode` needs: only this raises.
  ///
  /// @throws std::bad_alloc
  void prepare(const TablePlan& plan);
  /// Appends a row for each frame.
  ///
  /// @pre `prepare(plan)` was called
  ///
  /// @param frames    their indices in the block
  /// @param channels  for each channel of the block the index of its text, or `kNoText`; further
  /// channels have none
  /// @param rows      of the plan's table, with room for all frames
  void decode(const TablePlan& plan, const ZelkFrameBlock& block,
              std::span<const std::uint32_t> frames, std::span<const std::int32_t> channels,
              TableRows& rows);

 private:
  void add_times(std::span<const std::int64_t> times, std::span<const std::uint32_t> frames,
                 ColumnRows& column);
  void add_channels(std::span<const std::uint16_t> block_channels,
                    std::span<const std::uint32_t> frames, std::span<const std::int32_t> channels,
                    ColumnRows& column);
  void add_window_columns(const TablePlan& plan, TableRows& rows);
  void add_frame_columns(const TablePlan& plan, TableRows& rows);
  void decode_frames(const TablePlan& plan);
  void add_texts(ColumnRows& column, const StripBits* valid);
  template <typename Value>
  void find_values(const ColumnRows& column, std::size_t count, Value none, bool has_none);

  StripFrames frames_;
  StripWords words_;
  StripPresence presence_;
  StripBits valid_;
  std::array<std::uint8_t, kStripRows> flags_;

  // Of frame columns.
  std::vector<std::int64_t> raw_values_;  ///< of one frame
  std::vector<std::uint64_t> present_;    ///< likewise
  std::vector<std::array<std::uint64_t, kStripRows>> column_words_;
  std::vector<std::array<std::uint8_t, kStripRows>> column_flags_;
};

}  // namespace zelk::logs

#endif

/// \file
/// Decodes blocks of frames into the rows of all tables.

#ifndef ZELK_LOGS_COLUMNS_BLOCK_DECODER_HPP
#define ZELK_LOGS_COLUMNS_BLOCK_DECODER_HPP

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "logs/columns/column_plan.hpp"
#include "logs/columns/table_decoder.hpp"
#include "logs/columns/table_rows.hpp"
#include "logs/lookup/unknown_frames.hpp"
#include "zelk/logs/counts.hpp"
#include "zelk/logs/frame.hpp"

namespace zelk::logs {

/// The frames of a block by their tables.
class FrameGroups {
 public:
  /// @param only  the one table that counts; none: all
  void find(const ColumnPlan& plan, const ZelkFrameBlock& block, std::optional<std::size_t> only);

  /// The tables that the block has frames of.
  const std::vector<std::uint32_t>& tables() const { return tables_; }
  /// What became of the frames.
  const ZelkFrameCounts& counts() const { return counts_; }
  /// Indices of frames, in the order of the block.
  ///
  /// @param group  index in `tables`
  std::span<const std::uint32_t> frames(std::size_t group) const {
    const std::uint32_t first = group == 0 ? 0 : ends_[tables_[group - 1]];
    return std::span(frames_).subspan(first, ends_[tables_[group]] - first);
  }

 private:
  /// What the search for the tables of a block's frames reads.
  struct Search {
    const MessageFinder& finder;
    std::span<const FrameTarget> targets;
    std::span<const std::uint32_t> ids;
    std::span<const std::uint16_t> flags;
    std::span<const std::uint16_t> channels;
    std::span<const std::uint16_t> lengths;
    std::span<const std::uint32_t> routes;  ///< of channels
    std::optional<std::size_t> only;

    bool wants(std::uint32_t table) const { return !only || table == *only; }
  };

  bool take_alike(const Search& search);
  void find_tables(const Search& search);
  void sort_frames();
  FrameTarget find_target(const Search& search, std::size_t frame);
  std::uint32_t find_message(const Search& search, std::size_t frame);

  std::vector<std::uint32_t> routes_;    ///< of channels
  std::vector<std::uint32_t> table_of_;  ///< of each frame
  std::vector<std::uint32_t> tables_;
  std::vector<std::uint32_t> ends_;  ///< by table: number of its frames, then where they end
  std::vector<std::uint32_t> frames_;
  MessageFinder::Cache cache_;
  UnknownFrames unknown_;
  ZelkFrameCounts counts_;
};

/// The names of channels in all blocks, and their indices in the columns of channels.
class ChannelTexts {
 public:
  /// For each channel of a block the index of its text; `kNoText` for one without a name.
  std::vector<std::int32_t> enter(std::span<const std::string> names);
  std::span<const std::string> texts() const { return texts_.texts(); }
  std::shared_ptr<const TextArray> array() { return texts_.array(); }

 private:
  TextTable texts_;
};

/// Holds the memory that decoding needs, for one thread.
class BlockDecoder {
 public:
  /// Appends a row for each frame.
  ///
  /// @param channels  for each channel of the block the index of its text, or `kNoText`
  /// @param rows      of all tables of the plan
  /// @param only      the one table that is decoded; none: all
  /// @throws std::bad_alloc, with all tables as they were but for their memory
  void decode(const ColumnPlan& plan, const ZelkFrameBlock& block,
              std::span<const std::int32_t> channels, std::vector<TableRows>& rows,
              std::optional<std::size_t> only = {});
  /// The tables that the last block had frames of.
  const std::vector<std::uint32_t>& tables() const { return groups_.tables(); }
  /// What became of the frames of the last block.
  const ZelkFrameCounts& counts() const { return groups_.counts(); }

 private:
  FrameGroups groups_;
  TableDecoder decoder_;
};

}  // namespace zelk::logs

#endif

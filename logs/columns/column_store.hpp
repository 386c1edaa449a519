/// \file
/// Rows on their way out: those of all tables that were decoded and not taken yet.

#ifndef ZELK_LOGS_COLUMNS_COLUMN_STORE_HPP
#define ZELK_LOGS_COLUMNS_COLUMN_STORE_HPP

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "logs/columns/block_decoder.hpp"
#include "zelk/logs/arrow.h"

namespace zelk::logs {

/// Rows of the tables of one plan, with the dictionary of their channels.
class ColumnStore {
 public:
  explicit ColumnStore(std::shared_ptr<const ColumnPlan> plan)
      : plan_(std::move(plan)), tables_(plan_->tables().size()) {}

  const std::shared_ptr<const ColumnPlan>& plan() const { return plan_; }
  std::size_t row_count(std::size_t table) const { return tables_.at(table).size(); }

  /// @param only  the one table that is decoded; none: all
  void decode(const ZelkFrameBlock& block, std::optional<std::size_t> only = {}) {
    decoder_.decode(*plan_, block, channels_.enter(block.ChannelNames()), tables_, only);
    bound_memory();
  }
  /// Appends rows, and clears them there.
  ///
  /// @param tables  all of the plan, of which those that are `filled` have rows
  /// @param channel_texts  the dictionary of their columns of channels
  void append(std::vector<TableRows>& tables, std::span<const std::uint32_t> filled,
              std::span<const std::string> channel_texts);
  /// See `ZelkColumnDecoder::TakeBatch`.
  bool take_batch(std::size_t table, bool is_end, ArrowArray& out);

 private:
  void bound_memory();

  std::shared_ptr<const ColumnPlan> plan_;
  std::vector<TableRows> tables_;
  std::size_t due_bytes_ = SIZE_MAX;  ///< tables with that many give batches of fewer rows
  ChannelTexts channels_;
  BlockDecoder decoder_;
};

}  // namespace zelk::logs

#endif

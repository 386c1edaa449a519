/// \file
/// The inside of the public classes.

#ifndef ZELK_LOGS_COLUMNS_STATE_HPP
#define ZELK_LOGS_COLUMNS_STATE_HPP

#include <memory>
#include <optional>
#include <vector>

#include "logs/columns/column_store.hpp"
#include "zelk/logs/columns.hpp"

struct ZelkColumnRows::Content {
  std::shared_ptr<const zelk::logs::ColumnPlan> plan;
  zelk::logs::BlockDecoder decoder;
  std::vector<zelk::logs::TableRows> tables;
  std::vector<std::uint32_t> filled;  ///< the tables that have rows
  zelk::logs::ChannelTexts channels;  ///< of one block
};

struct ZelkColumnDecoder::State {
  /// Ends the choosing.
  zelk::logs::ColumnStore& prepared();
  /// @throws std::logic_error unless the choosing has ended
  zelk::logs::ColumnStore& store();
  /// @throws std::logic_error when it has
  void check_is_open() const;

  ZelkColumnOptions options;
  zelk::logs::Choosing chosen;
  std::optional<zelk::logs::ColumnStore> rows;  ///< none while choosing
};

#endif

/// \file
/// What is needed to decode the frames of one message into columns.

#ifndef ZELK_LOGS_COLUMNS_TABLE_PLAN_HPP
#define ZELK_LOGS_COLUMNS_TABLE_PLAN_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/encoding.hpp"
#include "logs/columns/kernels.hpp"
#include "logs/columns/presence_plan.hpp"
#include "zelk/frame_decoder.hpp"
#include "zelk/logs/columns.hpp"

namespace zelk::logs {

/// Index of the columns that all tables have, and of the first one of a signal.
enum : std::size_t { kTimeColumn, kChannelColumn, kFirstSignalColumn };

/// A column whose values come from windows of the frames.
struct WindowColumn {
  std::size_t column;  ///< index in the table
  Window window;
  std::uint32_t presence;
  Kernel kernel;
  Conversion conversion;
};

/// A column whose values and presence `ZelkFrameDecoder` finds frame by frame.
struct FrameColumn {
  std::size_t column;
  std::size_t signal;  ///< index in the message
  Kernel kernel;
  Conversion conversion;  ///< of raw values
};

class TablePlan {
 public:
  /// @param wanted    the signals of the message that have columns
  /// @param encoding  of the texts of the database
  TablePlan(const msgblk& message, const std::vector<bool>& wanted,
            const ZelkColumnOptions& options, Encoding encoding);

  const std::vector<ZelkColumn>& columns() const { return columns_; }
  /// By windows, so that each window is loaded once.
  const std::vector<WindowColumn>& window_columns() const { return window_columns_; }
  const std::vector<FrameColumn>& frame_columns() const { return frame_columns_; }
  const PresencePlan& presence() const { return presence_; }
  /// Null when there are no frame columns.
  const ZelkFrameDecoder* decoder() const { return decoder_.get(); }
  /// The texts of a column; null unless it is a dictionary of descriptions.
  const DescriptionTexts* texts_of(std::size_t column) const { return texts_[column].get(); }

 private:
  void add_signal(const sigblk& signal, std::size_t index, const ZelkColumnOptions& options,
                  Encoding encoding);
  void add_column(const sigblk& signal, std::size_t index, ZelkColumn column,
                  std::shared_ptr<const DescriptionTexts> texts, bool is_physical);

  std::vector<ZelkColumn> columns_;
  std::vector<std::shared_ptr<const DescriptionTexts>> texts_;  ///< one for each column
  std::vector<WindowColumn> window_columns_;
  std::vector<FrameColumn> frame_columns_;
  PresencePlan presence_;
  std::unique_ptr<const ZelkFrameDecoder> decoder_;
};

}  // namespace zelk::logs

#endif

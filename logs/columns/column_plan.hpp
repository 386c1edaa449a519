/// \file
/// What a column decoder decodes: its databases, the tables of the chosen messages, and the search
/// for the message of a frame. It does not change once it is made, and is shared by all threads.

#ifndef ZELK_LOGS_COLUMNS_COLUMN_PLAN_HPP
#define ZELK_LOGS_COLUMNS_COLUMN_PLAN_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "logs/columns/table_plan.hpp"
#include "logs/lookup/choosing.hpp"
#include "logs/lookup/message_finder.hpp"

namespace zelk::logs {

/// What frames make rows of: the index of a table, or none.
inline constexpr std::uint32_t kNoTable = UINT32_MAX;

/// What becomes of the frames of a message.
struct FrameTarget {
  std::uint32_t table;         ///< or `kNoTable`
  std::uint32_t length_bytes;  ///< that the message has
};

class ColumnPlan {
 public:
  ColumnPlan(const Choosing& chosen, const ZelkColumnOptions& options);
  ColumnPlan(const ColumnPlan&) = delete;
  ColumnPlan& operator=(const ColumnPlan&) = delete;

  const ZelkColumnOptions& options() const { return options_; }
  const MessageFinder& finder() const { return *finder_; }
  /// By the numbers that the finder gives messages.
  const std::vector<FrameTarget>& targets() const { return targets_; }
  const std::vector<TablePlan>& table_plans() const { return plans_; }
  const std::vector<ZelkColumnTable>& tables() const { return tables_; }

 private:
  std::uint32_t add_table(const NamedDatabase& database, const msgblk& message,
                          const NameFilter& choice);
  void name_tables();

  ZelkColumnOptions options_;
  std::vector<NamedDatabase> databases_;
  std::vector<FrameTarget> targets_;
  std::vector<TablePlan> plans_;
  std::vector<ZelkColumnTable> tables_;  ///< one for each plan
  std::optional<const MessageFinder> finder_;
};

}  // namespace zelk::logs

#endif

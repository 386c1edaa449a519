/// \file
/// What a column decoder decodes: its databases, the tables of the chosen messages, and the search
/// for the message of a frame. It does not change once it is made, and is shared by all threads.

#ifndef ZELK_LOGS_COLUMNS_COLUMN_PLAN_HPP
#define ZELK_LOGS_COLUMNS_COLUMN_PLAN_HPP

#include <memory>
#include <string>
#include <vector>

#include "logs/columns/message_finder.hpp"
#include "logs/columns/table_plan.hpp"

namespace zelk::logs {

/// Patterns of names that are chosen; none chooses all.
struct Choice {
  std::vector<std::string> messages;
  std::vector<std::string> signals;
};

/// Whether a message or signal of the database matches.
bool matches_message(const NamedDatabase& database, const std::string& pattern);
bool matches_signal(const NamedDatabase& database, const std::string& pattern);

class ColumnPlan {
 public:
  ColumnPlan(std::vector<NamedDatabase> databases, const Choice& choice,
             const ZelkColumnOptions& options);
  ColumnPlan(const ColumnPlan&) = delete;
  ColumnPlan& operator=(const ColumnPlan&) = delete;

  const ZelkColumnOptions& options() const { return options_; }
  const MessageFinder& finder() const { return *finder_; }
  const std::vector<TablePlan>& table_plans() const { return plans_; }
  const std::vector<ZelkColumnTable>& tables() const { return tables_; }

 private:
  void add_message(NamedDatabase& database, const msgblk& message, const Choice& choice);
  void name_tables();

  ZelkColumnOptions options_;
  std::vector<NamedDatabase> databases_;
  std::vector<TablePlan> plans_;
  std::vector<ZelkColumnTable> tables_;  ///< one for each plan
  std::unique_ptr<const MessageFinder> finder_;
};

}  // namespace zelk::logs

#endif

#include "logs/columns/column_plan.hpp"

#include <algorithm>
#include <utility>

#include "base/list.hpp"
#include "logs/lookup/table_names.hpp"

namespace zelk::logs {

ColumnPlan::ColumnPlan(const Choosing& chosen, const ZelkColumnOptions& options)
    : options_(options), databases_(chosen.databases) {
  options_.batch_rows = std::max<std::size_t>(options_.batch_rows, 1);
  for (const NamedDatabase& database : databases_) {
    for (const msgblk& message : each<const msgblk>(database.content.records.messages))
      targets_.push_back({add_table(database, message, chosen.choice), message.dlc});
  }
  name_tables();
  finder_.emplace(databases_, options_.match_groups);
}

/// @return the index of the table; `kNoTable` when the message has none
std::uint32_t ColumnPlan::add_table(const NamedDatabase& database, const msgblk& message,
                                    const NameFilter& choice) {
  const std::string name = database.text_of(message.name);
  if (!choice.takes_message(name)) return kNoTable;
  std::vector<bool> wanted;
  for (const sigblk& signal : each<const sigblk>(message.signals))
    wanted.push_back(choice.takes_signal(database.text_of(signal.name), name));
  if (!choice.signals.empty() && std::ranges::find(wanted, true) == wanted.end()) return kNoTable;
  plans_.emplace_back(message, wanted, options_, database.content.encoding);
  tables_.push_back({name, database.name, &message, plans_.back().columns()});
  return static_cast<std::uint32_t>(tables_.size() - 1);
}

void ColumnPlan::name_tables() {
  TableNames names(databases_, "::");
  for (ZelkColumnTable& table : tables_) table.name = names.next(table.database, table.name);
}

}  // namespace zelk::logs

#include "logs/columns/column_plan.hpp"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/list.hpp"
#include "base/wildcards.hpp"
#include "logs/columns/unique_names.hpp"

namespace zelk::logs {

namespace {

std::string text_of(const NamedDatabase& database, const char* text) {
  return to_utf8(view(text), database.content.encoding);
}

bool takes_message(const std::vector<std::string>& patterns, const std::string& message) {
  const auto matches = [&](const std::string& pattern) {
    return matches_wildcards(pattern, message);
  };
  return patterns.empty() || std::ranges::any_of(patterns, matches);
}

bool takes_signal(const std::vector<std::string>& patterns, const std::string& signal,
                  const std::string& message) {
  const auto matches = [&](const std::string& pattern) {
    return matches_object(pattern, signal, message);
  };
  return patterns.empty() || std::ranges::any_of(patterns, matches);
}

}  // namespace

bool matches_message(const NamedDatabase& database, const std::string& pattern) {
  return find_first<const msgblk>(database.content.records.messages, [&](const msgblk& message) {
    return matches_wildcards(pattern, text_of(database, message.name));
  });
}

bool matches_signal(const NamedDatabase& database, const std::string& pattern) {
  return find_first<const msgblk>(database.content.records.messages, [&](const msgblk& message) {
    const std::string owner = text_of(database, message.name);
    return find_first<const sigblk>(message.signals, [&](const sigblk& signal) {
             return matches_object(pattern, text_of(database, signal.name), owner);
           }) != nullptr;
  });
}

ColumnPlan::ColumnPlan(std::vector<NamedDatabase> databases, const Choice& choice,
                       const ZelkColumnOptions& options)
    : options_(options), databases_(std::move(databases)) {
  options_.batch_rows = std::max<std::size_t>(options_.batch_rows, 1);
  for (NamedDatabase& database : databases_) {
    for (const msgblk& message : each<const msgblk>(database.content.records.messages))
      add_message(database, message, choice);
  }
  name_tables();
  finder_ = std::make_unique<const MessageFinder>(databases_, options_.match_groups);
}

void ColumnPlan::add_message(NamedDatabase& database, const msgblk& message, const Choice& choice) {
  const std::string name = text_of(database, message.name);
  if (!takes_message(choice.messages, name)) return;
  std::vector<bool> wanted;
  for (const sigblk& signal : each<const sigblk>(message.signals))
    wanted.push_back(takes_signal(choice.signals, text_of(database, signal.name), name));
  if (!choice.signals.empty() && std::ranges::find(wanted, true) == wanted.end()) return;
  plans_.emplace_back(message, wanted, options_, database.content.encoding);
  database.tables.emplace(&message, static_cast<std::uint32_t>(tables_.size()));
  tables_.push_back({name, database.name, &message, plans_.back().columns()});
}

/// The database is named where several have a message of that name, chosen or not.
void ColumnPlan::name_tables() {
  std::unordered_map<std::string, std::unordered_set<const NamedDatabase*>> owners;
  for (const NamedDatabase& database : databases_) {
    for (const msgblk& message : each<const msgblk>(database.content.records.messages))
      owners[text_of(database, message.name)].insert(&database);
  }
  UniqueNames names;
  for (ZelkColumnTable& table : tables_) {
    const bool is_shared = owners[table.name].size() > 1;
    table.name = names.unique(is_shared ? table.database + "::" + table.name : table.name);
  }
}

}  // namespace zelk::logs

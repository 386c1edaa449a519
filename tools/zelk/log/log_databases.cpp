#include "log/log_databases.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "base/quoting.hpp"
#include "base/wildcards.hpp"
#include "input/lookup.hpp"
#include "log/log_probe.hpp"
#include "term/output.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

struct Binding {
  std::string interface_name;
  std::string path;
};

Binding parse_binding(const std::string& argument) {
  const std::size_t mark = argument.find('=');
  if (mark == std::string::npos || mark == 0 || exists(argument)) return {"", argument};
  return {argument.substr(0, mark), argument.substr(mark + 1)};
}

/// Prints an error for a pattern that matches none of `names`.
bool check_pattern(std::string_view kind, const std::string& pattern,
                   const std::vector<std::string>& names, std::string_view more) {
  NameSuggestion others(pattern);
  for (const std::string& name : names) {
    if (matches_wildcards(pattern, name)) return true;
    others.add(name);
  }
  print_error(
      fmt::format("zelk: no {} is named {}{}{}", kind, in_quotes(pattern), more, others.text()));
  return false;
}

}  // namespace

bool LogDatabases::open(const std::string& argument) {
  Binding binding = parse_binding(argument);
  auto file = std::make_unique<DatabaseFile>(mending_);
  if (!file->open_and_report(binding.path)) return false;
  paths_.push_back(binding.path);
  databases_.push_back({std::move(binding.interface_name), std::move(file)});
  return true;
}

std::vector<LogDatabases::Entry> LogDatabases::entries() const {
  std::vector<Entry> entries;
  for (const OpenDatabase& database : databases_)
    entries.push_back({database.file->encoded(), database.interface_name});
  return entries;
}

bool LogDatabases::open_unless_log(const std::string& argument, std::optional<std::string>& log) {
  if (!exists(argument)) return open(argument);
  const std::optional<std::string> why_not = why_no_log(argument);
  if (!why_not && !DatabaseFile().open(argument)) {
    log = argument;
    return false;
  }
  if (open(argument)) return true;
  if (why_not) print_error(fmt::format("{}: nor a log: {}", escaped(argument), *why_not));
  return false;
}

/// What to call a database: by its file, with the interface in front where another one has the same
/// name.
std::string LogDatabases::label_of(const OpenDatabase& database) const {
  std::string name = utf8(database.file->opened().name);
  const auto is_other = [&](const OpenDatabase& other) {
    return &other != &database && name == utf8(other.file->opened().name);
  };
  if (database.interface_name.empty() || std::ranges::none_of(databases_, is_other)) return name;
  return database.interface_name + '.' + name;
}

bool LogDatabases::check_filter(const NameFilter& filter, std::string_view more) const {
  if (!filter.is_choice()) return true;
  std::vector<std::string> messages;
  std::vector<std::string> signals;
  for (const OpenDatabase& database : databases_) {
    const EncodedDatabase content = database.file->encoded();
    const auto text = [&](const char* name) { return to_utf8(view(name), content.encoding); };
    for (const msgblk& message : each<const msgblk>(content.records.messages)) {
      messages.push_back(text(message.name));
      for (const sigblk& signal : each<const sigblk>(message.signals)) {
        signals.push_back(text(signal.name));
        signals.push_back(messages.back() + '.' + text(signal.name));
      }
    }
  }
  bool all = true;
  for (const std::string& pattern : filter.messages)
    all &= check_pattern("message", pattern, messages, more);
  for (const std::string& pattern : filter.signals)
    all &= check_pattern("signal", pattern, signals, more);
  return all;
}

}  // namespace zelk::tool

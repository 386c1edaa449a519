#include "logs/lookup/choosing.hpp"

#include <algorithm>

#include "base/list.hpp"
#include "base/wildcards.hpp"

namespace zelk::logs {

namespace {

bool has_message(const NamedDatabase& database, const std::string& pattern) {
  return find_first<const msgblk>(database.content.records.messages, [&](const msgblk& message) {
    return matches_wildcards(pattern, database.text_of(message.name));
  });
}

bool has_signal(const NamedDatabase& database, const std::string& pattern) {
  return find_first<const msgblk>(database.content.records.messages, [&](const msgblk& message) {
    const std::string owner = database.text_of(message.name);
    return find_first<const sigblk>(message.signals, [&](const sigblk& signal) {
             return matches_object(pattern, database.text_of(signal.name), owner);
           }) != nullptr;
  });
}

}  // namespace

void Choosing::add_database(const ZelkDatabase& database, std::string_view name,
                            std::string_view channel) {
  databases.push_back({{database, encoding_of(database)}, std::string(name), std::string(channel)});
}

bool Choosing::select_messages(std::string_view pattern) {
  const std::string& added = choice.messages.emplace_back(pattern);
  return std::ranges::any_of(
      databases, [&](const NamedDatabase& database) { return has_message(database, added); });
}

bool Choosing::select_signals(std::string_view pattern) {
  const std::string& added = choice.signals.emplace_back(pattern);
  return std::ranges::any_of(
      databases, [&](const NamedDatabase& database) { return has_signal(database, added); });
}

}  // namespace zelk::logs

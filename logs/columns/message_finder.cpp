#include "logs/columns/message_finder.hpp"

#include <utility>

#include "base/j1939.hpp"
#include "base/list.hpp"

namespace zelk::logs {

GroupFinder::GroupFinder(const NamedDatabase& database, bool match_any) : database_(database) {
  const ZelkDatabase& records = database.content.records;
  has_group_numbers_ = records.HasJ1939GroupNumbers();
  has_groups_ = has_group_numbers_ || records.GetAttrDef(j1939::kFrameFormatAttribute) != nullptr;
  if (match_any && !has_group_numbers_) all_.emplace(records.messages);
}

const msgblk* GroupFinder::find(std::uint32_t id) const {
  const ZelkDatabase& records = database_.content.records;
  const msgblk* const message = has_groups_ ? records.GetJ1939Message(id, 0) : nullptr;
  return message || !all_ ? message : all_->find(id);
}

MessageFinder::MessageFinder(const std::vector<NamedDatabase>& databases, bool match_groups) {
  for (const NamedDatabase& database : databases)
    groups_.push_back(std::make_unique<const GroupFinder>(database, match_groups));
  add_route({}, databases);
  for (const NamedDatabase& database : databases) {
    if (database.channel.empty() || named_routes_.contains(database.channel)) continue;
    named_routes_.emplace(database.channel, static_cast<std::uint32_t>(routes_.size()));
    add_route(database.channel, databases);
  }
}

void MessageFinder::add_route(const std::string& channel,
                              const std::vector<NamedDatabase>& databases) {
  std::size_t count = 0;
  for (const NamedDatabase& database : databases)
    count += database.counts_for(channel) ? each(database.content.records.messages).size() : 0;
  Route route{Tables(count), {}};
  for (const auto& groups : groups_) {
    const NamedDatabase& database = groups->database();
    if (!database.counts_for(channel)) continue;
    add_messages(*groups, route.by_id);
    if (groups->has_groups()) route.groups.push_back(groups.get());
  }
  routes_.push_back(std::move(route));
}

void MessageFinder::add_messages(const GroupFinder& groups, Tables& tables) {
  const NamedDatabase& database = groups.database();
  for (const msgblk& message : each<const msgblk>(database.content.records.messages)) {
    // A group number is no identifier, even where they are equal.
    if (groups.has_group_numbers() && (message.id & ZELK_ID_EXTENDED) != 0) continue;
    tables.enter(message.id, database.table_of(message) + kFirstTable);
  }
}

std::uint32_t MessageFinder::route_of(std::string_view channel) const {
  const auto found = named_routes_.find(std::string(channel));
  return found == named_routes_.end() ? 0 : found->second;
}

std::uint32_t MessageFinder::search(std::uint32_t route, std::uint32_t id) const {
  const std::uint32_t found = routes_[route].by_id.find(id);
  if (found != 0) return found - kFirstTable;
  if ((id & ZELK_ID_EXTENDED) == 0) return kNoTable;
  for (const GroupFinder* const groups : routes_[route].groups) {
    const msgblk* const message = groups->find(id);
    if (message) return groups->database().table_of(*message);
  }
  return kNoTable;
}

}  // namespace zelk::logs

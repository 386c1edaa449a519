#include "logs/lookup/message_finder.hpp"

#include <utility>

#include "base/j1939.hpp"
#include "base/list.hpp"

namespace zelk::logs {

GroupFinder::GroupFinder(const NamedDatabase& database, std::uint32_t first, bool match_any)
    : database_(database), first_(first) {
  const ZelkDatabase& records = database.content.records;
  has_group_numbers_ = records.HasJ1939GroupNumbers();
  has_groups_ = has_group_numbers_ || records.GetAttrDef(j1939::kFrameFormatAttribute) != nullptr;
  if (match_any && !has_group_numbers_) all_.emplace(records.messages);
  if (!has_groups()) return;
  for (const msgblk& message : each<const msgblk>(records.messages))
    numbers_.emplace(&message, first++);
}

std::uint32_t GroupFinder::find(std::uint32_t id) const {
  const msgblk* message = has_groups_ ? database_.content.records.GetJ1939Message(id, 0) : nullptr;
  if (!message && all_) message = all_->find(id);
  return message ? numbers_.at(message) : kNoMessage;
}

MessageFinder::MessageFinder(const std::vector<NamedDatabase>& databases, bool match_groups) {
  std::uint32_t first = 0;
  for (const NamedDatabase& database : databases) {
    groups_.push_back(std::make_unique<const GroupFinder>(database, first, match_groups));
    first += static_cast<std::uint32_t>(each(database.content.records.messages).size());
  }
  add_route({});
  for (const NamedDatabase& database : databases) {
    if (database.channel.empty() || named_routes_.contains(database.channel)) continue;
    named_routes_.emplace(database.channel, static_cast<std::uint32_t>(routes_.size()));
    add_route(database.channel);
  }
}

void MessageFinder::add_route(const std::string& channel) {
  std::size_t count = 0;
  for (const auto& groups : groups_) {
    const NamedDatabase& database = groups->database();
    count += database.counts_for(channel) ? each(database.content.records.messages).size() : 0;
  }
  Route route{Numbers(count), {}};
  for (const auto& groups : groups_) {
    if (!groups->database().counts_for(channel)) continue;
    add_messages(*groups, route.by_id);
    if (groups->has_groups()) route.groups.push_back(groups.get());
  }
  routes_.push_back(std::move(route));
}

void MessageFinder::add_messages(const GroupFinder& groups, Numbers& numbers) {
  std::uint32_t number = groups.first() + kFirst;
  for (const msgblk& message : each<const msgblk>(groups.database().content.records.messages)) {
    // A group number is no identifier, even where they are equal.
    if (!groups.has_group_numbers() || (message.id & ZELK_ID_EXTENDED) == 0)
      numbers.enter(message.id, number);
    ++number;
  }
}

std::uint32_t MessageFinder::route_of(std::string_view channel) const {
  const auto found = named_routes_.find(std::string(channel));
  return found == named_routes_.end() ? 0 : found->second;
}

std::uint32_t MessageFinder::search(std::uint32_t route, std::uint32_t id) const {
  const std::uint32_t found = routes_[route].by_id.find(id);
  if (found != 0) return found - kFirst;
  if ((id & ZELK_ID_EXTENDED) == 0) return kNoMessage;
  for (const GroupFinder* const groups : routes_[route].groups) {
    const std::uint32_t message = groups->find(id);
    if (message != kNoMessage) return message;
  }
  return kNoMessage;
}

}  // namespace zelk::logs

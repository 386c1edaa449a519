#include "logs/transport/session_table.hpp"

#include <iterator>
#include <utility>

namespace zelk::logs {

/// The addresses, a byte each, and the name of the channel.
const std::string& SessionTable::key_of(const Pair& pair) {
  key_.assign({static_cast<char>(pair.source), static_cast<char>(pair.destination)});
  return key_.append(pair.channel);
}

void SessionTable::clear() {
  by_key_.clear();
  sessions_.clear();
}

SessionTable::Place SessionTable::find(const Pair& pair) {
  const auto found = by_key_.find(key_of(pair));
  return found == by_key_.end() ? none() : found->second;
}

void SessionTable::open(const Pair& pair, Session session) {
  sessions_.push_back({key_of(pair), std::move(session)});
  by_key_.emplace(key_, std::prev(sessions_.end()));
}

void SessionTable::close(Place place) {
  by_key_.erase(place->key);
  sessions_.erase(place);
}

void SessionTable::hear(Place place, std::int64_t now) {
  place->session.hear(now);
  sessions_.splice(sessions_.end(), sessions_, place);
}

}  // namespace zelk::logs

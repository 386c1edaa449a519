#include "logs/transport/session_table.hpp"

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

Session* SessionTable::find(const Pair& pair) {
  const auto found = by_key_.find(key_of(pair));
  return found == by_key_.end() ? nullptr : &found->second->session;
}

void SessionTable::open(const Pair& pair, Session session) {
  sessions_.push_back({key_of(pair), std::move(session)});
  by_key_.emplace(key_, std::prev(sessions_.end()));
}

void SessionTable::close(const Pair& pair) {
  const auto found = by_key_.find(key_of(pair));
  sessions_.erase(found->second);
  by_key_.erase(found);
}

void SessionTable::hear(const Pair& pair, std::int64_t now) {
  const auto at = by_key_.find(key_of(pair))->second;
  at->session.hear(now);
  sessions_.splice(sessions_.end(), sessions_, at);
}

void SessionTable::close_oldest() {
  by_key_.erase(sessions_.front().key);
  sessions_.pop_front();
}

}  // namespace zelk::logs

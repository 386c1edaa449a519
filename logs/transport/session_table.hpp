/// \file
/// The messages under way, by channel, source and destination.

#ifndef ZELK_LOGS_TRANSPORT_SESSION_TABLE_HPP
#define ZELK_LOGS_TRANSPORT_SESSION_TABLE_HPP

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/seeded_hash.hpp"
#include "logs/transport/session.hpp"

namespace zelk::logs {

/// Who sends to whom.
struct Pair {
  std::string_view channel;
  std::uint32_t source;
  std::uint32_t destination;

  Pair reversed() const { return {channel, destination, source}; }
};

class SessionTable {
  struct Entry {
    std::string key;
    Session session;
  };

 public:
  /// Where a session stands, until it is closed.
  using Place = std::list<Entry>::iterator;

  std::size_t size() const { return sessions_.size(); }
  void clear();

  Place none() { return sessions_.end(); }
  /// Of which nothing was heard for longest.
  Place oldest() { return sessions_.begin(); }
  /// The session of a pair, or `none`.
  Place find(const Pair& pair);

  /// @pre the pair has none
  void open(const Pair& pair, Session session);
  void close(Place place);
  /// Notes that something was heard of a session.
  void hear(Place place, std::int64_t now);

 private:
  const std::string& key_of(const Pair& pair);

  std::list<Entry> sessions_;  ///< in the order in which something was heard of them
  std::unordered_map<std::string, Place, SeededHash, std::equal_to<>> by_key_;
  std::string key_;  ///< of the last search
};

}  // namespace zelk::logs

#endif

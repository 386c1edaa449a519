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
 public:
  std::size_t size() const { return sessions_.size(); }
  void clear();

  /// The session of a pair; null when there is none. Valid until it is closed.
  Session* find(const Pair& pair);
  /// @pre the pair has none
  void open(const Pair& pair, Session session);
  /// @pre the pair has one
  void close(const Pair& pair);

  /// Notes that something was heard of a pair's session.
  ///
  /// @pre the pair has one
  void hear(const Pair& pair, std::int64_t now);
  /// Closes the session of which nothing was heard for longest.
  ///
  /// @pre there is any
  void close_oldest();

 private:
  struct Entry {
    std::string key;
    Session session;
  };
  using Entries = std::list<Entry>;

  const std::string& key_of(const Pair& pair);

  Entries sessions_;  ///< in the order in which something was heard of them
  std::unordered_map<std::string, Entries::iterator, SeededHash, std::equal_to<>> by_key_;
  std::string key_;  ///< of the last search
};

}  // namespace zelk::logs

#endif

/// \file
/// Who sends what to whom.

#ifndef ZELK_TOOL_REPORT_TRAFFIC_HPP
#define ZELK_TOOL_REPORT_TRAFFIC_HPP

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "zelk/database.hpp"

namespace zelk::tool {

/// A node, and how many signals of a message it receives.
struct Receiver {
  const symblk* node;
  std::size_t signals;
};

/// What goes from one node to others.
struct NodeTraffic {
  std::vector<const msgblk*> sends{};
  std::vector<const msgblk*> receives{};
  std::unordered_map<const symblk*, std::size_t> messages_to{};
};

/// The nodes that send and receive each message of a database, which must outlive the object. Time
/// is linear in the number of links, but for the pairs of senders and receivers of a message.
class Traffic {
 public:
  /// @param most  of the messages, the first ones, that count
  Traffic(const ZelkDatabase& database, std::size_t most);

  /// The transmitter first.
  static std::vector<const symblk*> senders(const msgblk& message);
  /// In the order in which the signals name them.
  static std::vector<Receiver> receivers(const msgblk& message);

  const NodeTraffic& of(const symblk& node) const;

 private:
  std::unordered_map<const symblk*, NodeTraffic> nodes_;
};

}  // namespace zelk::tool

#endif

#include "report/traffic.hpp"

#include <unordered_set>

#include "base/list.hpp"

namespace zelk::tool {

Traffic::Traffic(const ZelkDatabase& database, std::size_t most) {
  std::size_t count = 0;
  for (const msgblk& message : each(database.messages)) {
    if (count++ == most) return;
    const std::vector<Receiver> receiving = receivers(message);
    for (const Receiver& receiver : receiving) nodes_[receiver.node].receives.push_back(&message);
    for (const symblk* sender : senders(message)) {
      NodeTraffic& traffic = nodes_[sender];
      traffic.sends.push_back(&message);
      for (const Receiver& receiver : receiving) ++traffic.messages_to[receiver.node];
    }
  }
}

std::vector<const symblk*> Traffic::senders(const msgblk& message) {
  std::vector<const symblk*> nodes;
  std::unordered_set<const symblk*> known;
  const auto add = [&](const symblk* node) {
    if (node && known.insert(node).second) nodes.push_back(node);
  };
  add(message.transmitter);
  for (const rxblk& link : each(message.tx_nodes)) add(link.node);
  return nodes;
}

std::vector<Receiver> Traffic::receivers(const msgblk& message) {
  std::vector<Receiver> receivers;
  std::unordered_map<const symblk*, std::size_t> places;
  for (const sigblk& signal : each(message.signals)) {
    for (const rxblk& link : each(signal.receivers)) {
      if (!link.node) continue;
      const auto [found, is_new] = places.try_emplace(link.node, receivers.size());
      if (is_new) receivers.push_back({link.node, 0});
      ++receivers[found->second].signals;
    }
  }
  return receivers;
}

const NodeTraffic& Traffic::of(const symblk& node) const {
  static const NodeTraffic kNone;
  const auto found = nodes_.find(&node);
  return found == nodes_.end() ? kNone : found->second;
}

}  // namespace zelk::tool

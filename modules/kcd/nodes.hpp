/// \file
/// The nodes of a file, found by the identifiers that stand for them.

#ifndef ZELK_MODULES_KCD_NODES_HPP
#define ZELK_MODULES_KCD_NODES_HPP

#include <map>
#include <string_view>
#include <vector>

#include "kcd/element.hpp"
#include "zelk/records.h"

namespace zelk::modules::kcd {

class Nodes {
 public:
  /// Appends the file's nodes to `list`, of a file with several buses only those that the bus
  /// refers to.
  /// @throws Fault for doubled identifiers and names, and for bad names
  Nodes(Reading& reading, const Element& root, const Element& bus, bool is_only_bus, symblk*& list);

  /// The nodes that a Producer or Consumer refers to, in order; none without one.
  /// @throws Fault for an identifier that no node has
  std::vector<symblk*> referred(const std::optional<Element>& group) const;

 private:
  std::map<std::string_view, symblk*> by_id_;
};

}  // namespace zelk::modules::kcd

#endif

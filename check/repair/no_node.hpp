/// \file
/// Names of nodes that stand for no node.

#ifndef ZELK_CHECK_REPAIR_NO_NODE_HPP
#define ZELK_CHECK_REPAIR_NO_NODE_HPP

#include "check/repair/mender.hpp"

namespace zelk::check {

/// Takes the nodes of `RepairOptions::no_node` out of the list of nodes and all other lists, with
/// the statements about them; the placeholder stands where there must be a name.
void remove_no_nodes(Mender& mender);

}  // namespace zelk::check

#endif

#include "kcd/nodes.hpp"

#include <set>

#include "common/records.hpp"

namespace zelk::modules::kcd {

Nodes::Nodes(Reading& reading, const Element& root, const Element& bus, bool is_only_bus,
             symblk*& list) {
  std::set<std::string_view> references;
  for (const pugi::xpath_node& reference : bus.node().select_nodes(".//NodeRef")) {
    references.insert(reference.node().attribute("id").value());
  }
  ListTail<symblk> nodes(list);
  std::set<std::string> names;
  root.each("Node", [&](const Element& element) {
    const std::string_view id = element.text("id");
    const auto [entry, is_new] = by_id_.try_emplace(id, nullptr);
    if (!is_new) element.fail("another node has the id \"" + std::string(id) + "\"");
    if (!is_only_bus && !references.contains(id)) {
      reading.left_out.add("Node element", " of other buses");
      return;
    }
    element.take({.attributes = {"id", "name"}});
    const std::string name = element.object_name("name");
    if (!names.insert(name).second) element.fail("another node has this name");
    symblk& node = append_new(nodes);
    assign_text(node.name, name);
    entry->second = &node;
  });
}

std::vector<symblk*> Nodes::referred(const std::optional<Element>& group) const {
  std::vector<symblk*> nodes;
  if (!group) return nodes;
  group->take({.many = {"NodeRef"}});
  group->each("NodeRef", [&](const Element& reference) {
    reference.take({.attributes = {"id"}});
    const std::string_view id = reference.text("id");
    const auto found = by_id_.find(id);
    if (found == by_id_.end()) reference.fail("no node has the id \"" + std::string(id) + "\"");
    nodes.push_back(found->second);
  });
  if (nodes.size() > UINT16_MAX) group->fail("more than 65535 nodes");
  return nodes;
}

}  // namespace zelk::modules::kcd

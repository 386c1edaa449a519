#include "manager/manager_tables.hpp"

namespace zelk {

void ManagerTables::enter(Node& node, Node*& head) {
  const auto above = last_of_priority.lower_bound(node.priority);
  Node* const previous = above == last_of_priority.end() ? nullptr : above->second;
  try {
    by_name.emplace(node.name, &node);
    by_handle.emplace(node.name, &node);
    by_database.emplace(&node.database, &node);
    last_of_priority.insert_or_assign(node.priority, &node);
  } catch (...) {
    forget(node);
    throw;
  }
  Node*& link = previous ? previous->next : head;
  node.previous = previous;
  node.next = link;
  if (link) link->previous = &node;
  link = &node;
}

void ManagerTables::leave(const Node& node, Node*& head) noexcept {
  forget(node);
  const auto last = last_of_priority.find(node.priority);
  if (last->second == &node) {
    const bool is_alone = !node.previous || node.previous->priority != node.priority;
    last->second = node.previous;
    if (is_alone) last_of_priority.erase(last);
  }
  (node.previous ? node.previous->next : head) = node.next;
  if (node.next) node.next->previous = node.previous;
}

void ManagerTables::forget(const Node& node) noexcept {
  const auto named = by_name.find(node.name);
  if (named != by_name.end() && named->second == &node) by_name.erase(named);
  by_handle.erase(node.name);
  const auto [first, last] = by_database.equal_range(&node.database);
  for (auto entry = first; entry != last; ++entry) {
    if (entry->second != &node) continue;
    by_database.erase(entry);
    return;
  }
}

void ManagerTables::rename(Node& node, char* name) {
  by_name.emplace(name, &node);
  try {
    by_handle.emplace(name, &node);
  } catch (...) {
    by_name.erase(name);
    throw;
  }
  by_name.erase(node.name);
  by_handle.erase(node.name);
}

}  // namespace zelk

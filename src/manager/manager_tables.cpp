#include "manager/manager_tables.hpp"

#include <memory>
#include <thread>

#include "database/process_guard.hpp"
#include "database/registry.hpp"
#include "model/memory.hpp"

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

const char* ZelkManager::ListInsertDatabase(ZelkDatabase& database, const char* name,
                                            std::uint32_t priority) {
  zelk::OwnedText copy = zelk::copy_text(name);
  auto node = std::make_unique<DbListNode>(DbListNode{
      copy.get(), database, priority, {}, envvar_handle_base_, nullptr, nullptr, nullptr});
  const zelk::ProcessGuard guard;
  tables_->thread = std::this_thread::get_id();
  tables_->enter(*node, databases_);
  const DbListNode& listed = *node.release();
  envvar_handle_base_ += static_cast<std::uint32_t>(listed.database.GetMaxEnvvarHandle());
  return copy.release();
}

void ZelkManager::ListRemoveDatabase(DbListNode& node) {
  last_found_ = nullptr;
  const zelk::ProcessGuard guard;
  tables_->leave(node, databases_);
  zelk_mfree(node.name);
  delete &node;
  if (!databases_) envvar_handle_base_ = 0;
}

ZelkManager::DbListNode* ZelkManager::ListFindDatabase(const char* db) {
  DbListNode* const found = ListFindNode(db);
  status_ = found ? ZelkStatusOk : ZelkStatusNotFound;
  return found;
}

ZelkManager::DbListNode* ZelkManager::ListFindNode(const char* db) const {
  if (last_found_ && last_found_->name == db) return last_found_;
  const auto found = tables_->by_handle.find(db);
  if (found == tables_->by_handle.end()) return nullptr;
  last_found_ = found->second;
  return last_found_;
}

ZelkManager::DbListNode* ZelkManager::ListFindName(const char* text) const {
  if (!text) return nullptr;
  const auto found = tables_->by_name.find(text);
  return found == tables_->by_name.end() ? nullptr : found->second;
}

/// Any one of several instances of the file: there can be more when a touch was taken back.
ZelkManager::DbListNode* ZelkManager::ListFindPath(const char* path) const {
  if (!path || !databases_) return nullptr;
  const zelk::platform::FilePath file(path);
  const zelk::ProcessGuard guard;
  for (const ZelkDatabase* const database : zelk::registry().of(file)) {
    const auto found = tables_->by_database.find(database);
    if (found != tables_->by_database.end()) return found->second;
  }
  return nullptr;
}

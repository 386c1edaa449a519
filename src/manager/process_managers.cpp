// The managers of the process, and what one asks the others.

#include <thread>
#include <utility>

#include "base/list.hpp"
#include "database/process_guard.hpp"
#include "manager/manager_tables.hpp"
#include "zelk/manager.hpp"

namespace {

/// The newest manager of the process; the mutex of `ProcessGuard` guards the list.
ZelkManagerNode*& managers() {
  static ZelkManagerNode* head = nullptr;
  return head;
}

}  // namespace

void ZelkManager::EnterManagersList() {
  const zelk::ProcessGuard guard;
  ZelkManagerNode*& head = managers();
  head = new ZelkManagerNode{*this, head};
}

void ZelkManager::LeaveManagersList() {
  const zelk::ProcessGuard guard;
  ZelkManagerNode*& head = managers();
  ZelkManagerNode** link = &head;
  while (*link && &(*link)->manager != this) link = &(*link)->next;
  if (*link) delete std::exchange(*link, (*link)->next);
  if (!head) ZelkDatabase::ReleaseCache();
}

const ZelkManagerNode* ZelkManager::GetManagersList() {
  const zelk::ProcessGuard guard;
  return managers();
}

/// Whether a manager owns a file for writing. The virtual operation of another thread's manager is
/// not called, because it may read what that thread changes.
bool ZelkManager::OwnsForWrite(const ZelkManager& manager, const char* path) {
  const zelk::ProcessGuard guard;
  if (manager.tables_->thread == std::this_thread::get_id())
    return manager.OwnsDatabaseForWrite(path);
  return manager.tables_->is_for_writing && manager.ListFindPath(path) != nullptr;
}

/// Whether a write manager of another thread has opened the file while this one read it.
bool ZelkManager::IsWrittenByOtherThread(const char* path) const {
  if (!tables_->is_for_writing) return false;
  return zelk::find_first(GetManagersList(), [&](const ZelkManagerNode& node) {
    return node.manager.tables_->thread != tables_->thread && OwnsForWrite(node.manager, path);
  });
}

/// Whether a manager that owns `file` for writing has `database`, which is of that file, open.
bool ZelkManager::IsEdited(const ZelkDatabase& database, const char* file) {
  const zelk::ProcessGuard guard;
  return zelk::find_first(GetManagersList(), [&](const ZelkManagerNode& node) {
    return node.manager.tables_->by_database.contains(&database) &&
           OwnsForWrite(node.manager, file);
  });
}

void ZelkManager::ForgetCached(ZelkDatabase& database) {
  const zelk::ProcessGuard guard;
  for (const ZelkManagerNode& node : zelk::each(GetManagersList())) {
    node.manager.RemoveFromCache(database);
  }
}

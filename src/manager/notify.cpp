// Notifications of changes, sent to the windows and threads of managers.

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/list.hpp"
#include "database/process_guard.hpp"
#include "database/registry.hpp"
#include "manager/manager_tables.hpp"
#include "model/without_raising.hpp"
#include "platform/hooks.hpp"
#include "platform/platform.hpp"
#include "zelk/library.h"
#include "zelk/manager.hpp"

namespace {

using Node = ZelkManager::DbListNode;

/// The part of a handle that fits into a message's parameter.
std::uint32_t low_word(const void* handle) {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle));
}

std::uint32_t message_number() {
  // Asked for once: the number stays, and at the end of the process the system may not answer any
  // more.
  static const std::uint32_t number =
      zelk::platform::registered_message(ZelkNotificationMessageString);
  return number;
}

/// Called without the mutex: a host's function may wait for another thread, which may wait for the
/// mutex.
void send(const std::vector<zelk_notification>& news) {
  for (const zelk_notification& notification : news) zelk::platform::notify(notification);
}

/// Puts some nodes of a list into the order of the list.
void sort_as_listed(const Node* list, std::vector<const Node*>& nodes) {
  if (nodes.size() < 2) return;
  const std::vector<const Node*> unordered = std::exchange(nodes, {});
  for (const Node& node : zelk::each(list)) {
    if (std::find(unordered.begin(), unordered.end(), &node) != unordered.end()) {
      nodes.push_back(&node);
    }
  }
}

}  // namespace

void ZelkManager::NotifyChanges(const ZelkManager& sender, const ZelkDatabase& database) {
  zelk::without_raising([&] {
    std::vector<zelk_notification> news = {
        {ZELK_NOTIFY_ALL_WINDOWS, nullptr, message_number(), 0, nullptr}};
    {
      const zelk::ProcessGuard guard;
      const auto equal = zelk::registry().equal_to(database);
      sender.AddNews(equal, sender, news);
      for (const ZelkManagerNode& node : zelk::each(GetManagersList())) {
        if (&node.manager != &sender) node.manager.AddNews(equal, sender, news);
      }
    }
    send(news);
  });
}

void ZelkManager::NotifyChanges(const ZelkDatabase& database, const ZelkManager& sender) const {
  zelk::without_raising([&] {
    std::vector<zelk_notification> news;
    {
      const zelk::ProcessGuard guard;
      AddNews(zelk::registry().equal_to(database), sender, news);
    }
    send(news);
  });
}

/// Appends the notifications of this manager's window or thread about a change of any of the
/// databases, in the order of its list.
void ZelkManager::AddNews(const std::vector<const ZelkDatabase*>& databases,
                          const ZelkManager& sender, std::vector<zelk_notification>& news) const {
  if (!window_ && !thread_) return;
  std::vector<const DbListNode*> nodes;
  for (const ZelkDatabase* const database : databases) {
    const auto [first, last] = tables_->by_database.equal_range(database);
    for (auto entry = first; entry != last; ++entry) nodes.push_back(entry->second);
  }
  sort_as_listed(databases_, nodes);
  for (const DbListNode* const node : nodes) {
    if (window_) {
      news.push_back(
          {ZELK_NOTIFY_WINDOW, window_, message_number(), low_word(sender.window_), node->name});
    } else {
      news.push_back(
          {ZELK_NOTIFY_THREAD, thread_, message_number(), low_word(sender.thread_), node->name});
    }
  }
}

// News of changes, posted to the windows and threads of managers.

#include <cstdint>
#include <new>

#include "model/errors.hpp"
#include "platform/hooks.hpp"
#include "platform/platform.hpp"
#include "zelk/library.h"
#include "zelk/manager.hpp"

namespace {

/// What of a handle fits into a message's parameter.
std::uint32_t low_word(const void* handle) {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle));
}

std::uint32_t message_number() {
  return zelk::platform::registered_message(ZelkNotificationMessageString);
}

}  // namespace

void ZelkManager::NotifyChanges(const ZelkManager& sender, const ZelkDatabase& database) try {
  zelk::platform::notify({ZELK_NOTIFY_ALL_WINDOWS, nullptr, message_number(), 0, nullptr});
  sender.NotifyChanges(database, sender);
  for (const ZelkManagerNode* node = GetManagersList(); node; node = node->next) {
    if (&node->manager != &sender) node->manager.NotifyChanges(database, sender);
  }
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
}

void ZelkManager::NotifyChanges(const ZelkDatabase& database, const ZelkManager& sender) const try {
  if (!window_ && !thread_) return;
  const std::uint32_t number = message_number();
  for (const DbListNode* node = databases_; node; node = node->next) {
    if (!(node->database == database)) continue;
    if (window_) {
      zelk::platform::notify(
          {ZELK_NOTIFY_WINDOW, window_, number, low_word(sender.window_), node->name});
    } else {
      zelk::platform::notify(
          {ZELK_NOTIFY_THREAD, thread_, number, low_word(sender.thread_), node->name});
    }
  }
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
}

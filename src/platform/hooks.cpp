#include "platform/hooks.hpp"

#include <mutex>

#include "platform/immortal.hpp"
#include "platform/platform.hpp"

namespace zelk::platform {
namespace {

struct Hooks {
  zelk_notification_sink sink = nullptr;
  void* sink_context = nullptr;
  zelk_message_box message_box = nullptr;
  void* message_box_context = nullptr;
};

struct GuardedHooks {
  std::mutex mutex;
  Hooks hooks;
};

GuardedHooks& guarded_hooks() {
  static Immortal<GuardedHooks> guarded;
  return guarded.get();
}

/// As they are now: a registered function runs without the lock, since it may register another.
Hooks current_hooks() {
  auto& [mutex, hooks] = guarded_hooks();
  const std::lock_guard lock(mutex);
  return hooks;
}

template <typename Change>
void change_hooks(Change change) {
  auto& [mutex, hooks] = guarded_hooks();
  const std::lock_guard lock(mutex);
  change(hooks);
}

}  // namespace

void notify(const zelk_notification& notification) {
  const Hooks set = current_hooks();
  if (set.sink) return set.sink(&notification, set.sink_context);
  post(notification);
}

void tell_user(const char* text, const char* title, std::uint32_t style) {
  const Hooks set = current_hooks();
  if (set.message_box) return set.message_box(text, title, style, set.message_box_context);
  show_message_box(text, title, style);
}

}  // namespace zelk::platform

void zelk_set_notification_sink(zelk_notification_sink function, void* context) {
  zelk::platform::change_hooks([=](zelk::platform::Hooks& hooks) {
    hooks.sink = function;
    hooks.sink_context = context;
  });
}

void zelk_set_message_box(zelk_message_box function, void* context) {
  zelk::platform::change_hooks([=](zelk::platform::Hooks& hooks) {
    hooks.message_box = function;
    hooks.message_box_context = context;
  });
}

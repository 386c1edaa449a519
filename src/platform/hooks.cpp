#include "platform/hooks.hpp"

#include "platform/platform.hpp"

namespace zelk::platform {
namespace {

struct Hooks {
  zelk_notification_sink sink = nullptr;
  void* sink_context = nullptr;
  zelk_message_box message_box = nullptr;
  void* message_box_context = nullptr;
};

Hooks& hooks() {
  static Hooks hooks;
  return hooks;
}

}  // namespace

void notify(const zelk_notification& notification) {
  const Hooks& set = hooks();
  if (set.sink) return set.sink(&notification, set.sink_context);
  post(notification);
}

void tell_user(const char* text, const char* title, std::uint32_t style) {
  const Hooks& set = hooks();
  if (set.message_box) return set.message_box(text, title, style, set.message_box_context);
  show_message_box(text, title, style);
}

}  // namespace zelk::platform

void zelk_set_notification_sink(zelk_notification_sink function, void* context) {
  auto& hooks = zelk::platform::hooks();
  hooks.sink = function;
  hooks.sink_context = context;
}

void zelk_set_message_box(zelk_message_box function, void* context) {
  auto& hooks = zelk::platform::hooks();
  hooks.message_box = function;
  hooks.message_box_context = context;
}

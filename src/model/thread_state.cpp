#include "model/thread_state.hpp"

#include <new>

#include "platform/immortal.hpp"
#include "platform/module_entry.hpp"
#include "platform/platform.hpp"

namespace zelk {
namespace {

struct SharedState : ThreadState {
  SharedState() { is_shared = true; }
};

ThreadState& shared_state() noexcept {
  static Immortal<SharedState> state;
  return state.get();
}

ThreadState& make_state() noexcept {
  auto* const made = new (std::nothrow) ThreadState;
  if (made && platform::set_thread_value(made)) return *made;
  delete made;
  return shared_state();
}

}  // namespace

ThreadState& thread_state() noexcept {
  auto* const state = static_cast<ThreadState*>(platform::thread_value());
  return state ? *state : make_state();
}

void platform::release_thread_value(void* value) noexcept {
  delete static_cast<ThreadState*>(value);
}

}  // namespace zelk

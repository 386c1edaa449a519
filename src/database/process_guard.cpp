#include "database/process_guard.hpp"

#include "platform/immortal.hpp"

namespace zelk {
namespace {

std::recursive_mutex& process_mutex() {
  static Immortal<std::recursive_mutex> mutex;
  return mutex.get();
}

}  // namespace

ProcessGuard::ProcessGuard() : lock_(process_mutex()) {}

}  // namespace zelk

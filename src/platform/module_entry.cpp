#include "platform/module_entry.hpp"

namespace zelk::platform {

ModuleEntry& module_entry() {
  static ModuleEntry entry;
  return entry;
}

void attach(void* module) {
  ModuleEntry& entry = module_entry();
  if (entry.attach_count == 0) entry.module = module;
  ++entry.attach_count;
}

void detach() {
  ModuleEntry& entry = module_entry();
  --entry.attach_count;
  if (entry.attach_count == 0) entry.module = nullptr;
}

}  // namespace zelk::platform

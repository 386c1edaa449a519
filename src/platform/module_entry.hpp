/// \file
/// The library as a module of a process: what happens when the system loads and unloads it.

#ifndef ZELK_PLATFORM_MODULE_ENTRY_HPP
#define ZELK_PLATFORM_MODULE_ENTRY_HPP

#include <cstdint>

namespace zelk::platform {

struct ModuleEntry {
  void* module = nullptr;  ///< the system's handle; null while the library is not attached
  std::uint32_t attach_count = 0;
};

/// The one of this process.
ModuleEntry& module_entry();

/// The system loads the library; the first call sets its handle.
void attach(void* module);

/// The system unloads the library; the last call clears its handle.
void detach();

/// Releases what `set_thread_value` has kept, when the thread ends or the library is unloaded.
void release_thread_value(void* value) noexcept;

/// Releases the error text of the process before the library is unloaded; it may grow again.
void release_notes() noexcept;

}  // namespace zelk::platform

#endif

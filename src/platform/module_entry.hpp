/// \file
/// The library as a module of a process: told by the system when a process takes it and lets it go.

#ifndef ZELK_PLATFORM_MODULE_ENTRY_HPP
#define ZELK_PLATFORM_MODULE_ENTRY_HPP

#include <cstdint>

namespace zelk::platform {

struct ModuleEntry {
  void* module = nullptr;  ///< the system's handle; null while the library is not attached
  std::uint32_t attach_count = 0;
};

/// The process's only one.
ModuleEntry& module_entry();

/// A process takes the library; the first time tells its handle.
void attach(void* module);

/// A process lets go of the library; the last time forgets its handle.
void detach();

/// A thread ends, or the library goes, for which `set_thread_value` has kept `value`.
void release_thread_value(void* value) noexcept;

/// The library may be unloaded: releases the memory of what it has noted. It can note more.
void release_notes() noexcept;

}  // namespace zelk::platform

#endif

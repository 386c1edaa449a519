/// \file
/// State of the process that outlives the process's last call.

#ifndef ZELK_PLATFORM_IMMORTAL_HPP
#define ZELK_PLATFORM_IMMORTAL_HPP

#include <cstddef>
#include <new>

namespace zelk {

/// An object in static memory that is never destroyed: hosts call the library from `atexit`
/// handlers and from destructors of global objects. Leak checkers find in it what it owns.
template <typename T>
class Immortal {
 public:
  Immortal() { new (bytes_) T; }
  Immortal(const Immortal&) = delete;
  Immortal& operator=(const Immortal&) = delete;

  T& get() { return *std::launder(reinterpret_cast<T*>(bytes_)); }

 private:
  alignas(T) std::byte bytes_[sizeof(T)];
};

}  // namespace zelk

#endif

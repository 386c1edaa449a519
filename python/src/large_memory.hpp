/// \file
/// Memory for tables that are kept.

#ifndef ZELK_PYTHON_LARGE_MEMORY_HPP
#define ZELK_PYTHON_LARGE_MEMORY_HPP

#include <cstddef>
#include <memory>

namespace zelk::python {

/// From this size on memory may have large pages.
inline constexpr std::size_t kLargePage = std::size_t{2} << 20;

/// Uninitialised memory, aligned to 64 bytes, with large pages where the system has them: its first
/// use is several times quicker then.
///
/// @throws std::bad_alloc
std::shared_ptr<unsigned char> large_memory(std::size_t size);

}  // namespace zelk::python

#endif

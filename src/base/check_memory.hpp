/// \file
/// Lack of memory where the system, asked for something else, reports it.

#ifndef ZELK_BASE_CHECK_MEMORY_HPP
#define ZELK_BASE_CHECK_MEMORY_HPP

#include <new>
#include <system_error>

namespace zelk {

/// Whoever takes a failure of the system for an answer, such as "there is no such file", asks this
/// first: without memory there was no answer.
///
/// @throws std::bad_alloc when `error` is of exhausted memory
inline void check_memory(std::error_code error) {
  if (error == std::errc::not_enough_memory) throw std::bad_alloc();
}

/// Likewise, of a value of `errno`.
inline void check_memory(int error) { check_memory({error, std::generic_category()}); }

}  // namespace zelk

#endif
